#include <algorithm>
#include <bit>
#include <numeric>

#include "base/bits.h"
#include "constraints/VokTarnTableConstraint.h"
#include "constraints/domains.h"
#include "numbers/SubIntBase.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnTableConstraint)

namespace {

using Row = std::span<const VokLong>;
using Bits = VokTarnBits;

// Sets the bits from `first` up to, not including, `end`.
void SetBits(Bits* bits, std::size_t first, std::size_t end) {
  while (first < end) {
    const std::size_t count = std::min(end - first, kWordBits - first % kWordBits);
    bits[first / kWordBits] |= (~Bits{0} >> (kWordBits - count)) << (first % kWordBits);
    first += count;
  }
}

}  // namespace

bool VokTarnTableConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return environment.Size() > 0 && AreIntegers(environment, 0, environment.Size()) &&
         GetConstants().size() % environment.Size() == 0;
}

bool VokTarnTableConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const std::size_t columns = environment.Size();
  if (fOrder.empty()) {
    IndexOrder();
  }
  // Of row r and the values: less than 0, 0 or above 0.
  const auto compare = [&](unsigned r) {
    const Row row = GetConstants().subspan(r * columns, columns);
    for (unsigned i = 0; i < columns; ++i) {
      const std::int64_t v = ExactValue(environment, i);
      if (row[i] != v) {
        return row[i] < v ? -1 : 1;
      }
    }
    return 0;
  };
  const auto found = std::partition_point(fOrder.begin(), fOrder.end(), [&](unsigned r) { return compare(r) < 0; });
  return found != fOrder.end() && compare(*found) == 0;
}

void VokTarnTableConstraint::IndexOrder() const {
  const std::size_t columns = GetArguments().size();
  const Row table = GetConstants();
  fOrder.resize(table.size() / columns);
  std::iota(fOrder.begin(), fOrder.end(), 0U);
  std::sort(fOrder.begin(), fOrder.end(), [&](unsigned a, unsigned b) {
    return std::ranges::lexicographical_compare(table.subspan(a * columns, columns),
                                                table.subspan(b * columns, columns));
  });
}

std::size_t VokTarnTableConstraint::CountRowWords() const noexcept {
  return CountWords(fRowCount);
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
  fIsDistinct = AreDistinct(arguments);
  fValues.clear();
  fWords.clear();
  fPossible.clear();
  for (std::size_t i = 0; i < first.size(); ++i) {
    IndexColumn(i, cells);
  }
  fColumnRows.assign(CountRowWords() * first.size(), 0);
  fRows.assign(CountRowWords(), 0);
}

void VokTarnTableConstraint::IndexColumn(std::size_t column, const std::vector<VokLong>& cells) const {
  const std::size_t columns = GetArguments().size();
  const auto cell = [&](std::size_t row) { return cells[row * columns + column]; };
  std::vector<std::size_t> order(fRowCount);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return cell(a) < cell(b); });
  const std::size_t first = fValues.size();
  for (const std::size_t row : order) {
    if (fValues.size() == first || fValues.back().fNumber != cell(row)) {
      const auto next = static_cast<unsigned>(fWords.size());
      fValues.push_back({cell(row), next, 0, {static_cast<unsigned>(row / kWordBits), 0}});
    }
    const auto place = static_cast<unsigned>(row / kWordBits);
    if (fValues.back().fCount == 0 || fWords.back().fPlace != place) {
      fWords.push_back({place, 0});
      ++fValues.back().fCount;
    }
    fWords.back().fBits |= Bits{1} << (row % kWordBits);
  }
  const std::size_t count = fValues.size() - first;
  const bool isWhole = count != 0 && std::int64_t{fValues.back().fNumber} - fValues[first].fNumber + 1 ==
                                         static_cast<std::int64_t>(count);
  fColumns.push_back({first, count, fPossible.size(), isWhole});
  fPossible.resize(fPossible.size() + CountWords(count), 0);
}

// Marks in fNow which values of the column are possible. Their number.
std::size_t VokTarnTableConstraint::ReadDomain(const VokTarnObjectEnvironment& environment, unsigned i) const {
  const Column& column = fColumns[i];
  fNow.assign(CountWords(column.fCount), 0);
  if (column.fCount == 0) {
    return 0;
  }
  const std::span<const Value> values = std::span(fValues).subspan(column.fFirst, column.fCount);
  const std::int64_t first = values.front().fNumber;
  const std::int64_t lower = std::max<std::int64_t>(environment.Lower(i), first);
  const std::int64_t upper = std::min<std::int64_t>(environment.Upper(i), values.back().fNumber);
  const std::span<const VokLong> members = environment.Members(i);
  if (column.fIsWhole && environment.HasNoHoles(i)) {
    if (lower > upper) {
      return 0;
    }
    SetBits(fNow.data(), static_cast<std::size_t>(lower - first), static_cast<std::size_t>(upper - first + 1));
    return static_cast<std::size_t>(upper - lower + 1);
  }
  std::size_t count = 0;
  if (column.fIsWhole && !members.empty()) {
    for (const VokLong v : members) {
      if (v >= lower && v <= upper) {
        SetBit(fNow.data(), static_cast<std::size_t>(v - first));
        ++count;
      }
    }
    return count;
  }
  const bool isWhole = environment.HasNoHoles(i);
  auto member = members.begin();
  for (std::size_t place = 0; place < column.fCount; ++place) {
    const VokLong number = values[place].fNumber;
    if (number < lower || number > upper) {
      continue;
    }
    bool isPossible = isWhole;
    if (!isWhole && members.empty()) {
      isPossible = environment.Integer(i).IsPossible(number);
    } else if (!isWhole) {
      while (*member < number) {
        ++member;
      }
      isPossible = *member == number;
    }
    if (isPossible) {
      SetBit(fNow.data(), place);
      ++count;
    }
  }
  return count;
}

// Brings what is kept of the column up to fNow. Where that is less work it starts from no rows or from all.
VokTarnTableConstraint::Change VokTarnTableConstraint::UpdateColumn(std::size_t i, std::size_t now,
                                                                    bool hasOthers) const {
  const Column& column = fColumns[i];
  const std::size_t words = CountWords(column.fCount);
  Bits* const rows = fColumnRows.data() + i * CountRowWords();
  Bits* const possible = fPossible.data() + column.fPossible;
  if (std::equal(fNow.begin(), fNow.end(), possible)) {
    return hasOthers ? Change::Other : Change::None;
  }
  std::size_t different = 0;
  Bits back = 0;
  for (std::size_t w = 0; w < words; ++w) {
    different += static_cast<std::size_t>(std::popcount(possible[w] ^ fNow[w]));
    back |= fNow[w] & ~possible[w];
  }
  const std::size_t others = column.fCount - now;
  const bool isLess = back == 0 && !hasOthers;
  const std::size_t least = std::min(now, others);
  const Value& last = fValues[column.fFirst + column.fCount - 1];
  const std::size_t valueWords = last.fFirst + last.fCount - fValues[column.fFirst].fFirst;
  // All values together have so many words: by their mean, what is saved is compared with the words to be filled.
  if (different > least && (different - least) * valueWords > column.fCount * CountRowWords()) {
    std::fill_n(rows, CountRowWords(), Bits{0});
    std::fill_n(possible, words, Bits{0});
    if (others < now) {
      SetBits(rows, 0, fRowCount);
      SetBits(possible, 0, column.fCount);
    }
  }
  for (std::size_t w = 0; w < words; ++w) {
    TurnValues(i, w, possible[w] ^ fNow[w]);
  }
  return isLess ? Change::Less : Change::Other;
}

// The values of the column with these bits of word w are possible from now on if they were not, and the other way
// round. A row is there exactly if its value is.
void VokTarnTableConstraint::TurnValues(std::size_t i, std::size_t w, Bits turned) const {
  const Column& column = fColumns[i];
  Bits* const rows = fColumnRows.data() + i * CountRowWords();
  fPossible[column.fPossible + w] ^= turned;
  for (; turned != 0; turned &= turned - 1) {
    const Value& value = fValues[column.fFirst + w * kWordBits + static_cast<std::size_t>(std::countr_zero(turned))];
    for (const Word *word = &fWords[value.fFirst], *end = word + value.fCount; word != end; ++word) {
      rows[word->fPlace] ^= word->fBits;
    }
  }
}

// Finds the rows that can hold with the domains as they are. False when there is none.
bool VokTarnTableConstraint::FindRows(const VokTarnObjectEnvironment& environment) const {
  const bool wasConsistent = fIsConsistent;
  fIsConsistent = false;
  fSupported = sNone;
  unsigned changed = 0;
  bool isLess = wasConsistent;
  for (unsigned i = 0; i < environment.Size(); ++i) {
    const std::size_t now = ReadDomain(environment, i);
    const Change change = UpdateColumn(i, now, now != static_cast<std::size_t>(environment.Cardinality(i)));
    isLess = isLess && change != Change::Other;
    if (change != Change::None) {
      ++changed;
      fSupported = i;
    }
  }
  if (!isLess || changed != 1) {
    fSupported = sNone;
  }
  fIsSame = wasConsistent && changed == 0;
  if (changed == 0) {
    return fIsSame || HasRows();
  }
  const std::size_t words = CountRowWords();
  std::copy_n(fColumnRows.begin(), words, fRows.begin());
  for (unsigned i = 1; i < environment.Size(); ++i) {
    const Bits* const rows = fColumnRows.data() + i * words;
    for (std::size_t w = 0; w < words; ++w) {
      fRows[w] &= rows[w];
    }
  }
  return HasRows();
}

bool VokTarnTableConstraint::HasRows() const {
  return std::any_of(fRows.begin(), fRows.end(), [](Bits bits) { return bits != 0; });
}

bool VokTarnTableConstraint::IsSupported(Value& value) const {
  if ((fRows[value.fSupport.fPlace] & value.fSupport.fBits) != 0) {
    return true;
  }
  for (unsigned w = value.fFirst; w < value.fFirst + value.fCount; ++w) {
    if ((fRows[fWords[w].fPlace] & fWords[w].fBits) != 0) {
      value.fSupport = fWords[w];
      return true;
    }
  }
  return false;
}

// Takes the values without a support from what is kept of the column, and from argument i what is not kept.
int VokTarnTableConstraint::KeepSupported(const VokTarnObjectEnvironment& environment, unsigned i) const {
  const Column& column = fColumns[i];
  std::size_t count = 0;
  for (std::size_t w = 0; w < CountWords(column.fCount); ++w) {
    Bits lost = 0;
    for (Bits left = fPossible[column.fPossible + w]; left != 0; left &= left - 1) {
      const auto place = static_cast<std::size_t>(std::countr_zero(left));
      ++count;
      if (!IsSupported(fValues[column.fFirst + w * kWordBits + place])) {
        lost |= Bits{1} << place;
        --count;
      }
    }
    if (lost != 0) {
      TurnValues(i, w, lost);
    }
  }
  if (static_cast<std::size_t>(environment.Cardinality(i)) == count) {
    return 0;
  }
  VokTarnScratchValues kept;
  for (std::size_t place = 0; place < column.fCount; ++place) {
    if (HasBit(fPossible.data() + column.fPossible, place)) {
      kept.Add(fValues[column.fFirst + place].fNumber);
    }
  }
  return environment.IsListed(i) ? environment.KeepSubset(i, kept.Get()) : environment.KeepListed(i, kept.Get());
}

int VokTarnTableConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  if (fColumns.empty()) {
    IndexTable();
  }
  if (!FindRows(environment)) {
    return environment.Fail();
  }
  int changed = 0;
  for (unsigned i = 0; i < environment.Size() && !fIsSame && !environment.IsFailed(); ++i) {
    // Every row that can hold has the value of a column that has one only.
    if (i != fSupported && !environment.IsSingle(i)) {
      changed |= KeepSupported(environment, i);
    }
  }
  fIsConsistent = fIsDistinct && !environment.IsFailed();
  // The rows that can hold are the same once values without a row have gone.
  environment.NoteFixpoint();
  return changed;
}
