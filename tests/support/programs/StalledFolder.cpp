#include "support/programs/StalledFolder.h"

#include <filesystem>
#include <fstream>

namespace support {

std::vector<std::string> StalledFolder::wrapper() const {
  return {"env", "LD_PRELOAD=" ORVO_STALLED_FOLDER_LIBRARY, "ORVO_TEST_STALLED=" + folder_,
          "ORVO_TEST_STALLED_FROM=" + marks_.file("stalled")};
}

void StalledFolder::stall() const {
  std::ofstream(marks_.file("stalled")) << "from now on";
}

void StalledFolder::release() const {
  std::filesystem::remove(marks_.file("stalled"));
}

}  // namespace support
