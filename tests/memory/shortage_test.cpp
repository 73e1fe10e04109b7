#include "memory/shortage.h"

#include <cstdlib>
#include <limits>
#include <new>

#include "framework/VokTarnMemoryWatch.h"

namespace {

constexpr unsigned long kNever = std::numeric_limits<unsigned long>::max();
unsigned long sLeft = kNever;  // until one fails
bool sLasts = false;
bool sHasFailed = false;
long sLive = 0;

bool IsShort() noexcept {
  if (sLeft == kNever || sLeft > 1) {
    sLeft -= sLeft == kNever ? 0 : 1;
    return false;
  }
  sLeft = sLasts ? 1 : kNever;
  sHasFailed = true;
  return true;
}

}  // namespace

void* operator new(std::size_t size) {
  for (;;) {
    void* const block = IsShort() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (block != nullptr) {
      ++sLive;
      return block;
    }
    const std::new_handler handler = std::get_new_handler();
    if (handler == nullptr) {
      throw std::bad_alloc();
    }
    handler();
  }
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return ::operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
// Not inlined: gcc would take free and new for a mismatch.
[[gnu::noinline]] void operator delete(void* block) noexcept {
  sLive -= block == nullptr ? 0 : 1;
  std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
  ::operator delete(block);
}

namespace memory {

long GetLiveBlocks() noexcept {
  return sLive;
}

Shortage::Shortage(unsigned long n, bool lasts) noexcept {
  sLeft = n == 0 ? kNever : n;
  sLasts = lasts;
  sHasFailed = false;
}

bool Shortage::End() noexcept {
  sLeft = kNever;
  return sHasFailed;
}

}  // namespace memory

namespace {

using memory::Shortage;

TEST(MemoryWatch, SeesFailuresThatOthersGetOver) {
  ASSERT_EQ(std::get_new_handler(), nullptr);
  {
    const VokTarnMemoryWatch watch;
    EXPECT_FALSE(watch.HasSeenFailure());
    Shortage shortage(1, false);
    EXPECT_EQ(::operator new(8, std::nothrow), nullptr);
    EXPECT_TRUE(watch.HasSeenFailure());
    EXPECT_FALSE(VokTarnMemoryWatch().HasSeenFailure());
  }
  EXPECT_EQ(std::get_new_handler(), nullptr);
}

TEST(MemoryWatch, LetsAnOlderHandlerFreeMemory) {
  const auto release = [] { sLeft = kNever; };
  const auto giveUp = [] { throw std::bad_alloc(); };
  const auto retreat = [] { std::set_new_handler(nullptr); };
  const struct {
    std::new_handler fHandler;
    bool fHelps;
  } cases[] = {{release, true}, {giveUp, false}, {retreat, false}};
  for (const auto& c : cases) {
    std::set_new_handler(c.fHandler);
    {
      const VokTarnMemoryWatch watch;
      Shortage shortage(1, true);
      void* const block = ::operator new(8, std::nothrow);
      shortage.End();
      ::operator delete(block);
      EXPECT_EQ(block != nullptr, c.fHelps);
      EXPECT_EQ(watch.HasSeenFailure(), !c.fHelps);
    }
    std::set_new_handler(nullptr);
  }
}

}  // namespace
