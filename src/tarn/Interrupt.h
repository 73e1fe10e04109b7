// Stopping on request: SIGINT and SIGTERM set a flag that the search asks for.
#pragma once

namespace tarn {

// Forgets the signals that came before. From now on the first one only sets the flag; a second one ends the process as
// usual. Files are read on when a signal comes.
void CatchInterrupts();
// The same for the time in which a line is awaited: every signal only sets the flag and ends the read that waits.
void CatchInterruptsOfInput();
bool IsInterrupted() noexcept;
// Whether SIGTERM ever came; this is not forgotten.
bool IsTerminated() noexcept;

}  // namespace tarn
