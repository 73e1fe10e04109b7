#include <ostream>

#include "tarn/Diagnostic.h"
#include "tarn/TextStream.h"
#include "tarn/commands/Commands.h"
#include "tarn/commands/Interrupt.h"
#include "tarn/commands/NewFile.h"

namespace tarn {

int RunSave(Session& session, const std::string& path, std::ostream& err) {
  VokTarnNetwork& network = session.GetNetwork();
  network.SetInterrupt(IsInterrupted);
  if (network.Propagate() == VokTarnNetwork::Outcome::Interrupted) {
    err << "tarn: stopped before the network was narrowed; nothing is saved\n";
    return Undecided;
  }
  TextWriter bytes;
  std::string error;
  if (!VokTarnNetworkFile::Write(bytes, network, session.GetContents(), error)) {
    throw ProgramError(path + ": error: " + MakePrintable(error));
  }
  NewFile file(path);
  file.Write(bytes.str());
  file.Finish();
  return Solved;
}

}  // namespace tarn
