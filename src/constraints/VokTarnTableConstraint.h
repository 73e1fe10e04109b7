#pragma once

#include <vector>

#include "constraints/VokTarnConstraintOf.h"

// The values of the arguments (x1, .., xn), integers of any types, stand together in one row of a table. The constants
// are the table, row after row. An empty table never holds.
//
// Strength  Domain consistent: a value stays when some row has it and only possible values beside it.
// Cost      For t rows with d different values in all columns together: O(d) look-ups and O(t n) array accesses for
//           each filtering; O(t n log t) once, to index the table, which takes as much storage again as the
//           constants.
// Source    J. R. Ullmann, "Partition search for non-binary constraint satisfaction", Information Sciences 177, 2007,
//           and C. Lecoutre, "STR2: optimized simple tabular reduction for table constraints", Constraints 16, 2011.
//           We keep no state between the calls: every row is looked at again.
class VOKTARN_EXPORT VokTarnTableConstraint final : public VokTarnConstraintOf<VokTarnTableConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Many; }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  void IndexTable() const;

  // The index of the table, made when it is needed first: a constraint that is read has its table only then.
  // The different values of column i are fValues[fColumns[i]] up to, not including, fValues[fColumns[i + 1]].
  mutable std::vector<VokLong> fValues;
  mutable std::vector<std::size_t> fColumns;
  // Row after row, the place of each cell's value in fValues. Rows that can never hold are left out: with a value
  // beyond the integer range, or with two values for one argument.
  mutable std::vector<unsigned> fCells;
};
