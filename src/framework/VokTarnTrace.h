#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "framework/VokTarnNetwork.h"

// The course of a propagation at the root level, and the part of it that accounts for one of its results.
//
// Record propagates and notes which constraint changed which values. Explain looks for a part of these changes that
// still leads to the result, and gives it as steps: each names the domains that one constraint starts from and what it
// makes of them, so that each step can be checked by itself.
//
// Method  A selection of the changes is replayed from the domains that the network had when the trace was made: each
//         constraint is filtered alone, on the domains that the selected changes before it have left. First the changes
//         that the result cannot depend on are dropped, then ever smaller stretches without which the result is still
//         reached, down to single changes (as in A. Zeller, R. Hildebrandt, "Simplifying and isolating
//         failure-inducing input", 2002). At last each step is relieved of the domains that it does not need.
// Cost    Recording: one number per change, up to sMostChanges. Explaining: up to sMostWork filterings; a chain that is
//         not at its shortest by then stays longer.
// Owners  The network must outlive the trace and what the trace gives.
// Errors  Throws std::bad_alloc, and std::invalid_argument when a constraint's class is not published.
class VOKTARN_EXPORT VokTarnTrace {
 public:
  static constexpr std::size_t sMostChanges = 1'000'000;
  static constexpr std::size_t sMostWork = 4'000'000;
  // In place of a step: the domain is the one of the beginning.
  static constexpr std::size_t sInitial = std::numeric_limits<std::size_t>::max();

  using Domain = std::shared_ptr<const VokTarnAny>;

  // A value's domain and the step, by its place, that left it so.
  struct State {
    Domain fDomain;
    std::size_t fStep = sInitial;
  };
  struct Input {
    VokTarnValueId fValue;
    State fState;
  };
  struct Change {
    VokTarnValueId fValue;
    State fBefore;
    Domain fAfter;
  };
  // The filtering of one constraint whose arguments have the domains `fBefore` and those of the inputs, and are
  // undefined otherwise: it changes those of the changes to `fAfter`, or fails.
  struct Step {
    VokULong fConstraint;
    std::vector<Input> fInputs;
    std::vector<Change> fChanges;  // none of a step that fails
    bool fFails;
  };
  struct Chain {
    std::vector<Step> fSteps;  // causes before their effects; the last one has the result
    bool fIsShortest;          // no step can be left out
  };
  // What a value's domain is to have become.
  struct Result {
    VokTarnValueId fValue;  // vokNoValue: the propagation has failed
    std::function<bool(const VokTarnAny&)> fHolds;
  };

  // The network, which has not been propagated, is to be at its root level.
  explicit VokTarnTrace(VokTarnNetwork& network);
  VokTarnTrace(const VokTarnTrace&) = delete;
  VokTarnTrace& operator=(const VokTarnTrace&) = delete;
  ~VokTarnTrace();

  VokTarnNetwork::Outcome Record();
  const VokTarnAny& GetInitial(VokTarnValueId id) const noexcept { return *fInitial[id]; }
  // The steps that lead to the result; none when it holds from the beginning. Nothing when the changes do not lead to
  // it, or were too many to be kept. The network's interrupt ends the search for a shorter chain.
  std::optional<Chain> Explain(const Result& result);

 private:
  // One value changed by one filtering; no value: the filtering failed.
  struct Unit {
    std::uint32_t fFiltering;
    VokULong fConstraint;
    VokTarnValueId fValue;
  };
  struct Effect {
    std::vector<Domain> fDomains;  // of the constraint's values afterwards
    bool fFails = false;
  };
  // The last time that a recorded filtering was replayed.
  struct Replayed {
    std::vector<Domain> fInputs;
    Effect fEffect;
  };
  class Bench;

  void Note(VokULong constraint);
  Domain Keep(const VokTarnObjectDescriptor* type, const VokTarnAny& original);
  bool IsSubset(const VokTarnObjectDescriptor* type, const VokTarnAny& a, const VokTarnAny& b);
  bool AreEqual(VokTarnValueId id, const VokTarnAny& a, const VokTarnAny& b);
  bool HoldsInitially(const Result& result) const;
  Bench& GetBench(VokULong constraint);
  const Effect& Filter(std::uint32_t filtering, VokULong constraint, std::vector<Domain> inputs);
  // The number of units after which the result is reached; nothing when it is not. Appends to `steps` if there.
  std::optional<std::size_t> Replay(std::span<const Unit> units, const Result& result, std::vector<Step>* steps);
  std::vector<Unit> Slice(std::span<const Unit> units, const Result& result) const;
  bool Shorten(std::vector<Unit>& units, const Result& result);
  void Relieve(std::vector<Step>& steps, const Result& result);
  void RelieveStep(Step& step);
  bool IsConfirmed(const Step& step);

  VokTarnNetwork& fNetwork;
  std::vector<Domain> fInitial;
  std::vector<Unit> fUnits;
  std::uint32_t fFilterings = 0;
  std::vector<VokTarnValueId> fChanged;  // by the filtering that is going on
  std::map<VokULong, std::unique_ptr<Bench>> fBenches;
  std::unordered_map<std::uint32_t, Replayed> fReplayed;
  std::size_t fWork = 0;
  bool fIsComplete = true;
};
