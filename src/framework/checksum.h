// The checksum of a saved network: CRC-32 with the generator polynomial of IEEE 802.3, 0x04C11DB7, here with its bits
// reversed because the bytes are taken least significant bit first; register and result are inverted. It changes
// whenever up to 32 neighbouring bits change, so with every single byte.
#pragma once

#include <array>
#include <string_view>

#include "framework/VokLong.h"

// For each byte, the remainder that it leaves in an empty register.
inline constexpr std::array<VokULong, 256> vokChecksumTable = [] {
  std::array<VokULong, 256> table{};
  for (VokULong byte = 0; byte < table.size(); ++byte) {
    VokULong remainder = byte;
    for (int bit = 0; bit < 8; ++bit) {
      remainder = (remainder >> 1) ^ ((remainder & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    table[byte] = remainder;
  }
  return table;
}();

constexpr VokULong VokCalcChecksum(std::string_view bytes) noexcept {
  VokULong sum = 0xFFFFFFFFU;
  for (const char c : bytes) {
    sum = (sum >> 8) ^ vokChecksumTable[(sum ^ static_cast<unsigned char>(c)) & 0xFFU];
  }
  return ~sum;
}
