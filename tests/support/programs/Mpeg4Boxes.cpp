#include "support/programs/Mpeg4Boxes.h"

namespace support {

namespace {

std::uint32_t numberAt(const std::string& bytes, std::size_t place) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    value = value << 8 | static_cast<std::uint8_t>(bytes[place + i]);
  }
  return value;
}

}  // namespace

std::string withEdits(const std::string& file, const std::vector<Edit>& edits) {
  std::string changed;
  for (std::size_t place = 0; place + 8 <= file.size();) {
    const std::size_t size = numberAt(file, place);
    const std::string type = file.substr(place + 4, 4);
    const std::string content = file.substr(place + 8, size - 8);
    if (type == "moov" || type == "trak") {
      changed += box(type, withEdits(content, edits));
    } else if (type == "tkhd") {
      changed += box(type, content) + editBox(edits);
    } else if (type != "edts") {
      changed += box(type, content);
    }
    place += size;
  }
  return changed;
}

}  // namespace support
