#include <ostream>

#include "tarn/Printer.h"
#include "tarn/commands/Commands.h"
#include "tarn/commands/Interrupt.h"

namespace tarn {

int RunNarrow(Session& session, std::ostream& out, std::ostream& err) {
  VokTarnNetwork& network = session.GetNetwork();
  network.SetInterrupt(IsInterrupted);
  const VokTarnNetwork::Outcome outcome = network.Propagate();
  if (network.IsMemoryShort()) {
    err << "tarn: error: out of memory\n";
  }
  if (outcome == VokTarnNetwork::Outcome::Interrupted || network.IsMemoryShort()) {
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
