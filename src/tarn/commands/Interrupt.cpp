#include "tarn/commands/Interrupt.h"

#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <limits>

namespace tarn {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds sTickLength(10);
// How long a search that has been told to stop may take to do so.
constexpr std::chrono::milliseconds sGrace(100);

const Clock::time_point sStart = Clock::now();

// What the handlers read is set before they are, or atomic.
Clock::time_point sEnd = Clock::time_point::max();
std::uint64_t sMostPages = std::numeric_limits<std::uint64_t>::max();
int sMemoryFile = -1;
const LastWords* sWords = nullptr;  // never destroyed: a signal may come while the process ends
std::atomic<bool> sHasSolution = false;
std::atomic<const std::string*> sUnprinted = nullptr;
std::atomic<StopReason> sReason = StopReason::None;
std::atomic<Clock::rep> sStopped = 0;
std::atomic<Phase> sPhase = Phase::Searching;
std::atomic<bool> sIsTickDue = false;
std::atomic<bool> sIsTerminated = false;
static_assert(std::atomic<StopReason>::is_always_lock_free && std::atomic<Clock::rep>::is_always_lock_free &&
                  std::atomic<Phase>::is_always_lock_free && std::atomic<bool>::is_always_lock_free,
              "a signal handler may only use lock-free atomics");

void WriteAll(int file, const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t written = write(file, text.data() + done, text.size() - done);
    if (written < 0 && errno != EINTR) {
      return;
    }
    done += written < 0 ? 0 : static_cast<std::size_t>(written);
  }
}

// The second number of /proc/self/statm; 0 when that cannot be read.
std::uint64_t CountResidentPages() {
  char text[64];
  const ssize_t size = pread(sMemoryFile, text, sizeof text, 0);
  ssize_t at = 0;
  while (at < size && text[at] != ' ') {
    ++at;
  }
  std::uint64_t pages = 0;
  for (++at; at < size && text[at] >= '0' && text[at] <= '9'; ++at) {
    pages = pages * 10 + static_cast<std::uint64_t>(text[at] - '0');
  }
  return pages;
}

// Looks at the limits. In a signal handler, so with async-signal-safe calls alone.
void Look(StopReason reason) {
  if (reason == StopReason::None && Clock::now() >= sEnd) {
    reason = StopReason::Time;
  }
  if (reason == StopReason::None && sMemoryFile >= 0 && CountResidentPages() > sMostPages) {
    reason = StopReason::Memory;
  }
  const Clock::rep now = Clock::now().time_since_epoch().count();
  StopReason before = sReason;
  if (before == StopReason::None && reason != StopReason::None) {
    sStopped = now;
    sReason = before = reason;
  }
  const Phase phase = sPhase;
  if (before == StopReason::None || sWords == nullptr || phase == Phase::Printing ||
      (phase == Phase::Searching && Clock::duration(now - sStopped) < sGrace)) {
    return;
  }
  const auto index = static_cast<unsigned>(before);
  if (const std::string* unprinted = sUnprinted) {
    WriteAll(STDOUT_FILENO, *unprinted);
  }
  WriteAll(STDOUT_FILENO, (sHasSolution ? sWords->fSatisfied : sWords->fUnknown)[index]);
  WriteAll(STDERR_FILENO, sWords->fNote[index]);
  _exit(sWords->fExitCode);
}

extern "C" void HandleSignal(int signal) {
  const int error = errno;
  sIsTickDue = true;
  if (signal == SIGTERM) {
    sIsTerminated = true;
  }
  Look(signal == SIGALRM ? StopReason::None : StopReason::Signal);
  errno = error;
}

void Catch(int signal, int flags) {
  struct sigaction action {};
  action.sa_handler = HandleSignal;
  sigemptyset(&action.sa_mask);
  for (const int other : {SIGINT, SIGTERM, SIGALRM}) {
    sigaddset(&action.sa_mask, other);
  }
  action.sa_flags = flags;
  sigaction(signal, &action, nullptr);
}

void StartTimer() {
  sigset_t alarm;
  sigemptyset(&alarm);
  sigaddset(&alarm, SIGALRM);
  sigprocmask(SIG_UNBLOCK, &alarm, nullptr);
  constexpr suseconds_t sMicroseconds = std::chrono::microseconds(sTickLength).count();
  const itimerval timer{{0, sMicroseconds}, {0, sMicroseconds}};
  setitimer(ITIMER_REAL, &timer, nullptr);
}

}  // namespace

void CatchInterrupts() {
  sReason = StopReason::None;
  for (const int signal : {SIGINT, SIGTERM}) {
    Catch(signal, static_cast<int>(SA_RESETHAND | SA_RESTART));
  }
}

void CatchInterruptsOfInput() {
  sReason = StopReason::None;
  for (const int signal : {SIGINT, SIGTERM}) {
    Catch(signal, 0);
  }
}

void StartWatch(const Limits& limits, const LastWords& words, bool isPatient) {
  // A longer limit than this is none, and would not fit the clock.
  constexpr double sLongest = 1e9;
  if (limits.fSeconds && *limits.fSeconds <= sLongest) {
    sEnd = sStart + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(*limits.fSeconds));
  }
  if (limits.fBytes) {
    sMostPages = *limits.fBytes / static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    sMemoryFile = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
  }
  sPhase = Phase::Reading;
  sWords = new LastWords(words);
  Catch(SIGALRM, SA_RESTART);
  CatchInterrupts();
  if (isPatient) {
    Catch(SIGINT, SA_RESTART);
    Catch(SIGTERM, SA_RESTART);
  }
  StartTimer();
}

void EnterPhase(Phase phase) noexcept {
  if (phase == Phase::Searching) {
    // A limit that has been passed holds however short the search is.
    if (sPhase == Phase::Reading) {
      std::raise(SIGALRM);
    }
    sStopped = Clock::now().time_since_epoch().count();
  }
  sPhase = phase;
}

void NoteSolution(std::string unprinted) {
  // A handler that runs meanwhile sees one or the other, whole.
  const auto* const next = unprinted.empty() ? nullptr : new std::string(std::move(unprinted));
  delete sUnprinted.exchange(next);
  sHasSolution = true;
}

bool IsInterrupted() noexcept {
  return sReason.load(std::memory_order_relaxed) != StopReason::None;
}

bool IsTerminated() noexcept {
  return sIsTerminated;
}

StopReason GetStopReason() noexcept {
  return sReason;
}

bool TakeTick() noexcept {
  return sIsTickDue.load(std::memory_order_relaxed) && sIsTickDue.exchange(false);
}

std::chrono::duration<double> GetRunTime() noexcept {
  return Clock::now() - sStart;
}

std::uint64_t GetPeakMemory() {
  // getrusage would count what the process was before it became this program.
  std::ifstream status("/proc/self/status");
  std::string word;
  std::uint64_t kibibytes = 0;
  while (status >> word && word != "VmHWM:") {
  }
  status >> kibibytes;
  return kibibytes * 1024;
}

}  // namespace tarn
