// The sequences of numbers that a search with restarts draws on, the same on every machine.
#pragma once

#include <cstdint>

// SplitMix64 (G. L. Steele, D. Lea, C. H. Flood, "Fast splittable pseudorandom number generators", 2014).
class VokTarnRandom {
 public:
  explicit VokTarnRandom(std::uint64_t seed) noexcept : fState(seed) {}

  std::uint64_t Next() noexcept {
    std::uint64_t z = fState += 0x9E3779B97F4A7C15U;
    z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
    return z ^ (z >> 31U);
  }

 private:
  std::uint64_t fState;
};

// 1, 1, 2, 1, 1, 2, 4, 1, 1, 2, 1, 1, 2, 4, 8, ...: each term from the one before, by D. E. Knuth's "reluctant
// doubling" (The Art of Computer Programming, volume 4B, 7.2.2.2).
class VokTarnLubySequence {
 public:
  std::uint64_t Next() noexcept {
    const std::uint64_t term = fTerm;
    if ((fRound & (~fRound + 1)) == fTerm) {
      ++fRound;
      fTerm = 1;
    } else {
      fTerm *= 2;
    }
    return term;
  }

 private:
  std::uint64_t fRound = 1;
  std::uint64_t fTerm = 1;
};
