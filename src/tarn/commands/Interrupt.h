// Stopping on request: by SIGINT and SIGTERM, by the clock, and by the memory that the process takes.
//
// Two kinds of run. A command that is only to be interruptible calls CatchInterrupts. One with limits calls StartWatch
// before anything else: from then on a timer looks at the limits every few milliseconds, whatever the program is doing.
//
// Phase      What a stop does
// Reading    ends the program at once: nothing has been found, and a file or a statement may take long
// Searching  makes IsInterrupted() true; ends the program if that is not heeded within a tenth of a second
// Printing   makes IsInterrupted() true; a reader that is slow to take what is printed loses nothing
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace tarn {

enum class StopReason : unsigned { None, Signal, Time, Memory };
inline constexpr std::size_t sStopReasons = 4;

enum class Phase { Reading, Searching, Printing };

struct Limits {
  std::optional<double> fSeconds;       // since the start of the program
  std::optional<std::uint64_t> fBytes;  // of resident memory
};

// What a program that is ended from within the watch still prints, by reason.
struct LastWords {
  using ByReason = std::array<std::string, sStopReasons>;
  ByReason fUnknown;    // to the standard output, before the first solution
  ByReason fSatisfied;  // and after it
  ByReason fNote;       // to the standard error
  int fExitCode;
};

// Forgets the signals that came before. From now on the first one only makes IsInterrupted() true; a second one ends
// the process as usual. Files are read on when a signal comes.
void CatchInterrupts();
// The same for the time in which a line is awaited: no signal ends the process, and each ends the read that waits.
void CatchInterruptsOfInput();
// Catches interrupts, too, and begins in the phase Reading. A second signal ends the process as usual, or, when
// `isPatient`, changes nothing.
void StartWatch(const Limits& limits, const LastWords& words, bool isPatient = false);
void EnterPhase(Phase phase) noexcept;
// From now on there is a solution; `unprinted` is what the last words are to begin with.
void NoteSolution(std::string unprinted = {});

bool IsInterrupted() noexcept;
// Whether SIGTERM ever came; this is not forgotten.
bool IsTerminated() noexcept;
// The first reason that there was.
StopReason GetStopReason() noexcept;
// True once for each look of the watch: time to do what is to be done now and then.
bool TakeTick() noexcept;

// The time since the start of the program.
std::chrono::duration<double> GetRunTime() noexcept;
// In bytes; 0 when it is not known.
std::uint64_t GetPeakMemory();

}  // namespace tarn
