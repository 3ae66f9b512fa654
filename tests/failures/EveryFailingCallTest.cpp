// For each call to files, memory shared with the keeper and the sound device on the way of opening,
// recording, playing, saving, importing, undoing and recovering: one run in which just this one
// fails. Nothing crashes, no frame is lost that was there, and the user is told at most once.
//
// The same for each allocation of our own code, which must be survived as if nothing had happened.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>

#include <gtest/gtest.h>

#include "document/files/recoveredFiles.h"
#include "failures/FailingAllocations.h"
#include "failures/FailureBench.h"
#include "keeper/KeptRecording.h"
#include "platform/base/MemoryReserve.h"
#include "platform/files/PosixFile.h"
#include "storage/OVBlockBuffer.h"
#include "support/RecoveredFolder.h"
#include "support/TemporaryFolder.h"

namespace {

constexpr std::uint64_t kLength = 20'000;  // frames
constexpr std::uint64_t kOpened = 1000;    // number of the first frame of what is opened
constexpr std::uint64_t kImported = 200000;
constexpr std::uint64_t kHeard = 500000;
constexpr std::uint64_t kOlder = 900000;

// One run: what is done before the counting, what is counted, and what must hold then.
struct Way {
  std::function<void(FailureBench&)> prepare = [](FailureBench&) {};
  std::function<void(FailureBench&)> act;
  std::function<void(FailureBench&)> check;
};

class EveryFailingCallTest : public testing::Test {
 protected:
  static void failEachOnce(const Way& way) {
    failCalls(way);
    failAllocations(way);
  }

  // Until a run in which no call was left to fail.
  static void failCalls(const Way& way) {
    std::map<std::string, int> runs;
    bool failed = true;
    for (std::uint64_t number = 1; failed && !HasFailure(); ++number) {
      FailureBench bench;
      way.prepare(bench);
      ASSERT_EQ(bench.alertCount(), 0U);
      failing::begin(number);
      way.act(bench);
      failing::end();
      failed = failing::hasFailed();
      SCOPED_TRACE("call " + std::to_string(number) + " failed: " + failing::failed() +
                   told(bench));
      EXPECT_LE(bench.alertCount() + bench.questionCount(), failed ? 1U : 0U);
      way.check(bench);
      runs[failing::failed()] += failed ? 1 : 0;
    }
    tell(runs);
  }

  // The reserve gives what is missing, and nobody notices.
  static void failAllocations(const Way& way) {
    const platform::MemoryReserve reserve;
    bool failed = true;
    std::uint64_t number = 1;
    for (; failed && !HasFailure(); ++number) {
      SCOPED_TRACE("allocation " + std::to_string(number) + " failed");
      const unsigned before = platform::MemoryReserve::shortages();
      FailureBench bench;
      way.prepare(bench);
      failing::allocations::begin(number);
      way.act(bench);
      failing::allocations::end();
      failed = failing::allocations::hasFailed();
      EXPECT_EQ(platform::MemoryReserve::shortages() - before, failed ? 1U : 0U);
      EXPECT_EQ(bench.alertCount() + bench.questionCount(), 0U) << told(bench);
      way.check(bench);
      EXPECT_TRUE(platform::MemoryReserve::restore());
    }
    EXPECT_GT(number, 10U);
    std::printf("%llu allocations failed, one a run\n",
                static_cast<unsigned long long>(number - 2));
  }

  static std::string told(const FailureBench& bench) {
    std::string text;
    for (const auto& alerts : {bench.services_->alerts(), bench.services_->postedAlerts()}) {
      for (const auto& alert : alerts) {
        text += "; told: " + alert.title + " / " + alert.message;
      }
    }
    return text;
  }

  static void tell(const std::map<std::string, int>& runs) {
    int all = 0;
    std::string each;
    for (const auto& [call, count] : runs) {
      all += count;
      each += count > 0 ? " " + call + " " + std::to_string(count) : "";
    }
    EXPECT_GT(all, 0);
    std::printf("%d calls failed, one a run:%s\n", all, each.c_str());
  }

  static RecordedStretches audio(std::uint64_t number, std::uint64_t frames) {
    RecordedStretches stretches;
    stretches.record(0, {.number = number, .frames = frames});
    return stretches;
  }

  static void openFile(FailureBench& bench) {
    const auto path = bench.writeFile("a.wav", kOpened, kLength);
    bench.makeDocument();
    bench.open(path);
    bench.expectAudio(audio(kOpened, kLength));
  }

  // Whatever has happened before, the document goes on.
  static void expectRecords(FailureBench& bench, RecordedStretches model) {
    const bool told = bench.alertCount() > 0;
    bench.letDeviceComeBack();
    bench.document_->nextButton(nullptr);
    bench.record(kHeard + 10 * kLength, 2);
    model.record(model.length(), {.number = kHeard + 10 * kLength,
                                  .frames = 2 * std::uint64_t{FailureBench::kChunkFrames}});
    bench.expectAudio(model);
    EXPECT_EQ(bench.alertCount() > 0, told);
  }
};

TEST_F(EveryFailingCallTest, OpeningGivesTheWholeFileOrSaysWhyNot) {
  failEachOnce({.prepare = [](FailureBench& bench) { bench.writeFile("a.wav", kOpened, kLength); },
                .act =
                    [](FailureBench& bench) {
                      bench.makeDocument();
                      bench.open(bench.at("a.wav"));
                    },
                .check =
                    [](FailureBench& bench) {
                      const auto whole = audio(kOpened, kLength);
                      const std::uint64_t length = bench.length();
                      if (bench.alertCount() == 0) {
                        bench.expectAudio(whole);
                      } else if (length > 0) {
                        EXPECT_EQ(bench.equalFrames(whole), length);
                      }
                      EXPECT_EQ(FailureBench::readFile(bench.at("a.wav")).size(), 2 * kLength);
                      expectRecords(bench, audio(kOpened, length));
                    }});
}

// Recording after `opened` frames of a file.
class EveryRecordingThatFailsTest : public EveryFailingCallTest {
 protected:
  static constexpr std::uint64_t kRecorded = 4 * std::uint64_t{FailureBench::kChunkFrames};

  static void failRecordings(std::uint64_t opened,
                             const std::function<void(FailureBench&)>& prepare) {
    std::uint64_t keptAtFailure = 0;
    const auto act = [&](FailureBench& bench) {
      keptAtFailure = 0;
      if (!bench.document_) {
        bench.makeDocument();
      }
      failing::whenFailing([&] { keptAtFailure = bench.length(); });
      bench.document_->nextButton(nullptr);
      bench.record(kHeard, kRecorded / FailureBench::kChunkFrames);
    };
    const auto check = [&](FailureBench& bench) {
      auto whole = audio(kOpened, opened);
      whole.record(opened, {.number = kHeard, .frames = kRecorded});
      if (bench.alertCount() == 0) {
        bench.expectAudio(whole);
      } else {
        EXPECT_GE(bench.length(), std::max(opened, keptAtFailure));
        EXPECT_EQ(bench.equalFrames(whole), bench.length());
      }
      whole.cutAfter(bench.length());
      expectRecords(bench, whole);
    };
    failEachOnce({.prepare = prepare, .act = act, .check = check});
  }
};

TEST_F(EveryRecordingThatFailsTest, KeepsWhatTheDocumentHadAndWhatWasRecorded) {
  failRecordings(kLength, openFile);
}

TEST_F(EveryRecordingThatFailsTest, InANewDocumentKeepsWhatWasRecorded) {
  failRecordings(0, [](FailureBench&) {});
}

TEST_F(EveryFailingCallTest, PlayingLeavesTheDocumentAsItIs) {
  failEachOnce({.prepare = openFile,
                .act = [](FailureBench& bench) { bench.play(); },
                .check =
                    [](FailureBench& bench) {
                      bench.expectAudio(audio(kOpened, kLength));
                      expectRecords(bench, audio(kOpened, kLength));
                    }});
}

class EverySaveThatFailsTest : public EveryFailingCallTest,
                               public testing::WithParamInterface<std::int32_t> {};

// 0 is WAV, 3 is AAC.
INSTANTIATE_TEST_SUITE_P(Kinds, EverySaveThatFailsTest, testing::Values(0, 3));

TEST_P(EverySaveThatFailsTest, LeavesTheOldFileOrTheNewOneAndTheDocumentAsItIs) {
  const std::int32_t kind = GetParam();
  const std::string name = kind == 0 ? "b.wav" : "b.m4a";
  failEachOnce(
      {.prepare =
           [&](FailureBench& bench) {
             openFile(bench);
             bench.writeFile(name, kOlder, kLength / 2);
             bench.document_->nextButton(nullptr);
             bench.record(kHeard, 2);
           },
       .act =
           [&](FailureBench& bench) {
             bench.document_->saveFileNamed(bench.at(name), kind);
             bench.awaitIdle();
           },
       .check =
           [&](FailureBench& bench) {
             constexpr std::uint64_t kAll = kLength + 2 * std::uint64_t{FailureBench::kChunkFrames};
             auto whole = audio(kOpened, kLength);
             whole.record(kLength, {.number = kHeard, .frames = kAll - kLength});
             bench.expectAudio(whole);
             const auto inFile = FailureBench::readFile(bench.at(name));
             const bool isNew = inFile.size() == 2 * kAll;
             const bool isOld =
                 inFile.size() == kLength &&
                 support::equalNumbered(inFile.data(), kOlder, kLength / 2) == kLength / 2;
             EXPECT_TRUE(isNew || isOld) << inFile.size() / 2 << " frames";
             const bool isTold = bench.alertCount() + bench.questionCount() > 0;
             EXPECT_TRUE(isNew || isTold);
             EXPECT_EQ(bench.document_->isDocumentEdited(), isTold);
             if (isNew && kind == 0) {
               EXPECT_EQ(support::equalNumbered(inFile.data(), kOpened, kLength), kLength);
               EXPECT_EQ(support::equalNumbered(&inFile[2 * kLength], kHeard, kAll - kLength),
                         kAll - kLength);
             }
             expectRecords(bench, whole);
           }});
}

TEST_F(EveryFailingCallTest, ImportingPutsTheWholeFileInOrNothing) {
  failEachOnce({.prepare =
                    [](FailureBench& bench) {
                      openFile(bench);
                      bench.writeFile("c.wav", kImported, kLength);
                      bench.document_->waveFormViewReceivedClick(nullptr, {}, 0.5);
                    },
                .act =
                    [](FailureBench& bench) {
                      bench.document_->importFile(nullptr);
                      bench.panels_->answerOpen({bench.at("c.wav")});
                      bench.awaitIdle();
                    },
                .check =
                    [](FailureBench& bench) {
                      auto model = audio(kOpened, kLength);
                      if (bench.alertCount() == 0) {
                        model.record(kLength / 2, {.number = kImported, .frames = kLength});
                      }
                      bench.expectAudio(model);
                      expectRecords(bench, model);
                    }});
}

// A cut, then its undo, then the redo of it: what is there afterwards.
TEST_F(EveryFailingCallTest, EditsUndoAndRedoDoWhatTheyDoOtherwise) {
  const auto prepare = [](FailureBench& bench) {
    openFile(bench);
    bench.document_->waveFormViewReceivedClick(nullptr, {}, 0.5);
  };
  for (int steps = 1; steps <= 3; ++steps) {
    const auto act = [steps](FailureBench& bench) {
      bench.document_->removeAfterMarker(nullptr);
      FailureBench::settle();
      if (steps > 1) {
        bench.document_->undoCommand();
        FailureBench::settle();
      }
      if (steps > 2) {
        bench.document_->redoCommand();
        FailureBench::settle();
      }
    };
    const auto check = [steps](FailureBench& bench) {
      const auto model = audio(kOpened, steps == 2 ? kLength : kLength / 2);
      bench.expectAudio(model);
      expectRecords(bench, model);
    };
    failEachOnce({.prepare = prepare, .act = act, .check = check});
  }
}

constexpr const char* kRecovered = "Orvo recording 2026-11-21 14.02.31.caf";

TEST_F(EveryFailingCallTest, OpeningWhatWasRecoveredGivesAllOrKeepsTheFile) {
  std::unique_ptr<support::RecoveredFolder> folder;
  failEachOnce({.prepare =
                    [&](FailureBench& bench) {
                      folder = std::make_unique<support::RecoveredFolder>(bench.folder_.path());
                      std::vector<float> samples(2 * kLength);
                      support::makeNumbered(samples.data(), kOpened, kLength);
                      folder->add(kRecovered, samples);
                      bench.makeDocument();
                    },
                .act =
                    [&](FailureBench& bench) {
                      const auto listing = recoveredFilesIn(folder->path());
                      for (const auto& file : listing.files) {
                        bench.document_->openRecovered(file);
                        bench.awaitIdle();
                      }
                    },
                .check =
                    [&](FailureBench& bench) {
                      EXPECT_TRUE(folder->has(kRecovered));
                      const std::uint64_t length = bench.length();
                      EXPECT_EQ(length > 0 ? bench.equalFrames(audio(kOpened, kLength)) : 0,
                                length);
                      if (length < kLength && bench.alertCount() == 0) {
                        // It was not listed: then it is at the next look.
                        EXPECT_EQ(length, 0U);
                        EXPECT_EQ(recoveredFilesIn(folder->path()).files.size(), 1U);
                      }
                    }});
}

// What a file under way is said to be when the call of this name fails.
OVRecoveredFile::State stateIfFails(const std::string& call, const std::string& folder) {
  for (std::uint64_t number = 1;; ++number) {
    failing::begin(number);
    const auto listing = recoveredFilesIn(folder);
    failing::end();
    if (failing::failed() == call && !listing.files.empty()) {
      return listing.files.front().state;
    }
    if (!failing::hasFailed()) {
      ADD_FAILURE() << call << " is not called";
      return OVRecoveredFile::State::whole;
    }
  }
}

TEST(DiskWithoutLocksTest, FileUnderWayIsBeingWrittenWhileItChanges) {
  const support::TemporaryFolder data;
  const support::RecoveredFolder folder(data.path());
  const std::string path =
      folder.put(std::string(kRecovered) + ".part", support::recoveredCaf({0, 0, 0, 0}, 1000));
  EXPECT_EQ(stateIfFails("flock", folder.path()), OVRecoveredFile::State::beingWritten);
  namespace fs = std::filesystem;
  fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::minutes(2));
  EXPECT_EQ(stateIfFails("flock", folder.path()), OVRecoveredFile::State::damaged);
}

// A keeper whose one call fails tries again: it is told nothing by the program that has ended.
TEST_F(EveryFailingCallTest, KeeperRecoversAllAtOnceOrWhenItTriesAgain) {
  const auto same = [](int descriptor) {
    return std::make_unique<platform::PosixFile>(::fcntl(descriptor, F_DUPFD_CLOEXEC, 3));
  };
  std::shared_ptr<OVBlockBuffer> blocks;
  std::unique_ptr<KeptRecording> kept;
  KeptRecording::Outcome outcome{};
  failEachOnce({.prepare =
                    [&](FailureBench& bench) {
                      openFile(bench);
                      bench.document_->nextButton(nullptr);
                      bench.record(kHeard, 2);
                      blocks = std::dynamic_pointer_cast<OVBlockBuffer>(bench.document_->buffer());
                      kept = std::make_unique<KeptRecording>(same(blocks->fileDescriptor()),
                                                             same(blocks->journal()->descriptor()));
                    },
                .act =
                    [&](FailureBench& bench) {
                      const auto folder = RecoveredFolder::open(bench.folder_.path());
                      outcome = folder ? kept->recover(**folder) : KeptRecording::Outcome::waiting;
                    },
                .check =
                    [&](FailureBench& bench) {
                      if (outcome != KeptRecording::Outcome::done) {
                        EXPECT_EQ(outcome, KeptRecording::Outcome::waiting);
                        const auto folder = RecoveredFolder::open(bench.folder_.path());
                        ASSERT_TRUE(folder);
                        EXPECT_EQ(kept->recover(**folder), KeptRecording::Outcome::done);
                      }
                      const auto listing = recoveredFilesIn(bench.folder_.file("orvo/recovered"));
                      ASSERT_EQ(listing.files.size(), 1U);
                      bench.closeDocument();
                      bench.makeDocument();
                      bench.document_->openRecovered(listing.files.front());
                      bench.awaitIdle();
                      auto whole = audio(kOpened, kLength);
                      whole.record(kLength,
                                   {.number = kHeard,
                                    .frames = 2 * std::uint64_t{FailureBench::kChunkFrames}});
                      bench.expectAudio(whole);
                      kept.reset();
                      blocks.reset();
                    }});
}

}  // namespace
