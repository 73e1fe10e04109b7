// Bytes of object streams, for tests: numbers and texts one after the other, as a stream holds them.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "framework/VokLong.h"

namespace support {

using StreamItem = std::variant<VokULong, std::string>;
using StreamItems = std::vector<StreamItem>;

inline std::string NumberBytes(VokULong v) {
  std::string bytes;
  for (int i = 0; i < 4; ++i) {
    bytes += static_cast<char>(static_cast<unsigned char>(v >> (8 * i) & 0xFFU));
  }
  return bytes;
}

inline std::string StreamBytes(const StreamItems& items) {
  std::string bytes("VTOS\1\0\0\0", 8);
  for (const StreamItem& item : items) {
    if (const auto* number = std::get_if<VokULong>(&item)) {
      bytes += NumberBytes(*number);
    } else {
      const auto& text = std::get<std::string>(item);
      bytes += NumberBytes(static_cast<VokULong>(text.size())) + text;
    }
  }
  return bytes;
}

}  // namespace support
