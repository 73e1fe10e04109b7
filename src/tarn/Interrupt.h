// Stopping on request: SIGINT and SIGTERM set a flag that the search asks for.
#pragma once

#include <functional>
#include <optional>

namespace tarn {

// From now on the first signal only sets the flag; a second one ends the process as usual.
void CatchInterrupts();
bool IsInterrupted() noexcept;
// Whether to stop: a signal has come, or so many seconds are over from now on.
std::function<bool()> MakeStopCondition(const std::optional<double>& timeLimit);

}  // namespace tarn
