// Random damage to bytes that readers of outside bytes must survive.
#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace support {

// One of `seeds` after one to four changes: a byte replaced, a piece inserted again, a piece deleted, the rest taken
// from another seed. Places are drawn as numbers modulo a size, so that a seed of `random` means the same everywhere.
inline std::string Mutate(const std::vector<std::string>& seeds, std::mt19937& random) {
  constexpr unsigned char telling[] = {0, 1, 2, 3, '\n', '"', '(', ')', ',', '0', '9', ';', '[', '}', 0x7F, 0x80, 0xFF};
  constexpr std::size_t longestPiece = 16;
  std::string bytes = seeds[random() % seeds.size()];
  for (auto changes = 1 + random() % 4; changes > 0; --changes) {
    const std::size_t at = random() % (bytes.size() + 1);
    const std::size_t length = 1 + random() % longestPiece;
    switch (random() % 5) {
      case 0:
        bytes.replace(at, 1, 1, static_cast<char>(random() & 0xFFU));
        break;
      case 1:
        bytes.replace(at, 1, 1, static_cast<char>(telling[random() % std::size(telling)]));
        break;
      case 2:
        bytes.insert(at, bytes, random() % (bytes.size() + 1), length);
        break;
      case 3:
        bytes.erase(at, length);
        break;
      default: {
        const std::string& other = seeds[random() % seeds.size()];
        bytes.replace(at, std::string::npos, other, random() % (other.size() + 1));
        break;
      }
    }
  }
  return bytes;
}

}  // namespace support
