#include "recovery/KeeperConnection.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fstream>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "keeper/KeptRecordings.h"
#include "support/DescriptorsOnTheirWay.h"
#include "support/Eventually.h"
#include "support/Sanitizers.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"
#include "support/programs/ChildProcess.h"

namespace {

using Waiting = KeeperConnection::Waiting;
using support::editedBuffer;
using support::eventually;
using support::pattern;
using support::recoveredNames;
using support::write;

/// Bytes of the process's own memory that are neither of a file nor shared.
std::uint64_t anonymousBytes(int process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("RssAnon:")) {
      return std::stoull(line.substr(8)) * 1024;
    }
  }
  return 0;
}

std::size_t openFiles(int process) {
  std::error_code gone;
  const std::filesystem::directory_iterator all("/proc/" + std::to_string(process) + "/fd", gone);
  return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

class KeeperConnectionTest : public testing::Test {
 protected:
  KeeperConnectionTest() {
    // The keeper inherits it; no other thread runs.
    ::setenv("XDG_DATA_HOME", data_.path().c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
  }
  ~KeeperConnectionTest() override { end(); }

  void keep(std::uint64_t document) {
    auto buffer = editedBuffer();
    write(*buffer, pattern(800, static_cast<unsigned>(document)), 0);
    connection_->keep(
        document, {.audio = buffer->fileDescriptor(), .journal = buffer->journal()->descriptor()});
    buffers_.push_back(std::move(buffer));
  }

  /// Its standard streams, its connection, and two for each document.
  [[nodiscard]] bool holds(std::size_t documents) const {
    return eventually([&] { return openFiles(connection_->keeperProcess()) == 4 + 2 * documents; });
  }

  /// The program ends without a word; returns once its keeper has ended too.
  void end() {
    const int keeper = connection_ ? connection_->keeperProcess() : -1;
    connection_.reset();
    EXPECT_TRUE(keeper < 0 || eventually([&] { return support::hasEnded(keeper); }));
  }

  support::TemporaryFolder data_;
  support::InstalledRecordingServices services_;
  std::vector<std::shared_ptr<OVBlockBuffer>> buffers_;
  std::unique_ptr<KeeperConnection> connection_ = std::make_unique<KeeperConnection>(ORVO_KEEPER);
};

TEST_F(KeeperConnectionTest, KeeperWritesWhatIsLeftWhenTheProgramEnds) {
  connection_->start();
  keep(1);
  keep(2);
  connection_->letGo(1);
  end();
  EXPECT_EQ(recoveredNames(data_.path()).size(), 1U);
}

TEST_F(KeeperConnectionTest, DocumentsKeptBeforeItsStartAreNotForgotten) {
  keep(1);
  keep(2);
  connection_->letGo(2);
  connection_->start();
  EXPECT_TRUE(holds(1));
  end();
  EXPECT_EQ(recoveredNames(data_.path()).size(), 1U);
}

TEST_F(KeeperConnectionTest, KeeperIsSmallAndHoldsNothingOfTheProgram) {
  const int mine = ::open("/dev/null", O_RDONLY);  // inherited by programs that do not close it
  ASSERT_GE(mine, 0);
  connection_->start();
  keep(1);
  EXPECT_TRUE(holds(1));
  // Sanitizers have memory of their own.
  EXPECT_LT(support::kAnySanitizer ? 0 : anonymousBytes(connection_->keeperProcess()), 1U << 20);
  EXPECT_NE(::getsid(connection_->keeperProcess()), ::getsid(0));
  ::close(mine);
}

TEST_F(KeeperConnectionTest, NobodyElseCanReachTheConnection) {
  connection_->start();
  sockaddr_un name = {};
  socklen_t length = sizeof name;
  ASSERT_EQ(::getsockname(connection_->descriptor(), reinterpret_cast<sockaddr*>(&name), &length),
            0);
  EXPECT_EQ(length, sizeof name.sun_family) << "it has a name";
  struct stat keeper = {};
  ASSERT_EQ(::stat(("/proc/" + std::to_string(connection_->keeperProcess())).c_str(), &keeper), 0);
  EXPECT_EQ(keeper.st_uid, ::geteuid()) << "the keeper runs as someone else";
  EXPECT_EQ(::fcntl(connection_->descriptor(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST_F(KeeperConnectionTest, KeeperIsDeafToSignalsThatEndASession) {
  connection_->start();
  keep(1);
  ASSERT_TRUE(holds(1));
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    ASSERT_EQ(::kill(connection_->keeperProcess(), signal), 0);
  }
  end();
  EXPECT_EQ(recoveredNames(data_.path()).size(), 1U);
}

TEST_F(KeeperConnectionTest, KeeperThatDiesIsReplacedByOneThatKnowsEverything) {
  connection_->start();
  keep(1);
  keep(2);
  ASSERT_TRUE(holds(2));
  const int first = connection_->keeperProcess();
  ASSERT_EQ(::kill(first, SIGKILL), 0);
  ASSERT_TRUE(eventually([&] {
    connection_->check();
    return connection_->keeperProcess() != first;
  }));
  EXPECT_TRUE(holds(2));
  EXPECT_TRUE(services_->consoleLines().empty());
  end();
  EXPECT_EQ(recoveredNames(data_.path()).size(), 2U);
}

TEST_F(KeeperConnectionTest, NothingIsLeftOfAKeeperThatHasDied) {
  connection_->start();
  const int first = connection_->keeperProcess();
  ASSERT_EQ(::kill(first, SIGKILL), 0);
  ASSERT_TRUE(eventually([&] {
    connection_->check();
    return connection_->keeperProcess() != first;
  }));
  std::uint64_t document = 0;
  EXPECT_TRUE(eventually([&] {
    keep(++document);
    connection_->letGo(document);
    return support::processState(first) == '\0';
  })) << "it is a zombie";
}

TEST_F(KeeperConnectionTest, KeeperThatKeepsDyingIsDoneWithoutAfterOneLine) {
  connection_->start();
  keep(1);
  ASSERT_TRUE(eventually([&] {
    if (connection_->keeperProcess() > 0) {
      ::kill(connection_->keeperProcess(), SIGKILL);
    }
    connection_->check();
    return !connection_->isAvailable();
  }));
  keep(2);
  connection_->letGo(1);
  EXPECT_EQ(services_->consoleLines().size(), 1U);
}

TEST_F(KeeperConnectionTest, KeeperThatCannotBeStartedIsOneLine) {
  connection_ = std::make_unique<KeeperConnection>("/nowhere/orvo-keeper");
  connection_->start();
  EXPECT_FALSE(connection_->isAvailable());
  connection_->start();
  keep(1);
  EXPECT_EQ(services_->consoleLines().size(), 1U);
}

TEST_F(KeeperConnectionTest, StoppedKeeperIsNeverWaitedFor) {
  connection_->start();
  ASSERT_TRUE(holds(0));
  const int keeper = connection_->keeperProcess();
  ASSERT_EQ(::kill(keeper, SIGSTOP), 0);
  ASSERT_TRUE(eventually([&] { return support::processState(keeper) == 'T'; }));
  keep(1);
  std::uint64_t document = 1;
  while (connection_->waiting() == Waiting::forNothing) {
    if (++document % 2 == 0) {
      connection_->keep(document / 2 + 1, {.audio = buffers_[0]->fileDescriptor(),
                                           .journal = buffers_[0]->journal()->descriptor()});
    } else {
      connection_->letGo(document / 2 + 1);
    }
  }
  EXPECT_EQ(connection_->waiting(), Waiting::forKeeper);
  connection_->letGo(document / 2 + 1);
  keep(1'000'000);
  ASSERT_EQ(::kill(keeper, SIGCONT), 0);
  ASSERT_TRUE(eventually([&] {
    connection_->sendPending();
    return connection_->waiting() == Waiting::forNothing;
  }));
  EXPECT_TRUE(holds(2));
  end();
  EXPECT_EQ(recoveredNames(data_.path()).size(), 2U);
}

TEST_F(KeeperConnectionTest, DescriptorsThatTheSystemDoesNotTakeAreSentLater) {
  connection_->start();
  ASSERT_TRUE(holds(0));
  const int keeper = connection_->keeperProcess();
  ASSERT_EQ(::kill(keeper, SIGSTOP), 0);
  ASSERT_TRUE(eventually([&] { return support::processState(keeper) == 'T'; }));
  keep(1);
  std::uint64_t last = 1;
  {
    const support::DescriptorsOnTheirWay few(20);
    while (last < 100 && connection_->waiting() == Waiting::forNothing) {
      connection_->keep(++last, {.audio = buffers_[0]->fileDescriptor(),
                                 .journal = buffers_[0]->journal()->descriptor()});
    }
    EXPECT_EQ(connection_->waiting(), Waiting::forSystem);
  }
  ASSERT_EQ(::kill(keeper, SIGCONT), 0);
  keep(1'000'000);
  ASSERT_TRUE(eventually([&] {
    connection_->sendPending();
    return connection_->waiting() == Waiting::forNothing;
  }));
  EXPECT_EQ(connection_->keeperProcess(), keeper);
  EXPECT_TRUE(holds(last + 1));
}

TEST_F(KeeperConnectionTest, KeeperThatLivesWhenItsConnectionFailsWritesNothing) {
  connection_->start();
  keep(1);
  ASSERT_TRUE(holds(1));
  const int first = connection_->keeperProcess();
  ASSERT_EQ(::kill(first, SIGSTOP), 0);
  ASSERT_TRUE(eventually([&] { return support::processState(first) == 'T'; }));
  ASSERT_EQ(::shutdown(connection_->descriptor(), SHUT_RD), 0);  // the next look fails
  connection_->check();
  EXPECT_NE(connection_->keeperProcess(), first);
  ::kill(first, SIGCONT);
  EXPECT_TRUE(eventually([&] { return support::hasEnded(first); }));
  EXPECT_TRUE(recoveredNames(data_.path()).empty()) << "the program still runs";
  EXPECT_TRUE(holds(1));
  end();
  EXPECT_EQ(recoveredNames(data_.path()).size(), 1U);
}

}  // namespace
