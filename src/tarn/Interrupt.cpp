#include "tarn/Interrupt.h"

#include <atomic>
#include <chrono>
#include <csignal>

namespace tarn {
namespace {

std::atomic<bool> sInterrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may only use lock-free atomics");

extern "C" void NoteInterrupt(int) {
  sInterrupted = true;
}

}  // namespace

void CatchInterrupts() {
  struct sigaction action {};
  action.sa_handler = NoteInterrupt;
  sigemptyset(&action.sa_mask);
  action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool IsInterrupted() noexcept {
  return sInterrupted;
}

std::function<bool()> MakeStopCondition(const std::optional<double>& timeLimit) {
  using Clock = std::chrono::steady_clock;
  // A longer limit than this is none, and would not fit the clock.
  constexpr double sLongest = 1e9;
  if (!timeLimit || *timeLimit > sLongest) {
    return IsInterrupted;
  }
  const auto limit = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(*timeLimit));
  return [end = Clock::now() + limit] { return IsInterrupted() || Clock::now() >= end; };
}

}  // namespace tarn
