// Memory that runs out on request. This program's operator new counts its calls, and what it gave that is not given
// back yet.
#pragma once

#include <gtest/gtest.h>

#include <new>
#include <string>

namespace memory {

// Blocks that are not given back yet.
long GetLiveBlocks() noexcept;

// While it lives, the n-th allocation from its beginning fails, and with `lasts` all after it as well.
class Shortage {
 public:
  Shortage(unsigned long n, bool lasts) noexcept;
  Shortage(const Shortage&) = delete;
  Shortage& operator=(const Shortage&) = delete;
  ~Shortage() { End(); }

  // There is memory again. Whether an allocation has failed.
  bool End() noexcept;
};

// Runs the trial for each n, for a failure that passes and for one that lasts, until it says that nothing has failed.
// What the trial leaves behind is a leak.
template <class Trial>
void ForEachShortage(const std::string& name, Trial trial) {
  trial(0, false);  // lets everything be there that is made once
  for (const bool lasts : {false, true}) {
    bool hasFailed = true;
    for (unsigned long n = 1; hasFailed; ++n) {
      const long before = GetLiveBlocks();
      hasFailed = trial(n, lasts);
      ASSERT_EQ(GetLiveBlocks(), before) << name << " leaks, allocation " << n << (lasts ? " and all after it" : "");
    }
  }
}

constexpr const char* kOutOfMemory = "out of memory";

// The action tells its result, or throws std::bad_alloc. A shortage may end it so, but never change the result.
template <class Action>
void ExpectRightOrNothing(const std::string& name, Action action) {
  const std::string right = action();
  EXPECT_NE(right, kOutOfMemory) << name;
  ForEachShortage(name, [&](unsigned long n, bool lasts) {
    Shortage shortage(n, lasts);
    std::string result;
    try {
      result = action();
    } catch (const std::bad_alloc&) {
      result = kOutOfMemory;
    }
    const bool hasFailed = shortage.End();
    EXPECT_TRUE(result == right || (hasFailed && result == kOutOfMemory))
        << name << ", allocation " << n << (lasts ? " and all after it" : "") << ": " << result << "\nnot: " << right;
    return hasFailed;
  });
}

}  // namespace memory
