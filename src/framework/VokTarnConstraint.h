#pragma once

#include <span>
#include <vector>

#include "framework/VokTarnConstraintDescriptor.h"
#include "framework/VokTarnObject.h"
#include "framework/VokTarnSlot.h"

class VokTarnNetwork;
class VokTarnObjectEnvironment;
class VokTarnPast;
struct VokTarnAtom;

// A relation over values of a network that narrows them.
//
// Contract  A constraint is sound: it never removes a value that is part of an assignment satisfying it.
//           It is checking: once every argument has a single value, it holds or it fails. Filter sees to
//           the second with IsSatisfied, whatever Propagate did.
// Constants Integers that are part of the relation itself, such as the coefficients of a sum; most classes have none.
// Record    The form, the argument numbers and the constants.
class VOKTARN_EXPORT VokTarnConstraint : public VokTarnObject {
 public:
  static const char* const sIdent;

  // How soon a waiting constraint is filtered: cheap ones first.
  enum Priority : unsigned { Unary = 0, Binary = 1, Ternary = 2, Many = 3 };
  static constexpr unsigned sPriorities = 4;

  explicit VokTarnConstraint(VokStreamableInit init) : VokTarnObject(init) {}
  VokTarnConstraint(std::span<const VokTarnValueId> arguments, VokTarnForm form,
                    std::span<const VokLong> constants = {})
      : fArguments(arguments.begin(), arguments.end()), fConstants(constants.begin(), constants.end()), fForm(form) {}

  void Write(Vokopstream& os) const override;
  void Read(Vokipstream& is) override;
  int IsDerivedFrom(const char* ident) const override;
  int Activate(VokTarnNetwork* network) override;
  int ActivateByArgument(unsigned argument, int event, VokTarnNetwork* network) override;
  // Propagates, then checks when every argument is single-valued.
  int Filter(const VokTarnObjectEnvironment& environment, int effort) override;
  // "name (#1, #2, #3)" with the numbers of the arguments. Constraints are not read from text: that fails.
  std::ostream& PrintOn(std::ostream& os) const override;
  void InputValue(std::istream& is) override;

  std::span<const VokTarnValueId> GetArguments() const noexcept { return fArguments; }
  std::span<const VokLong> GetConstants() const noexcept { return fConstants; }
  VokTarnForm GetForm() const noexcept { return fForm; }
  virtual Priority GetPriority() const noexcept { return Ternary; }
  // The least telling event of an argument that is to wake the constraint. Domain where more could be narrowed then.
  virtual VokTarnEvent GetEvent(unsigned /*argument*/, const VokTarnObjectEnvironment& /*environment*/) const {
    return VokTarnEvent::Domain;
  }
  // The arguments that the constraint watches in place of waiting for events; none: it waits for events. Asked when the
  // constraint is added. Meant for relations over many arguments that a few of them keep open, such as clauses
  // (M. Moskewicz, C. Madigan, Y. Zhao, L. Zhang, S. Malik, "Chaff: engineering an efficient SAT solver", 2001).
  virtual std::vector<unsigned> GetWatched(const VokTarnObjectEnvironment& /*environment*/) const { return {}; }
  // Asked when the watched argument has one value left, and not for any other event. Returns the argument to watch in
  // its place, one that the constraint does not watch yet and that has more than one value; `argument` itself when
  // nothing need be done; sWake to be filtered and to go on watching `argument`. What is watched stays so when the
  // search goes back, so the answer must not depend on values that would come back earlier than that of `argument`.
  static constexpr unsigned sWake = 0xFFFFFFFFU;
  virtual unsigned MoveWatch(unsigned /*argument*/, const VokTarnObjectEnvironment& /*environment*/) const {
    return sWake;
  }
  // Whether the arguments have the number and the kinds that the constraint needs, and the constants the number.
  virtual bool IsApplicable(const VokTarnObjectEnvironment& environment) const = 0;
  // Whether the relation holds. Requires: every argument has exactly one value.
  virtual bool IsSatisfied(const VokTarnObjectEnvironment& environment) const = 0;

  // ---- Numbers that follow the search
  // How many 64-bit numbers the network keeps for the constraint: what it has summed up of its arguments, say. Going
  // back restores them. Asked when the constraint is added.
  virtual unsigned CountState(const VokTarnObjectEnvironment& /*environment*/) const { return 0; }
  // Sets the numbers, from the arguments as they are; when the constraint is added.
  virtual void InitState(const VokTarnObjectEnvironment& /*environment*/) const {}
  // An argument, `before` this, has changed as the constraint waits for; at once, before other changes. The place to
  // bring the numbers up to date, in O(1). Not asked of a constraint without numbers. Returns whether the constraint is
  // to be filtered: false where it would change nothing and some argument is open still.
  virtual bool Advise(unsigned /*argument*/, const VokTarnSummary& /*before*/,
                      const VokTarnObjectEnvironment& /*environment*/) const {
    return true;
  }

  // ---- Reasons
  // Appends atoms that were true of the arguments as `past` shows them and with the relation imply `atom`, which is
  // about one of them and was not true yet; null: they cannot be true together. The weaker the atoms are, and the
  // longer they were true, the more the search learns from them. False where the class has no rule: then the constraint
  // is filtered again to find out (VokTarnReasons).
  virtual bool Explain(const VokTarnPast& /*past*/, const VokTarnAtom* /*atom*/,
                       std::vector<VokTarnAtom>& /*because*/) const {
    return false;
  }

  // The place in the network's list of constraints, and that of its first number, set when the network takes the
  // constraint.
  void SetIndex(VokULong index, VokULong state) noexcept {
    fIndex = index;
    fState = state;
  }

  VokULong GetStatePlace() const noexcept { return fState; }

 protected:
  // Narrows the arguments. Returns 1 when one changed.
  virtual int Propagate(const VokTarnObjectEnvironment& environment) const = 0;
  // Its number i in the network.
  VokULong State(unsigned i) const noexcept { return fState + i; }

 private:
  bool HasOpenArgument(const VokTarnObjectEnvironment& environment) const;

  std::vector<VokTarnValueId> fArguments;
  std::vector<VokLong> fConstants;
  VokULong fIndex = 0;
  VokULong fState = 0;
  mutable unsigned fOpen = 0;  // an argument that was open when it was last looked for: where to look first
  VokTarnForm fForm = VokTarnForm::Plain;
};
