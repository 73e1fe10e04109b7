#include "tarn/Interrupt.h"

#include <atomic>
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

}  // namespace tarn
