#include <algorithm>

#include "constraints/VokTarnTableConstraint.h"
#include "constraints/narrowing.h"
#include "numbers/SubIntBase.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnTableConstraint)

namespace {

using Row = std::span<const VokLong>;

// The rows that can hold. `first` gives for every column the first that stands for the same argument.
std::vector<Row> FindRows(Row table, const std::vector<std::size_t>& first) {
  std::vector<Row> rows;
  for (; !table.empty(); table = table.subspan(first.size())) {
    const Row row = table.first(first.size());
    bool canHold = true;
    for (std::size_t i = 0; i < row.size() && canHold; ++i) {
      canHold = row[i] >= SubIntBase::sMin && row[i] <= SubIntBase::sMax && row[i] == row[first[i]];
    }
    if (canHold) {
      rows.push_back(row);
    }
  }
  return rows;
}

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
  std::vector<std::size_t> first;
  for (const VokTarnValueId argument : arguments) {
    first.push_back(
        static_cast<std::size_t>(std::find(arguments.begin(), arguments.end(), argument) - arguments.begin()));
  }
  const std::vector<Row> rows = FindRows(GetConstants(), first);
  fCells.assign(rows.size() * arguments.size(), 0);
  fValues.clear();
  fColumns = {0};
  std::vector<VokLong> column(rows.size());
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    std::transform(rows.begin(), rows.end(), column.begin(), [i](Row row) { return row[i]; });
    std::sort(column.begin(), column.end());
    std::unique_copy(column.begin(), column.end(), std::back_inserter(fValues));
    const auto begin = fValues.begin() + static_cast<std::ptrdiff_t>(fColumns.back());
    for (std::size_t row = 0; row < rows.size(); ++row) {
      const auto found = std::lower_bound(begin, fValues.end(), rows[row][i]);
      fCells[row * arguments.size() + i] = static_cast<unsigned>(found - fValues.begin());
    }
    fColumns.push_back(fValues.size());
  }
}

int VokTarnTableConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const std::size_t n = environment.Size();
  if (fColumns.empty()) {
    IndexTable();
  }
  std::vector<char> isPossible(fValues.size());
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t v = fColumns[i]; v < fColumns[i + 1]; ++v) {
      isPossible[v] = environment.Integer(static_cast<unsigned>(i)).IsPossible(fValues[v]) ? 1 : 0;
    }
  }
  std::vector<char> isSupported(fValues.size());
  for (auto row = fCells.begin(); row != fCells.end(); row += static_cast<std::ptrdiff_t>(n)) {
    const auto end = row + static_cast<std::ptrdiff_t>(n);
    if (std::all_of(row, end, [&](unsigned v) { return isPossible[v] != 0; })) {
      std::for_each(row, end, [&](unsigned v) { isSupported[v] = 1; });
    }
  }
  int changed = 0;
  std::vector<VokLong> kept;
  for (std::size_t i = 0; i < n && !environment.IsFailed(); ++i) {
    kept.clear();
    for (std::size_t v = fColumns[i]; v < fColumns[i + 1]; ++v) {
      if (isSupported[v] != 0) {
        kept.push_back(fValues[v]);
      }
    }
    changed |= KeepValues(environment, static_cast<unsigned>(i), kept);
  }
  return changed;
}
