#include "flatzinc/Branching.h"

#include <algorithm>
#include <limits>
#include <span>
#include <utility>

namespace fzn {
namespace {

// Annotations deeper than this are not search annotations of a sane model.
constexpr unsigned kDeepest = 100;
// Variables that no annotation names are compared up to this number.
constexpr std::size_t kMostCompared = 1000;

const VokTarnInteger& AsInteger(const VokTarnNetwork& network, VokTarnValueId id) {
  return static_cast<const VokTarnInteger&>(network.GetValue(id));
}

bool HoldsHoles(const VokTarnNetwork& network, VokTarnValueId id) {
  return network.GetType(id)->IsListed();
}

// The middle between the bounds, rounded down.
VokLong FindMiddle(const VokTarnNetwork& network, VokTarnValueId id) {
  const std::int64_t sum = std::int64_t{network.GetLower(id)} + network.GetUpper(id);
  return static_cast<VokLong>(sum >= 0 ? sum / 2 : (sum - 1) / 2);
}

// One value, first or last; inside an interval, which cannot lose it alone, the values up to it.
VokTarnAtom TakeValue(const VokTarnNetwork& network, VokTarnValueId id, VokLong v, VokTarnAtom::Relation relation) {
  const bool isEnd = v == network.GetLower(id) || v == network.GetUpper(id);
  return {id, isEnd || HoldsHoles(network, id) ? relation : VokTarnAtom::Relation::AtMost, v};
}

std::string GetText(const Model& model, const Argument& argument) {
  switch (argument.fKind) {
    case Argument::Kind::Text:
      return model.fTexts[static_cast<std::size_t>(argument.fNumber)];
    case Argument::Kind::Call:
      return std::string(model.GetName(model.fCalls[static_cast<std::size_t>(argument.fNumber)]));
    default:
      return {};
  }
}

}  // namespace

AnnotatedBrancher::AnnotatedBrancher(const Model& model, const VokTarnNetwork& network, const Values& values,
                                     std::uint64_t seed)
    : fWeights(network.GetValueCount()), fRandom(seed) {
  const std::vector<Argument>& annotations = model.fSolve.fAnnotations;
  for (auto annotation = annotations.rbegin(); annotation != annotations.rend(); ++annotation) {
    AddAnnotation(model, *annotation, values, 0);
  }
  AddOthers(model, values);
  for (VokTarnValueId id = 0; id < fWeights.size(); ++id) {
    fWeights[id] = static_cast<std::uint32_t>(network.GetDegree(id)) + 1;
  }
}

void AnnotatedBrancher::AddAnnotation(const Model& model, const Argument& annotation, const Values& values,
                                      unsigned depth) {
  if (annotation.fKind != Argument::Kind::Call || depth > kDeepest) {
    if (const std::string text = GetText(model, annotation); !text.empty() && text != "restart_none") {
      fUnknown.push_back(text);
    }
    return;
  }
  const Call& call = model.fCalls[static_cast<std::size_t>(annotation.fNumber)];
  const std::string_view name = model.GetName(call);
  const std::span<const Argument> arguments = model.GetArguments(call);
  if (name == "seq_search" && !arguments.empty() && arguments[0].fKind == Argument::Kind::List) {
    for (std::uint32_t i = 0; i < arguments[0].fCount; ++i) {
      AddAnnotation(model, model.fArguments[static_cast<std::size_t>(arguments[0].fNumber) + i], values, depth + 1);
    }
  } else if ((name == "int_search" || name == "bool_search") && arguments.size() >= 3) {
    AddSearch(model, call, values);
  } else if ((name == "warm_start" || name == "warm_start_int" || name == "warm_start_bool") && arguments.size() >= 2) {
    AddWarmStart(model, call, values);
  } else if (name.starts_with("restart_")) {
    fRestarts = true;
  } else {
    fUnknown.emplace_back(name);
  }
}

template <class Choice, std::size_t size>
Choice AnnotatedBrancher::Find(const std::pair<const char*, Choice> (&table)[size], const std::string& name,
                               Choice otherwise) {
  const auto* const row =
      std::find_if(std::begin(table), std::end(table), [&name](const auto& pair) { return name == pair.first; });
  if (row == std::end(table)) {
    fUnknown.push_back(name);
    return otherwise;
  }
  return row->second;
}

void AnnotatedBrancher::AddSearch(const Model& model, const Call& call, const Values& values) {
  static constexpr std::pair<const char*, VariableChoice> kVariableChoices[] = {
      {"input_order", VariableChoice::InputOrder},
      {"first_fail", VariableChoice::FirstFail},
      {"anti_first_fail", VariableChoice::AntiFirstFail},
      {"smallest", VariableChoice::Smallest},
      {"largest", VariableChoice::Largest},
      {"occurrence", VariableChoice::Occurrence},
      {"most_constrained", VariableChoice::MostConstrained},
      {"max_regret", VariableChoice::MaxRegret},
      {"dom_w_deg", VariableChoice::Weighted},
      {"impact", VariableChoice::FirstFail}};
  static constexpr std::pair<const char*, ValueChoice> kValueChoices[] = {
      {"indomain_min", ValueChoice::Min},
      {"indomain", ValueChoice::Min},
      {"indomain_max", ValueChoice::Max},
      {"indomain_median", ValueChoice::Median},
      {"indomain_middle", ValueChoice::Middle},
      {"indomain_split", ValueChoice::Split},
      {"indomain_reverse_split", ValueChoice::ReverseSplit},
      {"indomain_interval", ValueChoice::Interval},
      {"indomain_random", ValueChoice::Random},
      {"indomain_split_random", ValueChoice::SplitRandom},
      {"outdomain_min", ValueChoice::OutMin},
      {"outdomain_max", ValueChoice::OutMax},
      {"outdomain_median", ValueChoice::OutMedian},
      {"outdomain_random", ValueChoice::OutRandom}};
  const std::span<const Argument> arguments = model.GetArguments(call);
  if (arguments[0].fKind != Argument::Kind::Array) {
    return;  // an empty list has no kind of its own
  }
  Group group{{},
              Find(kVariableChoices, GetText(model, arguments[1]), VariableChoice::InputOrder),
              Find(kValueChoices, GetText(model, arguments[2]), ValueChoice::Min),
              {}};
  for (const Term& term : model.GetTerms(arguments[0])) {
    if (term.fIsVariable) {
      group.fValues.push_back(values(static_cast<std::size_t>(term.fNumber)));
    }
  }
  fGroups.push_back(std::move(group));
}

// The variables get the values first that are given for them.
void AnnotatedBrancher::AddWarmStart(const Model& model, const Call& call, const Values& values) {
  const std::span<const Argument> arguments = model.GetArguments(call);
  if (arguments[0].fKind != Argument::Kind::Array || arguments[1].fKind != Argument::Kind::Array) {
    return;
  }
  const std::span<const Term> variables = model.GetTerms(arguments[0]);
  const std::span<const Term> given = model.GetTerms(arguments[1]);
  Group group{{}, VariableChoice::InputOrder, ValueChoice::Given, {}};
  for (std::size_t i = 0; i < std::min(variables.size(), given.size()); ++i) {
    if (variables[i].fIsVariable && !given[i].fIsVariable && given[i].fNumber >= std::numeric_limits<VokLong>::min() &&
        given[i].fNumber <= std::numeric_limits<VokLong>::max()) {
      group.fValues.push_back(values(static_cast<std::size_t>(variables[i].fNumber)));
      group.fGiven.push_back(static_cast<VokLong>(given[i].fNumber));
    }
  }
  fGroups.push_back(std::move(group));
}

// Variables that no annotation decides: first those of the author, then those that the compiler has made, at the end
// those that others determine.
void AnnotatedBrancher::AddOthers(const Model& model, const Values& values) {
  const auto isNew = [](std::vector<char>& isKnown, VokTarnValueId id) { return std::exchange(isKnown[id], 1) == 0; };
  std::vector<char> isListed(fWeights.size());
  std::vector<char> isDecided(fWeights.size());
  const auto list = [&](VokTarnValueId id) {
    if (isNew(isListed, id)) {
      fAll.push_back(id);
    }
  };
  for (const Group& group : fGroups) {
    std::ranges::for_each(group.fValues, list);
    if (group.fValue != ValueChoice::Given) {
      std::ranges::for_each(group.fValues, [&](VokTarnValueId id) { isDecided[id] = 1; });
    }
  }
  for (int turn = 0; turn < 3; ++turn) {
    Group group{{}, VariableChoice::Weighted, ValueChoice::Min, {}, kMostCompared};
    for (std::size_t i = 0; i < model.fVariables.size(); ++i) {
      const Variable& variable = model.fVariables[i];
      const int own = variable.fIsDefined ? 2 : variable.fIsIntroduced ? 1 : 0;
      if (own == turn && isNew(isDecided, values(i))) {
        list(values(i));
        group.fValues.push_back(values(i));
      }
    }
    fGroups.push_back(std::move(group));
  }
}

bool AnnotatedBrancher::Choose(const VokTarnNetwork& network, unsigned depth, VokTarnAtom& branch) {
  // What was known at this depth still is, unless the search has been above it since: then it has been cut off.
  if (fPositions.size() > depth + 1) {
    fPositions.resize(depth + 1);
  }
  while (fPositions.size() <= depth) {
    fPositions.push_back(fPositions.empty() ? Position{0, 0} : fPositions.back());
  }
  Position& position = fPositions[depth];
  for (; position.fGroup < fGroups.size(); ++position.fGroup, position.fPlace = 0) {
    const Group& group = fGroups[position.fGroup];
    while (position.fPlace < group.fValues.size() && network.GetCardinality(group.fValues[position.fPlace]) <= 1) {
      ++position.fPlace;
    }
    if (group.fValue == ValueChoice::Given) {
      for (std::size_t i = position.fPlace; i < group.fValues.size(); ++i) {
        const VokTarnValueId id = group.fValues[i];
        if (network.GetCardinality(id) > 1 && AsInteger(network, id).IsPossible(group.fGiven[i])) {
          branch = TakeValue(network, id, group.fGiven[i], VokTarnAtom::Relation::Equal);
          return true;
        }
      }
    } else if (position.fPlace < group.fValues.size()) {
      const VokTarnValueId id = group.fValues[ChoosePlace(network, group, position.fPlace)];
      branch = ChooseValue(network, id, group.fValue);
      return true;
    }
  }
  return false;
}

std::size_t AnnotatedBrancher::ChoosePlace(const VokTarnNetwork& network, const Group& group, std::size_t from) const {
  std::size_t best = from;
  if (group.fVariable == VariableChoice::InputOrder) {
    return best;
  }
  const std::size_t end = from + std::min(group.fMostCompared, group.fValues.size() - from);
  for (std::size_t i = from + 1; i < end; ++i) {
    if (network.GetCardinality(group.fValues[i]) > 1 &&
        IsBetter(network, group.fVariable, group.fValues[i], group.fValues[best])) {
      best = i;
    }
  }
  return best;
}

bool AnnotatedBrancher::IsBetter(const VokTarnNetwork& network, VariableChoice choice, VokTarnValueId a,
                                 VokTarnValueId b) const {
  const int sizeA = network.GetCardinality(a);
  const int sizeB = network.GetCardinality(b);
  switch (choice) {
    case VariableChoice::InputOrder:
      break;
    case VariableChoice::FirstFail:
      return sizeA < sizeB;
    case VariableChoice::AntiFirstFail:
      return sizeA > sizeB;
    case VariableChoice::Smallest:
      return network.GetLower(a) < network.GetLower(b);
    case VariableChoice::Largest:
      return network.GetUpper(a) > network.GetUpper(b);
    case VariableChoice::Occurrence:
      return network.GetDegree(a) > network.GetDegree(b);
    case VariableChoice::MostConstrained:
      return sizeA < sizeB || (sizeA == sizeB && network.GetDegree(a) > network.GetDegree(b));
    case VariableChoice::MaxRegret: {
      const auto regret = [&network](VokTarnValueId id) {
        return std::int64_t{AsInteger(network, id).GetNextExactValue(network.GetLower(id))} - network.GetLower(id);
      };
      return regret(a) > regret(b);
    }
    case VariableChoice::Weighted:
      // Sizes and weights have 32 bits, so the products have 64.
      return static_cast<std::uint64_t>(sizeA) * fWeights[b] < static_cast<std::uint64_t>(sizeB) * fWeights[a];
  }
  return false;
}

// The possible value that `place` others are below.
VokLong AnnotatedBrancher::FindMember(const VokTarnNetwork& network, VokTarnValueId id, std::uint64_t place) const {
  if (const auto lister = network.GetType(id)->GetLister(); lister != nullptr) {
    return lister(network.GetValue(id))[place];
  }
  return static_cast<VokLong>(network.GetLower(id) + static_cast<std::int64_t>(place));
}

VokTarnAtom AnnotatedBrancher::ChooseValue(const VokTarnNetwork& network, VokTarnValueId id, ValueChoice choice) {
  using Relation = VokTarnAtom::Relation;
  const VokLong lower = network.GetLower(id);
  const VokLong upper = network.GetUpper(id);
  const auto size = static_cast<std::uint64_t>(network.GetCardinality(id));
  const auto take = [&](VokLong v, Relation relation) { return TakeValue(network, id, v, relation); };
  switch (choice) {
    case ValueChoice::Min:
    case ValueChoice::Given:
      break;
    case ValueChoice::Max:
      return {id, Relation::Equal, upper};
    case ValueChoice::Median:
      return take(FindMember(network, id, (size - 1) / 2), Relation::Equal);
    case ValueChoice::Middle: {
      const VokLong middle = FindMiddle(network, id);
      const VokTarnInteger& x = AsInteger(network, id);
      if (x.IsPossible(middle)) {
        return take(middle, Relation::Equal);
      }
      const std::int64_t below = x.GetPrevExactValue(middle);
      const std::int64_t above = x.GetNextExactValue(middle);
      return take(static_cast<VokLong>(above - middle < middle - below ? above : below), Relation::Equal);
    }
    case ValueChoice::Split:
      return {id, Relation::AtMost, FindMiddle(network, id)};
    case ValueChoice::ReverseSplit:
      return {id, Relation::AtLeast, FindMiddle(network, id) + 1};
    case ValueChoice::Interval: {
      if (!HoldsHoles(network, id) || size == static_cast<std::uint64_t>(std::int64_t{upper} - lower) + 1) {
        return {id, Relation::AtMost, FindMiddle(network, id)};
      }
      VokLong last = lower;
      while (AsInteger(network, id).IsPossible(last + 1)) {
        ++last;
      }
      return {id, Relation::AtMost, last};
    }
    case ValueChoice::Random:
      return take(FindMember(network, id, fRandom.Next() % size), Relation::Equal);
    case ValueChoice::SplitRandom: {
      const VokLong middle = FindMiddle(network, id);
      return fRandom.Next() % 2 == 0 ? VokTarnAtom{id, Relation::AtMost, middle}
                                     : VokTarnAtom{id, Relation::AtLeast, middle + 1};
    }
    case ValueChoice::OutMin:
      return {id, Relation::Unequal, lower};
    case ValueChoice::OutMax:
      return {id, Relation::Unequal, upper};
    case ValueChoice::OutMedian:
      return take(FindMember(network, id, (size - 1) / 2), Relation::Unequal);
    case ValueChoice::OutRandom:
      return take(FindMember(network, id, fRandom.Next() % size), Relation::Unequal);
  }
  return {id, Relation::Equal, lower};
}

void AnnotatedBrancher::OnFailure(const VokTarnNetwork& network) {
  const VokTarnConstraint* failed = network.GetFailedConstraint();
  if (failed == nullptr) {
    return;
  }
  for (const VokTarnValueId id : failed->GetArguments()) {
    if (id < fWeights.size() && fWeights[id] < std::numeric_limits<std::uint32_t>::max()) {
      ++fWeights[id];
    }
  }
}

}  // namespace fzn
