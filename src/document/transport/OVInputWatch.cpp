#include "document/transport/OVInputWatch.h"

#include <utility>

#include "document/transport/OVTransport.h"

bool OVInputWatch::look() {
  const bool isFirst = !std::exchange(hasLooked_, true);
  const bool isOtherSource = lookAtSource();
  const bool isOtherRecording = lookAtRecording();
  const bool hasOtherLosses = lookAtLosses();
  return isFirst || isOtherSource || isOtherRecording || hasOtherLosses;
}

bool OVInputWatch::lookAtSource() {
  const auto queues = platform::audioQueues();
  const std::uint64_t revision = queues->inputSourceRevision();  // before the source itself
  if (queues_.lock() == queues && revision == sourceRevision_) {
    return false;
  }
  queues_ = queues;
  sourceRevision_ = revision;
  state_.source = queues->inputSource();
  return true;
}

bool OVInputWatch::lookAtRecording() {
  const auto running = transport_.runningRecorder();
  const bool isRecording = running != nullptr;
  const bool isOtherMode = std::exchange(state_.isRecording, isRecording) != isRecording;
  const bool hasRecorded = transport_.hasRecorded();
  const bool isOtherOutcome = std::exchange(state_.hasRecorded, hasRecorded) != hasRecorded;
  const std::uint64_t silent = running ? running->silentFrames() : 0;
  const bool isOtherSilence = std::exchange(state_.silentFrames, silent) != silent;
  return isOtherMode || isOtherOutcome || isOtherSilence;
}

// The losses of one recording only grow in number.
bool OVInputWatch::lookAtLosses() {
  const std::uint64_t recording = transport_.recordings();
  if (recording == recording_ && transport_.lossCount() == state_.losses.size()) {
    return false;
  }
  recording_ = recording;
  state_.losses = transport_.losses();
  return true;
}
