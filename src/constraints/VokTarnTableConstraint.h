#pragma once

#include <cstdint>
#include <vector>

#include "constraints/VokTarnConstraintOf.h"

// The values of the arguments (x1, .., xn), integers of any types, stand together in one row of a table. The constants
// are the table, row after row. An empty table never holds.
//
// Strength  Domain consistent: a value stays when some row has it and only possible values beside it.
// Cost      For each filtering of a table of t rows: the words of 64 rows that hold values that went or came back since
//           the last one, or those of all possible values or of all others where they are fewer; t / 64 words for each
//           column; one word for a value whose last support still stands. A check of known values takes O(n log t).
//           Once, to index the table: O(n t log t), and up to 16 bytes for each cell.
// Source    J. Demeulenaere, R. Hartert, C. Lecoutre, G. Perez, L. Perron, J.-C. Régin, P. Schaus, "Compact-table:
//           efficiently filtering table constraints with reversible sparse bit-sets", CP 2016. We keep no state of the
//           search: for each column we keep the possible values of some earlier call, and the rows of these. Each call
//           compares them with the domains as they are, and adds and takes away the rows of the values that differ:
//           rows of different values of a column differ, so that is exact, whatever the search did in between.
class VOKTARN_EXPORT VokTarnTableConstraint final : public VokTarnConstraintOf<VokTarnTableConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Many; }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;
  bool Explain(const VokTarnPast& past, const VokTarnAtom* atom, std::vector<VokTarnAtom>& because) const override;

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
    Word fSupport;  // the word that held a support last: a hint
  };
  struct Column {
    std::size_t fFirst;     // its values, ascending, in fValues
    std::size_t fCount;     // of them
    std::size_t fPossible;  // its words in fPossible
    bool fIsWhole;          // the values have no holes
  };

  // How a domain differs from the one that is kept: not; by values that went; by others that came back or are not in
  // the table.
  enum class Change { None, Less, Other };
  static constexpr unsigned sNone = 0xFFFFFFFFU;

  void IndexTable() const;
  void IndexColumn(std::size_t column, const std::vector<VokLong>& cells) const;
  void IndexOrder() const;
  bool FindRows(const VokTarnObjectEnvironment& environment) const;
  std::size_t ReadDomain(const VokTarnObjectEnvironment& environment, unsigned i) const;
  Change UpdateColumn(std::size_t i, std::size_t now, bool hasOthers) const;
  void TurnValues(std::size_t i, std::size_t w, Bits turned) const;
  bool HasRows() const;
  int KeepSupported(const VokTarnObjectEnvironment& environment, unsigned i) const;
  bool IsSupported(Value& value) const;
  std::size_t CountRowWords() const noexcept;

  // The index of the table, made when it is needed first: a constraint that is read has its table only then. Rows that
  // can never hold are left out: with a value beyond the integer range, or with two values for one argument.
  mutable std::vector<Value> fValues;
  mutable std::vector<Column> fColumns;
  mutable std::vector<Word> fWords;
  mutable std::size_t fRowCount = 0;
  mutable bool fIsDistinct = false;  // no argument stands twice
  // All rows of the table in lexicographic order: what a check searches.
  mutable std::vector<unsigned> fOrder;
  // Of the last call that looked at the column: a bit for each value that was possible, and the rows of these values,
  // column after column. The two always agree.
  mutable std::vector<Bits> fPossible;
  mutable std::vector<Bits> fColumnRows;
  // Whether every value in fPossible has a support there: a statement on these values, true at any time. Then values of
  // the only column that has lost some have theirs still: what went there supported none of them.
  mutable bool fIsConsistent = false;
  // Of one call: the rows that can hold; the possible values of one column; the column that needs no search for
  // supports; whether none does.
  mutable std::vector<Bits> fRows;
  mutable std::vector<Bits> fNow;
  mutable unsigned fSupported = sNone;
  mutable bool fIsSame = false;
};
