#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "acceptance/DocumentTest.h"

/// Base of the acceptance tests that kill the program and look at what its keeper wrote.
///
/// Threads: the test's own.
class KilledProgramTest : public DocumentTest {
 protected:
  /// Samples that are written at a time.
  static constexpr std::size_t kChunk = 4096 * support::kChannels;

  ~KilledProgramTest() override;

  /// Starts the program; returns once its keeper runs too.
  void startWithKeeper(support::RunningOrvo::Options options = {});

  [[nodiscard]] std::string recoveredFolder() const { return data_ + "/orvo/recovered"; }
  /// Names of the recovered files, sorted.
  [[nodiscard]] std::vector<std::string> recovered() const;
  [[nodiscard]] support::Samples recoveredAudio(std::size_t file = 0) const;

  /// Holds the temporary file and the journal of each document, which stay readable after the
  /// program's end. Those held before are released.
  void hold() { hold(orvo_->pid()); }
  /// The same of so many documents as the keeper has them, once it has them: there the n-th journal
  /// is that of the n-th file.
  void holdWhatIsKept(std::size_t documents);
  /// Ends the program with a signal, unless it has ended; returns once its keeper has ended.
  void endBy(int signal);

  /// Everything that was written to the temporary file of a document.
  [[nodiscard]] support::Samples written(std::size_t document = 0) const;

  /// What a document with this journal and this audio would lose, read from its beginning to its
  /// end; nothing if it was saved or discarded, or is empty. Both numbers count from the oldest.
  [[nodiscard]] support::Samples expected(std::size_t journal = 0, std::size_t audio = 0) const;
  [[nodiscard]] std::size_t journals() const { return journals_.size(); }

  /// At most the chunk that was just being written is missing at the end.
  static void expectAllOf(const support::Samples& written, const support::Samples& found);
  /// So many recovered files, all complete, and nothing in the temporary directory.
  void expectNothingElseIsLeft(std::size_t files) const;

  const std::string data_ = folder_.makeFolder("data");
  const std::string temporary_ = folder_.makeFolder("temporary");

 private:
  void hold(pid_t process);
  void release();

  std::vector<int> audio_;
  std::vector<int> journals_;
};
