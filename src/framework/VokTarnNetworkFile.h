#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/VokTarnModuleManager.h"
#include "framework/VokTarnSearch.h"

// A network in a file: saved by one process, restored and searched by another. networkFormat.h has the form.
//
// Kept      The values with their names and present domains, the constraints, and what Contents holds. All constraints
//           of a restored network wait to be filtered; one that had failed is restored failed.
// Trust     The bytes are not trusted. Reading takes time and memory in proportion to the bytes that are there; every
//           changed byte and every missing one is noticed. A forged file gives at worst a network of its own making:
//           its constraints stand over the types that the published operators give them, and nothing else runs.
// Errors    A failure is described in `error`: what was expected, and where. Throws std::bad_alloc, also when memory
//           was short only for a moment, and what the stream is set to throw.
class VOKTARN_EXPORT VokTarnNetworkFile {
 public:
  // What a search needs besides the network.
  struct Contents {
    std::vector<std::string> fModules;  // to be opened first, dependencies before what depends on them
    std::vector<VokTarnValueId> fVariables;
    std::optional<VokTarnSearch::Objective> fObjective;
    std::string fModelName;  // the text that the network was built from, and where it came from; may be empty
    std::string fModelText;
  };

  // Whether `bytes` begin as a saved network does.
  static bool IsNetworkFile(std::string_view bytes) noexcept;

  // Writes the network, which must be at its root level, and `contents`. False when that fails: a value or constraint
  // of a class that the streams do not know, a domain that its record does not hold, a failed stream. `os` must be
  // opened in binary mode. Borrows spare values of the network.
  static bool Write(std::ostream& os, VokTarnNetwork& network, const Contents& contents, std::string& error);

  // Reads what Write wrote, to the end of the stream. The modules are opened through `manager`, which must outlive the
  // network. Null when that fails; `contents` is then untouched.
  static std::unique_ptr<VokTarnNetwork> Read(std::istream& is, VokTarnModuleManager& manager, Contents& contents,
                                              std::string& error);
};
