// Stopping on request: SIGINT and SIGTERM set a flag that the search asks for.
#pragma once

namespace tarn {

// From now on the first signal only sets the flag; a second one ends the process as usual.
void CatchInterrupts();
bool IsInterrupted() noexcept;

}  // namespace tarn
