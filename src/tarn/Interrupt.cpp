#include "tarn/Interrupt.h"

#include <atomic>
#include <csignal>

namespace tarn {
namespace {

std::atomic<bool> sInterrupted = false;
std::atomic<bool> sTerminated = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may only use lock-free atomics");

extern "C" void NoteInterrupt(int signal) {
  sInterrupted = true;
  if (signal == SIGTERM) {
    sTerminated = true;
  }
}

void Catch(int flags) {
  sInterrupted = false;
  struct sigaction action {};
  action.sa_handler = NoteInterrupt;
  sigemptyset(&action.sa_mask);
  action.sa_flags = flags;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

}  // namespace

void CatchInterrupts() {
  Catch(static_cast<int>(SA_RESETHAND | SA_RESTART));
}

void CatchInterruptsOfInput() {
  Catch(0);
}

bool IsInterrupted() noexcept {
  return sInterrupted;
}

bool IsTerminated() noexcept {
  return sTerminated;
}

}  // namespace tarn
