#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "flatzinc/Model.h"
#include "framework/VokTarnBrancher.h"
#include "framework/VokTarnRestartSequences.h"

namespace fzn {

// Branches as the search annotations of a problem say: group after group of variables, and at the end over all others.
// A group of a warm start looks after given values alone, so its variables are among those others, too.
//
// Variables  Ties go to the variable that stands first. `impact` ranks as `first_fail`.
// Values     A choice inside the domain of a type that holds every value between its bounds is a split there.
// Order      Search annotations that stand side by side, which have no order, are taken from last to first: that is
//            how the model's author wrote them.
// Cost       O(variables of the group) for each choice, in input order O(those that became single since the choice
//            above). Of the others a bounded number is compared, so that large problems are not quadratic.
class AnnotatedBrancher : public VokTarnBrancher {
 public:
  // The value of the network that stands for a variable of the model.
  using Values = std::function<VokTarnValueId(std::size_t variable)>;

  // Names that are not known go to GetUnknown; their groups fall to the last group, or their choices to the default.
  AnnotatedBrancher(const Model& model, const VokTarnNetwork& network, const Values& values, std::uint64_t seed);

  bool Choose(const VokTarnNetwork& network, unsigned depth, VokTarnAtom& branch) override;
  void OnFailure(const VokTarnNetwork& network) override;

  // The next choice is on a network that need not be as far as at the last one.
  void Forget() noexcept { fPositions.clear(); }

  const std::vector<std::string>& GetUnknown() const noexcept { return fUnknown; }
  // Whether an annotation asks for restarts, of whatever sequence.
  bool Restarts() const noexcept { return fRestarts; }
  // All values that the problem's variables stand for, those that the annotations name first, each once.
  const std::vector<VokTarnValueId>& GetAll() const noexcept { return fAll; }

 private:
  enum class VariableChoice {
    InputOrder,
    FirstFail,
    AntiFirstFail,
    Smallest,
    Largest,
    Occurrence,
    MostConstrained,
    MaxRegret,
    Weighted
  };
  enum class ValueChoice {
    Min,
    Max,
    Median,
    Middle,
    Split,
    ReverseSplit,
    Interval,
    Random,
    SplitRandom,
    OutMin,
    OutMax,
    OutMedian,
    OutRandom,
    Given
  };
  struct Group {
    std::vector<VokTarnValueId> fValues;
    VariableChoice fVariable;
    ValueChoice fValue;
    std::vector<VokLong> fGiven;  // with ValueChoice::Given, one for each value
    // So many values from the first open one on are compared.
    std::size_t fMostCompared = std::numeric_limits<std::size_t>::max();
  };
  // Groups before fGroup, and values of it before fPlace, are single.
  struct Position {
    std::size_t fGroup;
    std::size_t fPlace;
  };

  void AddAnnotation(const Model& model, const Argument& annotation, const Values& values, unsigned depth);
  void AddSearch(const Model& model, const Call& call, const Values& values);
  void AddWarmStart(const Model& model, const Call& call, const Values& values);
  void AddOthers(const Model& model, const Values& values);
  template <class Choice, std::size_t size>
  Choice Find(const std::pair<const char*, Choice> (&table)[size], const std::string& name, Choice otherwise);
  std::size_t ChoosePlace(const VokTarnNetwork& network, const Group& group, std::size_t from) const;
  bool IsBetter(const VokTarnNetwork& network, VariableChoice choice, VokTarnValueId a, VokTarnValueId b) const;
  VokTarnAtom ChooseValue(const VokTarnNetwork& network, VokTarnValueId value, ValueChoice choice);
  VokLong FindMember(const VokTarnNetwork& network, VokTarnValueId value, std::uint64_t place) const;

  std::vector<Group> fGroups;
  std::vector<Position> fPositions;     // by depth, up to that of the last choice
  std::vector<std::uint32_t> fWeights;  // by value: failures of its constraints, and its degree
  std::vector<VokTarnValueId> fAll;
  std::vector<std::string> fUnknown;
  bool fRestarts = false;
  VokTarnRandom fRandom;
};

}  // namespace fzn
