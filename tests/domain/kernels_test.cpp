// Every variant of the inner loops that this machine can run, against the standard algorithms and plain loops.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "domain/kernels/KernelChoice.h"
#include "support/soak.h"

namespace {

using Values = std::vector<VokLong>;
using VokFenKernels::kSlack;

class Kernels : public testing::TestWithParam<std::size_t> {
 protected:
  unsigned Below(unsigned n) { return static_cast<unsigned>(fRandom() % n); }

  // Up to `most` numbers of mean distance 1 to 40, from a start near 0.
  Values Ascending(unsigned most) {
    const unsigned step = Below(2) == 0 ? 2 : 1 + Below(80);
    VokLong v = static_cast<VokLong>(Below(60)) - 30;
    Values values(1 + Below(Below(8) == 0 ? most : 40));
    std::generate(values.begin(), values.end(), [&] { return v += 1 + static_cast<VokLong>(Below(step)); });
    return values;
  }

  template <class Operation>
  static Values Result(std::size_t room, Operation operation) {
    Values out(room + kSlack);
    out.resize(operation(out.data()));
    return out;
  }

  const VokFenKernels::Kernels& fKernels = *VokFenEnumInteger::KernelChoice::GetRunnable()[GetParam()];
  std::mt19937 fRandom{20241101};
};

unsigned Size(const Values& values) {
  return static_cast<unsigned>(values.size());
}

TEST_P(Kernels, IntersectAndUniteAsTheStandardAlgorithms) {
  for (int i = 0; i < 20000 * support::SoakFactor(); ++i) {
    const Values a = Ascending(1024), b = Ascending(1024);
    const VokLong shift = static_cast<VokLong>(Below(40)) - 20;
    Values shifted(b), common, both;
    std::for_each(shifted.begin(), shifted.end(), [=](VokLong& v) { v += shift; });
    std::set_intersection(a.begin(), a.end(), shifted.begin(), shifted.end(), std::back_inserter(common));
    std::set_union(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(both));
    ASSERT_EQ(
        Result(a.size(),
               [&](VokLong* out) { return fKernels.fIntersect(a.data(), Size(a), b.data(), Size(b), shift, out); }),
        common)
        << i;
    ASSERT_EQ(Result(a.size() + b.size(),
                     [&](VokLong* out) { return fKernels.fUnite(a.data(), Size(a), b.data(), Size(b), out); }),
              both)
        << i;
  }
}

TEST_P(Kernels, KeepsWhatBitsAndListsHold) {
  for (int i = 0; i < 5000 * support::SoakFactor(); ++i) {
    const Values listed = Ascending(300), values = Ascending(1024);
    const unsigned width = static_cast<unsigned>(listed.back() - listed[0]) + 1 - Below(2);
    std::vector<std::uint64_t> bits(width / 64 + 1);
    for (const VokLong v : listed) {
      bits[static_cast<unsigned>(v - listed[0]) / 64] |= std::uint64_t{1} << (v - listed[0]) % 64;
    }
    Values padded(listed), inBits, inList;
    padded.resize((listed.size() + 31) / 32 * 32, listed[0]);
    for (const VokLong v : values) {
      const bool isListed = std::binary_search(listed.begin(), listed.end(), v);
      if (isListed) {
        inList.push_back(v);
      }
      if (isListed && static_cast<unsigned>(v - listed[0]) < width) {
        inBits.push_back(v);
      }
    }
    ASSERT_EQ(Result(values.size(),
                     [&](VokLong* out) {
                       return fKernels.fKeepBits(values.data(), Size(values), listed[0], width, bits.data(), out);
                     }),
              inBits)
        << i;
    ASSERT_EQ(Result(values.size(),
                     [&](VokLong* out) {
                       return fKernels.fKeepListed(values.data(), Size(values), padded.data(), Size(padded), out);
                     }),
              inList)
        << i;
  }
}

INSTANTIATE_TEST_SUITE_P(OfThisMachine, Kernels,
                         testing::Range(std::size_t{0}, VokFenEnumInteger::KernelChoice::GetRunnable().size()));

}  // namespace
