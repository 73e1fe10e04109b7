// Sessions for fuzz targets: the modules opened once, propagation and search kept so short that an input is quick.
#pragma once

#include <memory>

#include "fuzz.h"
#include "tarn/Diagnostic.h"
#include "tarn/Session.h"

namespace fuzz {

inline tarn::Modules& OpenModules() {
  static tarn::Modules modules;
  [[maybe_unused]] static const VokTarnModule& opened = modules.Open(tarn::Modules::sDefault);
  return modules;
}

// Null when the text, or the saved network, is refused.
inline std::unique_ptr<tarn::Session> Read(const tarn::Source& source) {
  auto session = std::make_unique<tarn::Session>(OpenModules());
  try {
    session->Read(source);
    return session;
  } catch (const tarn::ModelError& error) {
    if (error.GetOffset() > source.GetText().size()) {
      Fail(std::string("a mistake has no place in the text: ") + error.what());
    }
    tarn::FormatDiagnostic(source, error);
  } catch (const tarn::ProgramError&) {
  }
  return nullptr;
}

// Stops all work after so many steps of propagation.
inline void LimitSteps(VokTarnNetwork& network, int steps) {
  network.SetInterrupt([left = steps]() mutable { return left-- <= 0; });
}

}  // namespace fuzz
