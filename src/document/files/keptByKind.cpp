#include "document/files/keptByKind.h"

#include <array>

#include <QLocale>
#include <QStringList>

#include "audio/OVAudioFileWriter.h"
#include "audio/OVFileKinds.h"
#include "platform/base/AudioTypes.h"
#include "platform/mainloop/Localization.h"
#include "platform/media/ExtAudioFileInput.h"

using platform::AudioFileTag;
using platform::localized;
using platform::textKey;

namespace {

constexpr std::uint32_t kBits = 16;  // of a sample, in every kind but AAC
constexpr std::uint32_t kChannels = 2;

// In the order of the enumeration.
constexpr std::array kTagNames{
    textKey("title"),   textKey("artist"), textKey("album"), textKey("date"),
    textKey("comment"), textKey("genre"),  textKey("track"), textKey("cover"),
};

QString inWords(const QStringList& list) {
  QString words = list.value(0);
  for (qsizetype i = 1; i < list.size(); ++i) {
    const auto joint = i + 1 < list.size() ? textKey("%1, %2") : textKey("%1 and %2");
    words = localized(joint).arg(words, list[i]);
  }
  return words;
}

// A number and its unit stay on one line.
QString unbroken(QString measure) {
  return measure.replace(u' ', QChar::Nbsp);
}

QString bits(std::uint32_t count) {
  return unbroken(localized("%1 bits").arg(count));
}

QString channels(std::uint32_t count) {
  return unbroken(localized("%1 channels").arg(count));
}

QString kilohertz(double rate) {
  constexpr int kDigits = 6;
  return unbroken(localized("%1 kHz").arg(QLocale().toString(rate / 1000.0, 'g', kDigits)));
}

bool isLossless(const platform::AudioStreamBasicDescription& format) {
  return format.mFormatID == platform::kLinearPcmFormat ||
         format.mFormatID == platform::fourCharacterCode("alac");
}

// A name whose suffix is written as no kind of its own is a ringtone's.
bool isReplacedByAac(const std::string& path) {
  const std::int32_t type = fileTypeOfPath(path);
  return type < 0 || static_cast<std::uint32_t>(type) == OVAudioFileWriter::kAac;
}

QString lossBetween(const platform::AudioStreamBasicDescription& old, bool toAac) {
  QStringList before;
  QStringList after;
  if (toAac && isLossless(old)) {
    before << localized("lossless sound");
    after << localized("compressed sound (AAC)");
  } else if (!toAac && old.mBitsPerChannel > kBits) {
    before << bits(old.mBitsPerChannel);
    after << bits(kBits);
  }
  if (old.mSampleRate != platform::kWorkingFormat.mSampleRate) {
    before << kilohertz(old.mSampleRate);
    after << kilohertz(platform::kWorkingFormat.mSampleRate);
  }
  if (old.mChannelsPerFrame > kChannels) {
    before << channels(old.mChannelsPerFrame);
    after << channels(kChannels);
  }
  return before.isEmpty() ? QString()
                          : localized("The old file has %1, the new one only has %2.")
                                .arg(inWords(before), inWords(after));
}

}  // namespace

QString keptByKind(std::int32_t type, const platform::AudioFileTags& tags) {
  const auto kind = static_cast<std::uint32_t>(type);
  QString line =
      localized(kind == OVAudioFileWriter::kAac ? textKey("AAC with 256 kbit/s, 44.1 kHz, stereo")
                                                : textKey("16 bits, 44.1 kHz, stereo"));
  QStringList kept;
  bool losesCover = false;
  for (const AudioFileTag tag : tags.all()) {
    if (tag == AudioFileTag::cover && !OVAudioFileWriter::holdsCover(kind)) {
      losesCover = true;
    } else {
      kept << localized(kTagNames.at(static_cast<std::size_t>(tag)));
    }
  }
  if (!kept.isEmpty()) {
    line = localized("%1; keeps %2").arg(line, inWords(kept));
  }
  return losesCover ? localized("%1; leaves out the cover").arg(line) : line;
}

QString lossOfReplacing(const std::string& path) {
  const auto old = platform::ExtAudioFileInput::openURL(path, nullptr);
  return old.file ? lossBetween(old.file->fileDataFormat(), isReplacedByAac(path)) : QString();
}
