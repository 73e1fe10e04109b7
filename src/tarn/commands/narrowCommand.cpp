#include <ostream>

#include "tarn/Printer.h"
#include "tarn/commands/Commands.h"
#include "tarn/commands/Interrupt.h"

namespace tarn {

int RunNarrow(Session& session, std::ostream& out) {
  VokTarnNetwork& network = session.GetNetwork();
  network.SetInterrupt(IsInterrupted);
  const VokTarnNetwork::Outcome outcome = network.Propagate();
  if (outcome == VokTarnNetwork::Outcome::Interrupted) {
    out << sUnknown;
    return Undecided;
  }
  if (outcome == VokTarnNetwork::Outcome::Failed) {
    out << sUnsatisfiable;
    return NoSolution;
  }
  PrintVariables(session, out);
  return Solved;
}

}  // namespace tarn
