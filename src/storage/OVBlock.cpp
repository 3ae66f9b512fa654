#include "storage/OVBlock.h"

std::string OVBlock::description() const {
  return "linear_addr: " + std::to_string(linear_addr_start_) +
         ", file_offset: " + std::to_string(file_offset_start_) +
         ", size: " + std::to_string(size_);
}
