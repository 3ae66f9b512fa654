#include "audio/CheckAudioStatus.h"

#include <cstdint>
#include <cstdio>

#include "platform/base/ApplicationServices.h"
#include "platform/mainloop/Localization.h"

namespace {

// Printable in the C locale, whatever the user's locale.
bool isPrintable(char character) {
  return character >= 0x20 && character <= 0x7e;
}

// Fills in a translation's two "%s". A translation is data, so it never reaches printf.
std::string filledIn(std::string format, const std::string& first, const std::string& second) {
  std::size_t from = 0;
  for (const std::string* text : {&first, &second}) {
    const std::size_t place = format.find("%s", from);
    if (place == std::string::npos) {
      break;
    }
    format.replace(place, 2, *text);
    from = place + text->size();
  }
  return format;
}

void showAlert(platform::TextKey title, std::string message, const std::string& reason) {
  if (!reason.empty()) {
    message += "\n\n" + reason;
  }
  ShowModalAlert(platform::localizedUtf8(title), message);
}

}  // namespace

std::string AudioStatusCodeText(platform::AudioStatus status) {
  const auto bits = static_cast<std::uint32_t>(status);
  std::string text = "'";
  for (const unsigned shift : {24U, 16U, 8U, 0U}) {
    const auto character = static_cast<char>(static_cast<unsigned char>(bits >> shift));
    if (!isPrintable(character)) {
      return std::to_string(status);
    }
    text += character;
  }
  return text + "'";
}

bool CheckAudioStatusWithoutAlert(platform::AudioStatus status, const std::string& label) {
  if (status == platform::kAudioStatusOk) {
    return true;
  }
  std::fprintf(stderr, "Error: %s (%s)\n", label.c_str(), AudioStatusCodeText(status).c_str());
  return false;
}

void ShowAudioStatusAlert(platform::AudioStatus status, const std::string& label,
                          const std::string& reason) {
  if (status == platform::kUnsupportedFileTypeStatus) {
    showAlert(platform::textKey("File Format Error"),
              platform::localizedUtf8("The file is of an unsupported format."), reason);
  } else {
    showAlert(platform::textKey("Core Audio Error"),
              filledIn(platform::localizedUtf8("Core Audio returned the error: %s (%s)"), label,
                       AudioStatusCodeText(status)),
              reason);
  }
}

bool CheckAudioStatus(platform::AudioStatus status, const std::string& label,
                      const std::string& reason) {
  if (CheckAudioStatusWithoutAlert(status, label)) {
    return true;
  }
  ShowAudioStatusAlert(status, label, reason);
  return false;
}
