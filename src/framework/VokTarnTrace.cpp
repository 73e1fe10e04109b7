#include "framework/VokTarnTrace.h"

#include <algorithm>
#include <new>
#include <set>
#include <stdexcept>
#include <utility>

#include "framework/VokTarnObjectEnvironment.h"

// One constraint over values of its own, which is filtered on any domains.
class VokTarnTrace::Bench {
 public:
  Bench(const VokTarnNetwork& network, const VokTarnConstraint& original) {
    std::vector<VokTarnValueId> arguments;
    for (const VokTarnValueId argument : original.GetArguments()) {
      if (argument == vokNoValue) {
        arguments.push_back(vokNoValue);
        continue;
      }
      const auto found = std::ranges::find(fValues, argument);
      arguments.push_back(static_cast<VokTarnValueId>(found - fValues.begin()));
      if (found == fValues.end()) {
        fValues.push_back(argument);
        fNetwork.AddValue(network.GetType(argument));
      }
    }
    const VokTarnObjectDescriptor* published = original.GetDescriptor();
    if (published == nullptr || published->IsDerivedFrom(VokTarnConstraintDescriptor::sIdent) == 0) {
      throw std::invalid_argument("the class of a constraint is not published");
    }
    const auto* descriptor = static_cast<const VokTarnConstraintDescriptor*>(published);
    fConstraint = descriptor->Create(arguments, original.GetForm(), original.GetConstants());
    if (fConstraint == nullptr) {
      throw std::bad_alloc();
    }
    fNetwork.AddConstraint(std::unique_ptr<VokTarnConstraint>(fConstraint));
  }

  // The constraint's values, each once.
  const std::vector<VokTarnValueId>& GetValues() const noexcept { return fValues; }

  // Filters once, with these domains, and hands over what it leaves before it is undone. Null is an undefined domain.
  template <class Take>
  void Filter(const std::vector<Domain>& domains, Take take) {
    fNetwork.PushLevel();
    for (VokTarnValueId id = 0; id < domains.size(); ++id) {
      if (domains[id] != nullptr) {
        fNetwork.Copy(fNetwork.Touch(id), *domains[id]);
        fNetwork.NoteChange(id);
      }
    }
    if (!fNetwork.IsFailed()) {
      fConstraint->Filter(VokTarnObjectEnvironment(fNetwork, fConstraint->GetArguments()), 0);
    }
    if (fNetwork.IsMemoryShort()) {
      throw std::bad_alloc();
    }
    take(std::as_const(fNetwork));
    fNetwork.PopLevel();
  }

 private:
  VokTarnNetwork fNetwork;
  std::vector<VokTarnValueId> fValues;
  VokTarnConstraint* fConstraint;  // the network's
};

VokTarnTrace::VokTarnTrace(VokTarnNetwork& network) : fNetwork(network) {
  fInitial.reserve(network.GetValueCount());
  for (VokTarnValueId id = 0; id < network.GetValueCount(); ++id) {
    fInitial.push_back(Keep(network.GetType(id), network.GetValue(id)));
  }
}

VokTarnTrace::~VokTarnTrace() = default;

VokTarnTrace::Domain VokTarnTrace::Keep(const VokTarnObjectDescriptor* type, const VokTarnAny& original) {
  VokTarnNetwork::Spare copy = fNetwork.TakeSpare(type);
  fNetwork.Copy(*copy, original);
  return copy;
}

bool VokTarnTrace::IsSubset(const VokTarnObjectDescriptor* type, const VokTarnAny& a, const VokTarnAny& b) {
  const VokTarnNetwork::Spare common = fNetwork.TakeSpare(type);
  fNetwork.Copy(*common, a);
  const bool isSubset = common->Intersect(b) == 0;
  if (fNetwork.IsMemoryShort()) {
    throw std::bad_alloc();
  }
  return isSubset;
}

bool VokTarnTrace::AreEqual(VokTarnValueId id, const VokTarnAny& a, const VokTarnAny& b) {
  const VokTarnObjectDescriptor* type = fNetwork.GetType(id);
  return a.GetCardinality() == b.GetCardinality() && IsSubset(type, a, b) && IsSubset(type, b, a);
}

VokTarnNetwork::Outcome VokTarnTrace::Record() {
  struct Recording {
    VokTarnNetwork& fNetwork;
    ~Recording() {
      fNetwork.SetFilterHook({});
      fNetwork.SetChangeLog(nullptr);
    }
  };
  const Recording recording{fNetwork};
  fNetwork.SetChangeLog(&fChanged);
  fNetwork.SetFilterHook([this](VokULong constraint) { Note(constraint); });
  return fNetwork.Propagate();
}

void VokTarnTrace::Note(VokULong constraint) {
  fIsComplete = fIsComplete && fUnits.size() + fChanged.size() < sMostChanges;
  if (fIsComplete) {
    if (fNetwork.IsFailed()) {
      fUnits.push_back({fFilterings, constraint, vokNoValue});
    } else {
      for (const VokTarnValueId value : fChanged) {
        fUnits.push_back({fFilterings, constraint, value});
      }
    }
    ++fFilterings;
  }
  fNetwork.ClearChangeLog();
}

std::optional<VokTarnTrace::Chain> VokTarnTrace::Explain(const Result& result) {
  if (HoldsInitially(result)) {
    return Chain{{}, true};
  }
  fWork = 0;
  fReplayed.clear();
  const std::optional<std::size_t> reached = Replay(fUnits, result, nullptr);
  if (!fIsComplete || !reached) {
    return std::nullopt;
  }
  std::vector<Unit> units = Slice(std::span(fUnits).first(*reached), result);
  Chain chain;
  chain.fIsShortest = Shorten(units, result);
  if (!Replay(units, result, &chain.fSteps)) {
    return std::nullopt;
  }
  Relieve(chain.fSteps, result);
  return chain;
}

bool VokTarnTrace::HoldsInitially(const Result& result) const {
  return result.fValue == vokNoValue
             ? std::ranges::any_of(fInitial, [](const Domain& domain) { return domain->IsNil() != 0; })
             : result.fHolds(*fInitial[result.fValue]);
}

VokTarnTrace::Bench& VokTarnTrace::GetBench(VokULong constraint) {
  std::unique_ptr<Bench>& bench = fBenches[constraint];
  if (bench == nullptr) {
    bench = std::make_unique<Bench>(fNetwork, fNetwork.GetConstraint(constraint));
  }
  return *bench;
}

const VokTarnTrace::Effect& VokTarnTrace::Filter(std::uint32_t filtering, VokULong constraint,
                                                 std::vector<Domain> inputs) {
  Replayed& last = fReplayed[filtering];
  if (last.fInputs == inputs) {
    return last.fEffect;
  }
  ++fWork;
  Bench& bench = GetBench(constraint);
  std::vector<Domain> previous = std::move(last.fEffect.fDomains);
  last.fEffect.fDomains = inputs;
  bench.Filter(inputs, [&](const VokTarnNetwork& after) {
    last.fEffect.fFails = after.IsFailed();
    for (VokTarnValueId i = 0; i < inputs.size() && !after.IsFailed(); ++i) {
      const VokTarnAny& domain = after.GetValue(i);
      const VokTarnValueId id = bench.GetValues()[i];
      // A domain that equals an older one is that one: what depends on it need not be filtered again.
      if (i < previous.size() && AreEqual(id, *previous[i], domain)) {
        last.fEffect.fDomains[i] = previous[i];
      } else if (!AreEqual(id, *inputs[i], domain)) {
        last.fEffect.fDomains[i] = Keep(fNetwork.GetType(id), domain);
      }
    }
  });
  last.fInputs = std::move(inputs);
  return last.fEffect;
}

std::optional<std::size_t> VokTarnTrace::Replay(std::span<const Unit> units, const Result& result,
                                                std::vector<Step>* steps) {
  std::unordered_map<VokTarnValueId, State> states;
  std::size_t count = 0;
  const auto get = [&](VokTarnValueId id) {
    const auto found = states.find(id);
    return found == states.end() ? State{fInitial[id]} : found->second;
  };
  const auto isReached = [&] { return result.fValue != vokNoValue && result.fHolds(*get(result.fValue).fDomain); };
  for (std::size_t i = 0; i < units.size();) {
    const Unit& first = units[i];
    const std::vector<VokTarnValueId>& values = GetBench(first.fConstraint).GetValues();
    Step step{first.fConstraint, {}, {}, false};
    std::vector<Domain> inputs;
    for (const VokTarnValueId id : values) {
      step.fInputs.push_back({id, get(id)});
      inputs.push_back(step.fInputs.back().fState.fDomain);
    }
    const Effect& effect = Filter(first.fFiltering, first.fConstraint, std::move(inputs));
    step.fFails = effect.fFails;
    for (; i < units.size() && units[i].fFiltering == first.fFiltering; ++i) {
      if (effect.fFails || units[i].fValue == vokNoValue) {
        continue;
      }
      const auto at = static_cast<std::size_t>(std::ranges::find(values, units[i].fValue) - values.begin());
      step.fChanges.push_back({units[i].fValue, step.fInputs[at].fState, effect.fDomains[at]});
      states[units[i].fValue] = {effect.fDomains[at], count};
    }
    if (steps != nullptr) {
      std::erase_if(step.fInputs, [&step](const Input& input) {
        return std::ranges::find(step.fChanges, input.fValue, &Change::fValue) != step.fChanges.end();
      });
      steps->push_back(std::move(step));
    }
    ++count;
    if (effect.fFails || isReached()) {
      return effect.fFails == (result.fValue == vokNoValue) ? std::optional(i) : std::nullopt;
    }
  }
  return std::nullopt;
}

// The units that the result can depend on: those that change a value of which it, or a later one of them, knows.
std::vector<VokTarnTrace::Unit> VokTarnTrace::Slice(std::span<const Unit> units, const Result& result) const {
  std::vector<Unit> slice;
  std::set<VokTarnValueId> known{result.fValue};
  for (auto unit = units.rbegin(); unit != units.rend(); ++unit) {
    if (known.contains(unit->fValue)) {
      slice.push_back(*unit);
      const std::span<const VokTarnValueId> arguments = fNetwork.GetConstraint(unit->fConstraint).GetArguments();
      std::ranges::copy_if(arguments, std::inserter(known, known.end()),
                           [](VokTarnValueId argument) { return argument != vokNoValue; });
    }
  }
  std::ranges::reverse(slice);
  return slice;
}

// Drops stretches of the units, the late ones first. Whether it got to the end.
bool VokTarnTrace::Shorten(std::vector<Unit>& units, const Result& result) {
  for (std::size_t length = std::max<std::size_t>(units.size() / 2, 1);; length /= 2) {
    for (std::size_t end = units.size(); end > 0;) {
      if (fWork > sMostWork || fNetwork.PollInterrupt()) {
        return false;
      }
      fWork += units.size() / 16;  // looking up what is known takes time too
      const std::size_t begin = end > length ? end - length : 0;
      std::vector<Unit> rest(units.begin(), units.begin() + static_cast<std::ptrdiff_t>(begin));
      rest.insert(rest.end(), units.begin() + static_cast<std::ptrdiff_t>(end), units.end());
      if (const std::optional<std::size_t> reached = Replay(rest, result, nullptr)) {
        rest.resize(*reached);
        units = std::move(rest);
      }
      end = std::min(begin, units.size());
    }
    if (length == 1) {
      return true;
    }
  }
}

// From the last step back, keeps of each what the result or a later step needs, and of its inputs what that needs.
void VokTarnTrace::Relieve(std::vector<Step>& steps, const Result& result) {
  std::set<std::pair<std::size_t, VokTarnValueId>> needed;
  if (!steps.empty()) {
    needed.emplace(steps.size() - 1, result.fValue);
  }
  std::vector<std::size_t> places(steps.size(), sInitial);
  for (std::size_t i = steps.size(); i-- > 0;) {
    Step& step = steps[i];
    // What is not asked of the step is no longer a change, but an input like any other.
    std::erase_if(step.fChanges, [&](const Change& change) {
      const bool isNeeded = needed.contains({i, change.fValue});
      if (!isNeeded) {
        step.fInputs.push_back({change.fValue, change.fBefore});
      }
      return !isNeeded;
    });
    if (step.fChanges.empty() && !step.fFails) {
      continue;
    }
    places[i] = 0;
    RelieveStep(step);
    for (const Input& input : step.fInputs) {
      needed.emplace(input.fState.fStep, input.fValue);
    }
    for (const Change& change : step.fChanges) {
      needed.emplace(change.fBefore.fStep, change.fValue);
    }
  }
  std::size_t count = 0;
  std::vector<Step> kept;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    if (places[i] == sInitial) {
      continue;
    }
    places[i] = count++;
    const auto renumber = [&places](State& state) {
      state.fStep = state.fStep == sInitial ? sInitial : places[state.fStep];
    };
    for (Input& input : steps[i].fInputs) {
      renumber(input.fState);
    }
    for (Change& change : steps[i].fChanges) {
      renumber(change.fBefore);
    }
    kept.push_back(std::move(steps[i]));
  }
  steps = std::move(kept);
}

// Drops each input without which the step is the same, and takes an older domain for one with which it is.
void VokTarnTrace::RelieveStep(Step& step) {
  for (std::size_t i = 0; i < step.fInputs.size();) {
    const Input input = step.fInputs[i];
    step.fInputs.erase(step.fInputs.begin() + static_cast<std::ptrdiff_t>(i));
    if (IsConfirmed(step)) {
      continue;
    }
    const auto place = step.fInputs.begin() + static_cast<std::ptrdiff_t>(i);
    const auto kept = step.fInputs.insert(place, {input.fValue, {fInitial[input.fValue]}});
    if (input.fState.fStep != sInitial && !IsConfirmed(step)) {
      *kept = input;
    }
    ++i;
  }
}

bool VokTarnTrace::IsConfirmed(const Step& step) {
  Bench& bench = GetBench(step.fConstraint);
  const std::vector<VokTarnValueId>& values = bench.GetValues();
  const auto placeOf = [&values](VokTarnValueId id) {
    return static_cast<VokTarnValueId>(std::ranges::find(values, id) - values.begin());
  };
  std::vector<Domain> domains(values.size());
  for (const Input& input : step.fInputs) {
    domains[placeOf(input.fValue)] = input.fState.fDomain;
  }
  for (const Change& change : step.fChanges) {
    domains[placeOf(change.fValue)] = change.fBefore.fDomain;
  }
  bool isConfirmed = false;
  bench.Filter(domains, [&](const VokTarnNetwork& after) {
    isConfirmed = after.IsFailed() == step.fFails && std::ranges::all_of(step.fChanges, [&](const Change& change) {
                    return AreEqual(change.fValue, after.GetValue(placeOf(change.fValue)), *change.fAfter);
                  });
  });
  return isConfirmed;
}
