#include "document/files/temporaryPath.h"

#include <random>

#include "platform/files/TemporaryFiles.h"

std::string freshTemporaryPath() {
  static constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
  std::random_device random;
  std::uniform_int_distribution<std::size_t> letter(0, sizeof(kLetters) - 2);
  std::string path = platform::temporaryFiles()->directory() + "velmar_";
  for (int i = 0; i < 12; ++i) {
    path += kLetters[letter(random)];
  }
  return path;
}
