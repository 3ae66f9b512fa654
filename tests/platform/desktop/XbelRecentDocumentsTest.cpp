#include "platform/desktop/XbelRecentDocuments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include <QByteArray>

#include "platform/desktop/FileAddress.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"

namespace {

using platform::fileAddressOf;
using platform::XbelRecentDocuments;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
namespace fs = std::filesystem;

constexpr uid_t kNobody = 65534;
const std::string kHead =
    "<xbel xmlns:bookmark='http://www.freedesktop.org/standards/desktop-bookmarks'>";

void put(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

unsigned permissionsOf(const std::string& path) {
  struct stat status = {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
  return status.st_mode & 07777;
}

class TheDesktopsRecentDocuments : public testing::Test {
 protected:
  ~TheDesktopsRecentDocuments() override {
    if (dropped_) {
      EXPECT_EQ(::seteuid(0), 0);
    }
  }

  std::string at(const std::string& name) const { return folder_.file(name); }

  std::string audioFile(const std::string& name) const {
    put(at(name), "audio");
    return at(name);
  }

  std::vector<std::string> recent(std::size_t most = 100) const {
    return documents_.recentDocuments(most);
  }

  // An entry as another program leaves it, registered by `application`.
  std::string entry(const std::string& path, const std::string& application,
                    const std::string& time, const std::string& more = "") const {
    return "<bookmark href=\"" + fileAddressOf(path) +
           "\"><info><metadata owner='http://freedesktop.org'><bookmark:applications>"
           "<bookmark:application name='" +
           application + "' exec='x' modified='" + time + "' count='1'/></bookmark:applications>" +
           more + "</metadata></info></bookmark>";
  }

  // Whether a document was not noted, the list's text stayed, and one line told it.
  void expectLeftAlone(const std::string& text) {
    put(list_, text);
    log_->clear();
    documents_.noteNewRecentDocument(at("a.wav"));
    EXPECT_EQ(contentsOf(list_), text);
    EXPECT_EQ(log_->consoleLines().size(), 1U);
    EXPECT_THAT(recent(), IsEmpty());
    EXPECT_EQ(filesInFolder(), 1U);
  }

  std::size_t filesInFolder() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator()));
  }

  support::InstalledRecordingServices log_;
  support::TemporaryFolder folder_;
  const std::string list_ = folder_.file("recently-used.xbel");
  std::chrono::system_clock::time_point now_{std::chrono::seconds(1'700'000'000)};
  std::function<void()> meanwhile_;  // what another program does between reading and writing
  XbelRecentDocuments documents_{list_, [this] {
                                   if (meanwhile_) {
                                     meanwhile_();
                                   }
                                   now_ += std::chrono::microseconds(1);
                                   return now_;
                                 }};
  bool dropped_ = false;
};

TEST_F(TheDesktopsRecentDocuments, AreNoneWithoutAList) {
  EXPECT_THAT(recent(), IsEmpty());
  EXPECT_THAT(log_->consoleLines(), IsEmpty());
}

TEST_F(TheDesktopsRecentDocuments, ComeBackTheLatestFirst) {
  for (const char* name : {"a.wav", "b.mp3", "c.caf", "a.wav"}) {
    documents_.noteNewRecentDocument(audioFile(name));
  }
  EXPECT_THAT(recent(), ElementsAre(at("a.wav"), at("c.caf"), at("b.mp3")));
  EXPECT_THAT(recent(2), ElementsAre(at("a.wav"), at("c.caf")));
  EXPECT_THAT(recent(0), IsEmpty());
  EXPECT_THAT(log_->consoleLines(), IsEmpty());
}

TEST_F(TheDesktopsRecentDocuments, AreThoseThatStillExistAsFiles) {
  for (const char* name : {"a.wav", "b.wav", "c.wav", "d.wav"}) {
    documents_.noteNewRecentDocument(audioFile(name));
  }
  fs::remove(at("d.wav"));
  fs::remove(at("b.wav"));
  fs::create_directory(at("b.wav"));
  EXPECT_THAT(recent(2), ElementsAre(at("c.wav"), at("a.wav")));
}

TEST_F(TheDesktopsRecentDocuments, AreAudioFilesByTheirSuffix) {
  std::vector<std::string> audio;
  for (const char* name : {"1.caf", "2.aif", "3.aiff", "4.wav", "5.mp3", "6.mp4", "7.m4a", "8.m4r",
                           "9.aac", "x.WAV"}) {
    audio.insert(audio.begin(), audioFile(name));
    documents_.noteNewRecentDocument(audio.front());
  }
  for (const char* name : {"a.txt", "wav", ".wav", "a.wav.txt", "a.flac", "a."}) {
    documents_.noteNewRecentDocument(audioFile(name));
  }
  EXPECT_EQ(recent(), audio);
}

TEST_F(TheDesktopsRecentDocuments, TellOtherProgramsWhatKindOfFileItIs) {
  const std::vector<std::pair<std::string, std::string>> kinds = {
      {"a.caf", "audio/x-caf"},
      {"a.aif", "audio/x-aiff"},
      {"a.aiff", "audio/x-aiff"},
      {"a.wav", "audio/x-wav"},
      {"a.mp3", "audio/mpeg"},
      {"a.mp4", "video/mp4"},
      {"a.m4a", "audio/mp4"},
      {"a.m4r", "audio/mp4"},
      {"a.aac", "audio/aac"},
      {"a.AAC", "audio/aac"},
      {"a.txt", "application/octet-stream"}};
  for (const auto& [name, type] : kinds) {
    fs::remove(list_);
    documents_.noteNewRecentDocument(at(name));
    EXPECT_THAT(contentsOf(list_), HasSubstr("<mime:mime-type type=\"" + type + "\"/>")) << name;
  }
}

TEST_F(TheDesktopsRecentDocuments, AreOnlyThoseThatWeRegistered) {
  const std::string ours = audioFile("ours.wav");
  const std::string theirs = audioFile("theirs.wav");
  const std::string secret = audioFile("secret.wav");
  const std::string list = kHead + entry(ours, "Orvo", "2020-01-01T00:00:00Z") +
                           entry(theirs, "Other", "2020-01-01T00:00:00Z") +
                           entry(secret, "Other", "2020-01-01T00:00:00Z", "<bookmark:private/>") +
                           "<bookmark href='http://a/b.wav'/></xbel>";
  put(list_, list);
  EXPECT_THAT(recent(), ElementsAre(ours));
  documents_.noteNewRecentDocument(secret);
  EXPECT_THAT(recent(), ElementsAre(secret, ours));
  EXPECT_THAT(contentsOf(list_), HasSubstr("<bookmark:private/>"));
}

TEST_F(TheDesktopsRecentDocuments, AreOrderedByOurOwnTimeWhereverTheyStand) {
  put(list_, kHead + entry(audioFile("b.wav"), "Orvo", "2020-01-01T00:00:00.5Z") +
                 entry(audioFile("a.wav"), "Orvo", "2020-01-01T00:00:00.500001Z") +
                 entry(audioFile("c.wav"), "Orvo", "2020-01-01T00:00:00Z") +
                 entry(audioFile("d.wav"), "Orvo", "?") + entry(at("c.wav"), "Orvo", "?") +
                 "</xbel>");
  EXPECT_THAT(recent(), ElementsAre(at("a.wav"), at("b.wav"), at("c.wav"), at("d.wav")));
}

TEST_F(TheDesktopsRecentDocuments, TakeNamesOfEveryKind) {
  std::vector<std::string> paths;
  for (const std::string& name :
       {std::string("two\nlines.wav"), std::string("100%25 %n.wav"), std::string("a&b;c.wav"),
        std::string("'\"<>.wav"), std::string("\xE5\xBD\x95\xE9\x9F\xB3 \xD7\xA9.wav"),
        std::string("caf\xE9.wav"), std::string(" .wav"), std::string("#1?.wav"),
        std::string(251, '\xFF') + ".wav"}) {
    paths.insert(paths.begin(), audioFile(name));
    documents_.noteNewRecentDocument(paths.front());
  }
  EXPECT_EQ(recent(), paths);
}

TEST_F(TheDesktopsRecentDocuments, MakeRelativePathsAbsolute) {
  folder_.makeFolder("here");
  folder_.makeFolder("there");
  folder_.makeFolder("there/inner");
  fs::create_directory_symlink("../there/inner", at("here/link"));
  for (const char* name : {"here/a.wav", "b.wav", "there/c.wav", "here/d.wav"}) {
    audioFile(name);
  }
  const fs::path before = fs::current_path();
  fs::current_path(at("here"));
  for (const char* path : {"./d.wav", "link/../c.wav", "../b.wav", "a.wav"}) {
    documents_.noteNewRecentDocument(path);
  }
  fs::current_path(before);
  EXPECT_THAT(recent(),
              ElementsAre(at("here/a.wav"), at("b.wav"), at("there/c.wav"), at("here/d.wav")));
}

TEST_F(TheDesktopsRecentDocuments, KeepAPathThroughALinkAsItIs) {
  folder_.makeFolder("real");
  fs::create_directory_symlink("real", at("link"));
  audioFile("real/a.wav");
  documents_.noteNewRecentDocument(at("link/a.wav"));
  EXPECT_THAT(recent(), ElementsAre(at("link/a.wav")));
}

TEST_F(TheDesktopsRecentDocuments, IgnoreWhatIsNoPath) {
  documents_.noteNewRecentDocument("");
  documents_.noteNewRecentDocument(std::string("/a\0.wav", 7));
  EXPECT_FALSE(fs::exists(list_));
}

TEST_F(TheDesktopsRecentDocuments, MakeAMissingListAndItsFoldersForTheUserAlone) {
  const std::string file = at("data/share/recently-used.xbel");
  const mode_t mask = ::umask(0);
  XbelRecentDocuments(file).noteNewRecentDocument(audioFile("a.wav"));
  ::umask(mask);
  EXPECT_THAT(XbelRecentDocuments(file).recentDocuments(9), ElementsAre(at("a.wav")));
  EXPECT_EQ(permissionsOf(file), 0600U);
  EXPECT_EQ(permissionsOf(at("data")), 0700U);
  EXPECT_EQ(permissionsOf(at("data/share")), 0700U);
}

TEST_F(TheDesktopsRecentDocuments, KeepTheListsPermissions) {
  for (const mode_t mode : {0600U, 0640U}) {
    put(list_, "<xbel/>");
    ASSERT_EQ(::chmod(list_.c_str(), mode), 0);
    documents_.noteNewRecentDocument(at("a.wav"));
    EXPECT_EQ(permissionsOf(list_), mode);
    EXPECT_NE(contentsOf(list_), "<xbel/>");
  }
}

TEST_F(TheDesktopsRecentDocuments, WriteThroughALinkAndKeepIt) {
  folder_.makeFolder("elsewhere");
  for (const bool exists : {true, false}) {
    fs::remove(at("elsewhere/list"));
    if (exists) {
      put(at("elsewhere/list"), "<xbel/>");
    }
    fs::remove(list_);
    fs::create_symlink("elsewhere/list", list_);
    documents_.noteNewRecentDocument(audioFile("a.wav"));
    EXPECT_TRUE(fs::is_symlink(list_));
    EXPECT_THAT(contentsOf(at("elsewhere/list")), HasSubstr("Orvo"));
    EXPECT_THAT(recent(), ElementsAre(at("a.wav")));
  }
}

TEST_F(TheDesktopsRecentDocuments, TakeAnEmptyFileForAnEmptyList) {
  put(list_, "");
  documents_.noteNewRecentDocument(audioFile("a.wav"));
  EXPECT_THAT(recent(), ElementsAre(at("a.wav")));
}

TEST_F(TheDesktopsRecentDocuments, LeaveAListThatCannotBeReadAsItIs) {
  expectLeftAlone("<xbel><bookmark href='file:///a.wav'>");
  expectLeftAlone("<html></html>");
  expectLeftAlone(" ");
  expectLeftAlone(std::string(4096, '\0'));
  expectLeftAlone(kHead + "</xbel>\xFF");
}

TEST_F(TheDesktopsRecentDocuments, LeaveAListThatIsTooLongAsItIs) {
  const std::string end = "</xbel>";
  std::string text = kHead;
  text.resize(XbelRecentDocuments::kMaxList - end.size(), ' ');
  expectLeftAlone(text + end);
  expectLeftAlone(text + ' ' + end);
  ASSERT_EQ(::truncate(list_.c_str(), off_t{1} << 40), 0);
  log_->clear();
  documents_.noteNewRecentDocument(at("a.wav"));
  EXPECT_EQ(fs::file_size(list_), std::uintmax_t{1} << 40);
  EXPECT_EQ(log_->consoleLines().size(), 1U);
  EXPECT_THAT(recent(), IsEmpty());
}

TEST_F(TheDesktopsRecentDocuments, DoNotWaitForAPipeNorMindAFolderOrADevice) {
  ASSERT_EQ(::mkfifo(list_.c_str(), 0600), 0);
  documents_.noteNewRecentDocument(at("a.wav"));
  EXPECT_THAT(recent(), IsEmpty());
  EXPECT_TRUE(fs::is_fifo(list_));
  fs::remove(list_);
  fs::create_directory(list_);
  documents_.noteNewRecentDocument(at("a.wav"));
  EXPECT_THAT(recent(), IsEmpty());
  EXPECT_TRUE(fs::is_directory(list_));
  fs::remove(list_);
  fs::create_symlink("/dev/null", list_);
  documents_.noteNewRecentDocument(at("a.wav"));
  EXPECT_THAT(recent(), IsEmpty());
  EXPECT_EQ(log_->consoleLines().size(), 3U);
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(TheDesktopsRecentDocuments, TellWhenTheListMayNotBeWritten) {
  put(list_, "<xbel/>");
  ASSERT_EQ(::chmod(list_.c_str(), 0444), 0);
  ASSERT_EQ(::chmod(folder_.path().c_str(), 0777), 0);
  if (::geteuid() == 0) {
    ASSERT_EQ(::seteuid(kNobody), 0);
    dropped_ = true;
  }
  documents_.noteNewRecentDocument(at("a.wav"));
  EXPECT_EQ(contentsOf(list_), "<xbel/>");
  EXPECT_EQ(log_->consoleLinesWith("You do not have the permission for it."), 1U);
}

TEST_F(TheDesktopsRecentDocuments, TellWhenAFileStandsInTheFoldersPlace) {
  XbelRecentDocuments documents(audioFile("a.wav") + "/recently-used.xbel");
  documents.noteNewRecentDocument(at("a.wav"));
  EXPECT_THAT(documents.recentDocuments(9), IsEmpty());
  EXPECT_EQ(log_->consoleLines().size(), 1U);
  EXPECT_EQ(contentsOf(at("a.wav")), "audio");
}

TEST_F(TheDesktopsRecentDocuments, KeepWhatAnotherProgramWritesMeanwhile) {
  const std::string theirs = entry(audioFile("theirs.wav"), "Other", "2020-01-01T00:00:00Z");
  for (const std::string before : {"", "<xbel/>"}) {
    fs::remove(list_);
    if (!before.empty()) {
      put(list_, before);
    }
    meanwhile_ = [&] {
      put(list_, kHead + theirs + "</xbel>");
      meanwhile_ = nullptr;
    };
    documents_.noteNewRecentDocument(audioFile("a.wav"));
    EXPECT_THAT(contentsOf(list_), HasSubstr(theirs));
    EXPECT_THAT(recent(), ElementsAre(at("a.wav")));
  }
  EXPECT_THAT(log_->consoleLines(), IsEmpty());
}

TEST_F(TheDesktopsRecentDocuments, LeaveAListThatBreaksMeanwhileAsItIs) {
  put(list_, "<xbel/>");
  meanwhile_ = [this] { put(list_, "<xbel>"); };
  documents_.noteNewRecentDocument(at("a.wav"));
  EXPECT_EQ(contentsOf(list_), "<xbel>");
  EXPECT_EQ(log_->consoleLines().size(), 1U);
}

TEST_F(TheDesktopsRecentDocuments, GiveUpWhenTheListNeverComesToRest) {
  int changes = 0;
  meanwhile_ = [&] { put(list_, "<xbel><!-- " + std::to_string(++changes) + " --></xbel>"); };
  documents_.noteNewRecentDocument(at("a.wav"));
  EXPECT_EQ(contentsOf(list_), "<xbel><!-- " + std::to_string(changes) + " --></xbel>");
  EXPECT_EQ(log_->consoleLines().size(), 1U);
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST(TheDesktopsListOfRecentFiles, LiesInTheUsersDataFolder) {
  const QByteArray before = qgetenv("XDG_DATA_HOME");
  const QByteArray home = qgetenv("HOME");
  qputenv("HOME", "/somebody");
  qputenv("XDG_DATA_HOME", "/data");
  EXPECT_EQ(XbelRecentDocuments::desktopFile(), "/data/recently-used.xbel");
  for (const char* unusable : {"", "data", "./data"}) {
    qputenv("XDG_DATA_HOME", unusable);
    EXPECT_EQ(XbelRecentDocuments::desktopFile(), "/somebody/.local/share/recently-used.xbel");
  }
  qunsetenv("XDG_DATA_HOME");
  EXPECT_EQ(XbelRecentDocuments::desktopFile(), "/somebody/.local/share/recently-used.xbel");
  qputenv("XDG_DATA_HOME", before);
  qputenv("HOME", home);
}

}  // namespace
