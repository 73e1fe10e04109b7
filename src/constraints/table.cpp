#include <algorithm>
#include <numeric>

#include "constraints/VokTarnTableConstraint.h"
#include "constraints/domains.h"
#include "numbers/SubIntBase.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnTableConstraint)

namespace {

using Row = std::span<const VokLong>;

constexpr std::size_t kWordBits = 64;

}  // namespace

bool VokTarnTableConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return environment.Size() > 0 && AreIntegers(environment, 0, environment.Size()) &&
         GetConstants().size() % environment.Size() == 0;
}

bool VokTarnTableConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  for (Row table = GetConstants(); !table.empty(); table = table.subspan(environment.Size())) {
    unsigned i = 0;
    while (i < environment.Size() && table[i] == ExactValue(environment, i)) {
      ++i;
    }
    if (i == environment.Size()) {
      return true;
    }
  }
  return false;
}

void VokTarnTableConstraint::IndexTable() const {
  const std::span<const VokTarnValueId> arguments = GetArguments();
  // For every column the first that stands for the same argument.
  std::vector<std::size_t> first;
  for (const VokTarnValueId argument : arguments) {
    first.push_back(
        static_cast<std::size_t>(std::find(arguments.begin(), arguments.end(), argument) - arguments.begin()));
  }
  std::vector<VokLong> cells;
  for (Row table = GetConstants(); !table.empty(); table = table.subspan(first.size())) {
    bool canHold = true;
    for (std::size_t i = 0; i < first.size() && canHold; ++i) {
      canHold = table[i] >= SubIntBase::sMin && table[i] <= SubIntBase::sMax && table[i] == table[first[i]];
    }
    if (canHold) {
      cells.insert(cells.end(), table.begin(), table.begin() + static_cast<std::ptrdiff_t>(first.size()));
    }
  }
  fRowCount = cells.size() / first.size();
  fValues.clear();
  fWords.clear();
  fColumns = {0};
  for (std::size_t i = 0; i < first.size(); ++i) {
    IndexColumn(i, fRowCount, cells);
  }
}

void VokTarnTableConstraint::IndexColumn(std::size_t column, std::size_t rows,
                                         const std::vector<VokLong>& cells) const {
  const std::size_t columns = GetArguments().size();
  const auto cell = [&](std::size_t row) { return cells[row * columns + column]; };
  std::vector<std::size_t> order(rows);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return cell(a) < cell(b); });
  for (const std::size_t row : order) {
    if (fValues.size() == fColumns.back() || fValues.back().fNumber != cell(row)) {
      const auto next = static_cast<unsigned>(fWords.size());
      fValues.push_back({cell(row), next, 0, next});
    }
    const auto place = static_cast<unsigned>(row / kWordBits);
    if (fValues.back().fCount == 0 || fWords.back().fPlace != place) {
      fWords.push_back({place, 0});
      ++fValues.back().fCount;
    }
    fWords.back().fBits |= Bits{1} << (row % kWordBits);
  }
  fColumns.push_back(fValues.size());
}

// Keeps of fRows those with a possible value in the column: the rows of all possible values, or without the rows of all
// others, whichever is less work.
void VokTarnTableConstraint::KeepRows(std::size_t column) const {
  std::size_t possible = 0;
  std::size_t impossible = 0;
  for (std::size_t v = fColumns[column]; v < fColumns[column + 1]; ++v) {
    (fIsPossible[v] != 0 ? possible : impossible) += fValues[v].fCount;
  }
  if (impossible == 0) {
    return;
  }
  const bool takesAway = impossible <= possible + fRows.size();
  if (!takesAway) {
    fColumnRows.assign(fRows.size(), 0);
  }
  for (std::size_t v = fColumns[column]; v < fColumns[column + 1]; ++v) {
    if ((fIsPossible[v] != 0) == takesAway) {
      continue;
    }
    for (const Word& word : std::span(fWords).subspan(fValues[v].fFirst, fValues[v].fCount)) {
      if (takesAway) {
        fRows[word.fPlace] &= ~word.fBits;
      } else {
        fColumnRows[word.fPlace] |= word.fBits;
      }
    }
  }
  if (!takesAway) {
    std::transform(fRows.begin(), fRows.end(), fColumnRows.begin(), fRows.begin(), std::bit_and<>());
  }
}

// Finds the rows that can hold with the domains as they are. False when there is none.
bool VokTarnTableConstraint::FindRows(const VokTarnObjectEnvironment& environment) const {
  fIsPossible.resize(fValues.size());
  fRows.assign((fRowCount + kWordBits - 1) / kWordBits, ~Bits{0});
  if (fRowCount % kWordBits != 0) {
    fRows.back() = (Bits{1} << (fRowCount % kWordBits)) - 1;
  }
  for (unsigned i = 0; i < environment.Size(); ++i) {
    const VokLong lower = environment.Lower(i);
    const VokLong upper = environment.Upper(i);
    const bool isWhole = HasNoHoles(environment, i);
    const std::span<const VokLong> members = environment.Members(i);
    auto member = members.begin();
    for (std::size_t v = fColumns[i]; v < fColumns[i + 1]; ++v) {
      const VokLong number = fValues[v].fNumber;
      bool isPossible = number >= lower && number <= upper;
      if (isPossible && !isWhole) {
        if (members.empty()) {
          isPossible = environment.Integer(i).IsPossible(number);
        } else {
          while (*member < number) {
            ++member;
          }
          isPossible = *member == number;
        }
      }
      fIsPossible[v] = isPossible ? 1 : 0;
    }
    KeepRows(i);
  }
  return std::any_of(fRows.begin(), fRows.end(), [](Bits bits) { return bits != 0; });
}

bool VokTarnTableConstraint::IsSupported(Value& value) const {
  const Word& hint = fWords[value.fSupport];
  if ((fRows[hint.fPlace] & hint.fBits) != 0) {
    return true;
  }
  for (unsigned w = value.fFirst; w < value.fFirst + value.fCount; ++w) {
    if ((fRows[fWords[w].fPlace] & fWords[w].fBits) != 0) {
      value.fSupport = w;
      return true;
    }
  }
  return false;
}

int VokTarnTableConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  if (fColumns.empty()) {
    IndexTable();
  }
  if (!FindRows(environment)) {
    return environment.Fail();
  }
  thread_local std::vector<VokLong> kept;
  int changed = 0;
  for (unsigned i = 0; i < environment.Size() && !environment.IsFailed(); ++i) {
    kept.clear();
    for (std::size_t v = fColumns[i]; v < fColumns[i + 1]; ++v) {
      if (fIsPossible[v] != 0 && IsSupported(fValues[v])) {
        kept.push_back(fValues[v].fNumber);
      }
    }
    if (static_cast<std::size_t>(environment.Cardinality(i)) == kept.size()) {
      continue;
    }
    if (!environment.IsListed(i)) {
      changed |= KeepValues(environment, i, kept);
      continue;
    }
    thread_local std::vector<VokLong> removed;
    removed.clear();
    const std::span<const VokLong> members = environment.Members(i);
    std::set_difference(members.begin(), members.end(), kept.begin(), kept.end(), std::back_inserter(removed));
    changed |= RemoveListed(environment, i, removed);
  }
  // The rows that can hold are the same once values without a row have gone.
  environment.NoteFixpoint();
  return changed;
}
