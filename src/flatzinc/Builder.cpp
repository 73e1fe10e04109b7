#include "flatzinc/Builder.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <stdexcept>

#include "flatzinc/bounds.h"
#include "flatzinc/differences.h"
#include "flatzinc/sets.h"
#include "framework/VokTarnInteger.h"
#include "framework/VokTarnOperatorTable.h"
#include "framework/VokTarnRelation.h"

namespace fzn {
namespace {

std::uint64_t CountValues(const Set& domain) {
  std::uint64_t count = 0;
  for (const Range& range : domain) {
    count += static_cast<std::uint64_t>(range.fUpper) - static_cast<std::uint64_t>(range.fLower) + 1;
  }
  return count;
}

bool Contains(const Set& domain, VokLong v) {
  return std::ranges::any_of(domain, [v](const Range& range) { return v >= range.fLower && v <= range.fUpper; });
}

}  // namespace

Builder::Builder(const VokTarnModuleManager& modules, VokTarnNetwork& network, const Model& model, ErrorList& errors)
    : fModules(modules), fNetwork(network), fModel(model), fErrors(errors) {}

bool Builder::Build() {
  const std::size_t count = fModel.fVariables.size();
  fParents.resize(count);
  fDomains.resize(count);
  for (std::size_t i = 0; i < count; ++i) {
    const Variable& variable = fModel.fVariables[i];
    fParents[i] = i;
    fDomains[i] = variable.fIsBounded ? variable.fDomain : MakeUnbounded();
  }
  fIsPosted.assign(fModel.fConstraints.size(), false);
  ChooseTypes();
  UnifyVariables();
  InferBounds(
      fModel, [this](std::size_t i) { return FindRoot(i); }, fDomains);
  AddValues();
  if (fErrors.IsEmpty()) {
    PostAll();
  }
  return fErrors.IsEmpty();
}

// ---- Variables

std::size_t Builder::FindRoot(std::size_t variable) const {
  while (fParents[variable] != variable) {
    fParents[variable] = fParents[fParents[variable]];
    variable = fParents[variable];
  }
  return variable;
}

void Builder::Unify(const Term& a, const Term& b) {
  if (!a.fIsVariable && !b.fIsVariable) {
    if (a.fNumber != b.fNumber) {
      fNetwork.Fail();
    }
    return;
  }
  const std::size_t first = FindRoot(static_cast<std::size_t>(a.fIsVariable ? a.fNumber : b.fNumber));
  if (!a.fIsVariable || !b.fIsVariable) {
    const std::int64_t number = a.fIsVariable ? b.fNumber : a.fNumber;
    fDomains[first] = Intersect(fDomains[first], MakeRange(number, number));
    return;
  }
  const std::size_t second = FindRoot(static_cast<std::size_t>(b.fNumber));
  if (first != second) {
    fParents[std::max(first, second)] = std::min(first, second);
    fDomains[std::min(first, second)] = Intersect(fDomains[first], fDomains[second]);
  }
}

// A truth value and the integer that it is are equal as any two integers.
void Builder::UnifyVariables() {
  for (std::size_t i = 0; i < fModel.fConstraints.size(); ++i) {
    const Constraint& c = fModel.fConstraints[i];
    const std::string_view name = fModel.GetName(c);
    const Posting posting(*this, c);
    try {
      if (c.fCount == 2 && (name == "bool2int" || name == "bool_eq" || name == "int_eq")) {
        Unify(posting.GetTerm(0), posting.GetTerm(1));
        fIsPosted[i] = true;
      } else if (name == "int_lin_eq" && c.fCount == 3 && posting.GetTerms(1).size() == 2) {
        const std::span<const Term> factors = posting.GetTerms(0);
        const Term number = posting.GetTerm(2);
        if (factors.size() == 2 && !number.fIsVariable && number.fNumber == 0 && !factors[0].fIsVariable &&
            !factors[1].fIsVariable && factors[0].fNumber != std::numeric_limits<std::int64_t>::min() &&
            factors[0].fNumber != 0 && factors[1].fNumber == -factors[0].fNumber) {
          Unify(posting.GetTerms(1)[0], posting.GetTerms(1)[1]);
          fIsPosted[i] = true;
        }
      }
    } catch (const PostingError& error) {
      fErrors.Add(c.fLine, error.what());
      fIsPosted[i] = true;
    }
  }
}

// The first type that lists its values and the first that has all between two bounds.
void Builder::ChooseTypes() {
  const VokTarnOperatorTable table(fModules);
  for (const VokTarnObjectDescriptor* type : table.GetTypes()) {
    if (type->GetObjectSize() == 0 || VokTarnInteger::sDescriptor == nullptr ||
        VokTarnInteger::sDescriptor->IsMatched(type) == 0) {
      continue;
    }
    if (type->IsListed() && fListing == nullptr) {
      fListing = type;
    } else if (type->GetShape() == VokTarnObjectDescriptor::Shape::Range && fInterval == nullptr) {
      fInterval = type;
    }
  }
}

void Builder::AddValues() {
  if (fListing == nullptr || fInterval == nullptr) {
    fErrors.Add(0, "no opened module has types for the variables");
    return;
  }
  fValues.assign(fModel.fVariables.size(), vokNoValue);
  for (std::size_t i = 0; i < fModel.fVariables.size(); ++i) {
    if (FindRoot(i) != i) {
      continue;
    }
    const Variable& variable = fModel.fVariables[i];
    Set domain = fDomains[i];
    if (!Fits(domain)) {
      domain = Intersect(domain, MakeRange(kLeast, kGreatest));
      if (domain.empty()) {
        fErrors.Add(variable.fLine, "variable " + variable.fName +
                                        " has bounds that do not fit: " + std::to_string(fDomains[i].front().fLower) +
                                        ".." + std::to_string(fDomains[i].back().fUpper));
        continue;
      }
      fCuts.push_back({i, fDomains[i].front().fLower<kLeast, fDomains[i].back().fUpper> kGreatest});
    }
    fValues[i] = AddValue(domain, variable.fName);
  }
}

VokTarnValueId Builder::AddValue(const Set& domain, const std::string& name) {
  const bool isListing = CountValues(domain) <= fListing->GetLimit();
  const VokTarnValueId id = fNetwork.AddValue(isListing ? fListing : fInterval, name);
  SetDomain(id, domain);
  return id;
}

// The holes of an interval become a constraint.
void Builder::SetDomain(VokTarnValueId id, const Set& domain) {
  if (domain.empty()) {
    fNetwork.MakeNil(id);
    return;
  }
  if (fNetwork.GetType(id)->IsListed()) {
    std::vector<VokLong> values;
    for (const Range& range : domain) {
      for (std::int64_t v = range.fLower; v <= range.fUpper; ++v) {
        values.push_back(static_cast<VokLong>(v));
      }
    }
    fNetwork.KeepListed(id, values);
    return;
  }
  fNetwork.KeepBetween(id, domain.front().fLower, domain.back().fUpper);
  if (domain.size() > 1) {
    std::vector<VokLong> constants = {static_cast<VokLong>(VokTarnMode::Plain)};
    for (const Range& range : domain) {
      constants.push_back(static_cast<VokLong>(range.fLower));
      constants.push_back(static_cast<VokLong>(range.fUpper));
    }
    Add("VokTarnMembershipConstraint", {{id}}, constants);
  }
}

void Builder::Restrict(VokTarnValueId id, const Set& set) {
  if (fNetwork.GetCardinality(id) == 0) {
    return;
  }
  const Set hull = MakeRange(fNetwork.GetLower(id), fNetwork.GetUpper(id));
  const Set domain = Intersect(set, hull);
  if (domain.size() == 1 && domain[0].fLower == hull[0].fLower && domain[0].fUpper == hull[0].fUpper) {
    return;
  }
  if (const VokTarnObjectDescriptor::Lister lister = fNetwork.GetType(id)->GetLister(); lister != nullptr) {
    const std::span<const VokLong> members = lister(fNetwork.GetValue(id));
    std::vector<VokLong> kept;
    std::ranges::copy_if(members, std::back_inserter(kept), [&](VokLong v) { return Contains(domain, v); });
    fNetwork.KeepSubset(id, kept);
    return;
  }
  SetDomain(id, domain);
}

VokTarnValueId Builder::GetValue(const Term& term) {
  if (term.fIsVariable) {
    return GetValue(static_cast<std::size_t>(term.fNumber));
  }
  const auto found = fConstants.find(term.fNumber);
  if (found != fConstants.end()) {
    return found->second;
  }
  const Set domain = MakeRange(term.fNumber, term.fNumber);
  if (!Fits(domain)) {
    throw PostingError("the number " + std::to_string(term.fNumber) + " does not fit");
  }
  const VokTarnValueId id = AddValue(domain, {});
  fConstants.emplace(term.fNumber, id);
  return id;
}

std::vector<Builder::Cut> Builder::FindCuts() const {
  if (fCuts.empty()) {
    return {};
  }
  // Whether the network still has a constraint over it tells nothing: the ends that were cut may have decided it.
  std::vector<bool> isNamed(fModel.fVariables.size());
  const auto note = [&](const Term& term) {
    if (term.fIsVariable) {
      isNamed[FindRoot(static_cast<std::size_t>(term.fNumber))] = true;
    }
  };
  note(fModel.fSolve.fObjective);
  for (const Constraint& constraint : fModel.fConstraints) {
    for (const Argument& argument : fModel.GetArguments(constraint)) {
      if (argument.fKind == Argument::Kind::Variable) {
        note({true, argument.fNumber});
      } else if (argument.fKind == Argument::Kind::Array) {
        std::ranges::for_each(fModel.GetTerms(argument), note);
      }
    }
  }
  std::vector<Cut> cuts;
  std::ranges::copy_if(fCuts, std::back_inserter(cuts), [&](const Cut& cut) { return isNamed[cut.fVariable]; });
  return cuts;
}

// ---- Constraints

const VokTarnConstraintDescriptor* Builder::FindClass(std::string_view name) {
  const auto found = fClasses.find(name);
  if (found != fClasses.end()) {
    return found->second;
  }
  for (const VokTarnModule* module : fModules.GetModules()) {
    const VokTarnObjectDescriptor* descriptor = module->FindDescriptor(name);
    if (descriptor != nullptr && descriptor->IsDerivedFrom(VokTarnConstraintDescriptor::sIdent) != 0) {
      const auto* constraint = static_cast<const VokTarnConstraintDescriptor*>(descriptor);
      fClasses.emplace(constraint->GetName().View(), constraint);
      return constraint;
    }
  }
  throw PostingError("no opened module has the constraint " + std::string(name));
}

void Builder::Add(std::string_view className, std::span<const VokTarnValueId> arguments,
                  std::span<const VokLong> constants) {
  try {
    fNetwork.AddConstraint(
        std::unique_ptr<VokTarnConstraint>(FindClass(className)->Create(arguments, VokTarnForm::Plain, constants)));
  } catch (const std::invalid_argument&) {
    throw PostingError("the constraint " + std::string(className) + " does not take these arguments");
  }
}

// How many different variables without a known value there are, as far as it matters: more than one is 2.
unsigned Builder::CountOpen(const Constraint& constraint) const {
  std::size_t first = fValues.size();
  const auto isAnother = [&](std::int64_t variable) {
    const std::size_t root = FindRoot(static_cast<std::size_t>(variable));
    if (root == first || fNetwork.GetCardinality(fValues[root]) == 1) {
      return false;
    }
    const bool isSecond = first != fValues.size();
    first = isSecond ? first : root;
    return isSecond;
  };
  for (const Argument& argument : fModel.GetArguments(constraint)) {
    if (argument.fKind == Argument::Kind::Variable && isAnother(argument.fNumber)) {
      return 2;
    }
    if (argument.fKind == Argument::Kind::Array) {
      for (const Term& term : fModel.GetTerms(argument)) {
        if (term.fIsVariable && isAnother(term.fNumber)) {
          return 2;
        }
      }
    }
  }
  return first == fValues.size() ? 0 : 1;
}

// Constraints over a single variable come first: they are a part of its domain, which the others then know.
void Builder::PostAll() {
  const std::vector<Constraint>& constraints = fModel.fConstraints;
  for (std::size_t i = 0; i < constraints.size(); ++i) {
    if (!fIsPosted[i] && CountOpen(constraints[i]) < 2) {
      Post(constraints[i]);
      fIsPosted[i] = true;
    }
  }
  if (fErrors.IsEmpty()) {
    PostDifferences();
  }
  for (std::size_t i = 0; i < constraints.size(); ++i) {
    if (!fIsPosted[i]) {
      Post(constraints[i]);
    }
  }
}

void Builder::Post(const Constraint& constraint) {
  const std::string_view name = fModel.GetName(constraint);
  const PostingRow* row = FindRow(name, constraint.fCount);
  if (row == nullptr) {
    fErrors.AddUnsupported(constraint.fLine, name, constraint.fCount);
    return;
  }
  try {
    row->fPost(Posting(*this, constraint));
  } catch (const PostingError& error) {
    fErrors.Add(constraint.fLine, std::string(name) + ": " + error.what());
  }
}

void Builder::PostDifferences() {
  Differences differences;
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < fModel.fConstraints.size(); ++i) {
    if (fIsPosted[i]) {
      continue;
    }
    const std::optional<Difference> difference = ReadDifference(Posting(*this, fModel.fConstraints[i]));
    if (difference) {
      differences.Add(*difference);
      places.push_back(i);
    }
  }
  const std::vector<std::vector<ShiftedValue>> cliques = differences.FindCliques();
  const VokTarnConstraintDescriptor* allDifferent =
      cliques.empty() ? nullptr : FindClass("VokTarnAllDifferentConstraint");
  for (const std::vector<ShiftedValue>& clique : cliques) {
    std::vector<VokTarnValueId> arguments;
    std::vector<VokLong> shifts;
    for (const ShiftedValue& member : clique) {
      arguments.push_back(member.fValue);
      shifts.push_back(member.fShift);
    }
    if (std::ranges::all_of(shifts, [](VokLong shift) { return shift == 0; })) {
      shifts.clear();
    } else if (!allDifferent->TakesShifts()) {
      continue;
    }
    Add("VokTarnAllDifferentConstraint", arguments, shifts);
    differences.SetCovered(clique);
  }
  for (std::size_t k = 0; k < places.size(); ++k) {
    fIsPosted[places[k]] = differences.IsCovered(k);
  }
}

}  // namespace fzn
