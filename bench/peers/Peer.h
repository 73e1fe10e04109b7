// What the Gecode programs share: each names its models, and `gecodePeer NAME` runs one of them.
#pragma once

#include <functional>
#include <gecode/int.hh>
#include <gecode/minimodel.hh>
#include <gecode/search.hh>
#include <map>
#include <string>
#include <vector>

namespace peer {

// A model as the constructor of a space; `level` is the consistency of its arithmetic: IPL_DEF or IPL_DOM.
using MakeSpace = std::function<Gecode::Space*(Gecode::IntPropLevel level)>;

struct Entry {
  MakeSpace fMake;
  bool fAll;       // all solutions, or the first
  bool fOptimize;  // the spaces are IntMinimizeSpace
};

// The models by name. Each source file adds its own with a static Register object.
std::map<std::string, Entry>& GetEntries();

struct Register {
  Register(const std::string& name, Entry entry) { GetEntries().emplace(name, std::move(entry)); }
};

// A space that carries one array of variables, which it branches on.
class ArraySpace : public Gecode::IntMinimizeSpace {
 public:
  ArraySpace() = default;
  ArraySpace(ArraySpace& other) : IntMinimizeSpace(other) {
    fVariables.update(*this, other.fVariables);
    if (other.fCost.varimp() != nullptr) {
      fCost.update(*this, other.fCost);
    }
  }
  Gecode::Space* copy() override { return new ArraySpace(*this); }
  Gecode::IntVar cost() const override { return fCost; }

  Gecode::IntVarArray fVariables;
  Gecode::IntVar fCost;
};

inline ArraySpace* MakeSquareSpace(int count, int low, int high) {
  auto* space = new ArraySpace;
  space->fVariables = Gecode::IntVarArray(*space, count, low, high);
  return space;
}

// The directory of the generated instances.
std::string GetDataPath(const std::string& name);

}  // namespace peer
