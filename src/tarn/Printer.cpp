#include "tarn/Printer.h"

#include <ostream>

namespace tarn {

void PrintVariables(Session& session, std::ostream& out) {
  const VokTarnNetwork& network = session.GetNetwork();
  const std::vector<Model::Variable>& variables = session.GetModel().GetVariables();
  const std::vector<VokTarnValueId>& values = session.GetVariables();
  for (std::size_t i = 0; i < variables.size(); ++i) {
    out << variables[i].fName << " = ";
    network.GetValue(values[i]).PrintOn(out) << '\n';
  }
}

}  // namespace tarn
