#pragma once

#include <cstdint>
#include <vector>

#include "constraints/VokTarnConstraintOf.h"

// The values of the arguments (x1, .., xn), integers of any types, stand together in one row of a table. The constants
// are the table, row after row. An empty table never holds.
//
// Strength  Domain consistent: a value stays when some row has it and only possible values beside it.
// Cost      For a column of t rows with d different values: O(min(t, d t / 64)) words for each filtering, half of that
//           where most values are still possible; a value whose last support still stands costs one word. Once, to
//           index the table: O(n t log t), and up to 12 bytes for each cell.
// Source    J. Demeulenaere, R. Hartert, C. Lecoutre, G. Perez, L. Perron, J.-C. Régin, P. Schaus, "Compact-table:
//           efficiently filtering table constraints with reversible sparse bit-sets", CP 2016. We keep no state of the
//           search: the rows that can hold are found again from the domains in each call, which is why the rows of a
//           value are stored as their words that are not 0.
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
  using Bits = std::uint64_t;
  // Some rows: bit r % 64 of word r / 64 for row r.
  struct Word {
    unsigned fPlace;
    Bits fBits;
  };
  struct Value {
    VokLong fNumber;
    unsigned fFirst;  // word of fWords
    unsigned fCount;
    unsigned fSupport;  // the word that held a support last: a hint
  };

  void IndexTable() const;
  void IndexColumn(std::size_t column, std::size_t rows, const std::vector<VokLong>& cells) const;
  bool FindRows(const VokTarnObjectEnvironment& environment) const;
  void KeepRows(std::size_t column) const;
  bool IsSupported(Value& value) const;

  // The index of the table, made when it is needed first: a constraint that is read has its table only then. Rows that
  // can never hold are left out: with a value beyond the integer range, or with two values for one argument.
  // The values of column i, ascending, are fValues[fColumns[i]] up to, not including, fValues[fColumns[i + 1]].
  mutable std::vector<Value> fValues;
  mutable std::vector<std::size_t> fColumns;
  mutable std::vector<Word> fWords;
  // Of one call: the rows that can hold, those of one column, and whether each value is possible.
  mutable std::vector<Bits> fRows;
  mutable std::vector<Bits> fColumnRows;
  mutable std::vector<char> fIsPossible;
  mutable std::size_t fRowCount = 0;
};
