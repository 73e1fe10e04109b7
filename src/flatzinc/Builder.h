#pragma once

#include <string_view>
#include <unordered_map>
#include <vector>

#include "flatzinc/ErrorList.h"
#include "flatzinc/Model.h"
#include "flatzinc/Posting.h"
#include "framework/VokTarnModuleManager.h"
#include "framework/VokTarnNetwork.h"

namespace fzn {

// Makes a network of a problem.
//
// Every variable becomes an integer value of the network, truth values as 0..1; variables that the problem makes equal
// become one. Types and constraint classes are those that the opened modules publish: domains that some type can list
// value by value get such a type, wider ones a type of intervals.
//
// Cut       A variable that may have numbers beyond the network's integers, as far as its constraints tell, gets what
//           the network can hold. Every solution found is one; that there is no further one holds only as long as no
//           variable has been cut (FindCuts).
//
// Errors  What cannot be represented or is not supported goes on the list, all of it; the network is then not complete.
class Builder {
 public:
  // The modules, the network and the model must outlive the builder.
  Builder(const VokTarnModuleManager& modules, VokTarnNetwork& network, const Model& model, ErrorList& errors);

  // Adds values and constraints to the network, which is at its root level. False when the list of errors has got
  // something. A problem that turns out to have no solution makes a failed network.
  bool Build();

  // The network's value of a variable, by its place in the model.
  VokTarnValueId GetValue(std::size_t variable) const { return fValues[FindRoot(variable)]; }
  // The same for a term; a constant has a value of its own. Throws PostingError when that does not fit.
  VokTarnValueId GetValue(const Term& term);

  struct Cut {
    std::size_t fVariable;
    bool fIsBelow;
    bool fIsAbove;
  };
  // The variables that have been cut, but for those that neither a constraint nor the objective names. Linear in the
  // size of the problem if there are any.
  std::vector<Cut> FindCuts() const;

  VokTarnNetwork& GetNetwork() noexcept { return fNetwork; }
  const Model& GetModel() const noexcept { return fModel; }

 private:
  friend class Posting;

  std::size_t FindRoot(std::size_t variable) const;
  void UnifyVariables();
  // Makes the terms equal; false when a constraint has to see to it.
  void Unify(const Term& a, const Term& b);
  void FindBounds();
  void ChooseTypes();
  void AddValues();
  VokTarnValueId AddValue(const Set& domain, const std::string& name);
  void SetDomain(VokTarnValueId id, const Set& domain);
  void Restrict(VokTarnValueId id, const Set& set);
  void PostDifferences();
  void PostAll();
  unsigned CountOpen(const Constraint& constraint) const;
  void Post(const Constraint& constraint);
  const VokTarnConstraintDescriptor* FindClass(std::string_view name);
  void Add(std::string_view className, std::span<const VokTarnValueId> arguments, std::span<const VokLong> constants);

  const VokTarnModuleManager& fModules;
  VokTarnNetwork& fNetwork;
  const Model& fModel;
  ErrorList& fErrors;
  mutable std::vector<std::size_t> fParents;  // of the union-find structure
  std::vector<Set> fDomains;                  // by variable; of roots only
  std::vector<VokTarnValueId> fValues;        // the same
  std::vector<bool> fIsPosted;                // by constraint
  std::vector<Cut> fCuts;                     // of roots
  const VokTarnObjectDescriptor* fListing = nullptr;
  const VokTarnObjectDescriptor* fInterval = nullptr;
  std::unordered_map<std::int64_t, VokTarnValueId> fConstants;
  std::unordered_map<std::string_view, const VokTarnConstraintDescriptor*> fClasses;
};

}  // namespace fzn
