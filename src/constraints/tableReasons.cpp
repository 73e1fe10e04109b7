// Why a table has narrowed: see VokTarnTableConstraint::Explain.
#include <algorithm>

#include "constraints/VokTarnTableConstraint.h"
#include "constraints/because.h"

// Each row that would make the atom false has a value that is gone; one that is in the reason already is taken first.
bool VokTarnTableConstraint::Explain(const VokTarnPast& past, const VokTarnAtom* atom,
                                     std::vector<VokTarnAtom>& because) const {
  const std::size_t columns = past.Size();
  const std::size_t first = because.size();
  Because reason(past, because);
  unsigned place = 0;
  while (atom != nullptr && past.Id(place) != atom->fValue) {
    ++place;
  }
  for (auto row = GetConstants(); !row.empty(); row = row.subspan(columns)) {
    bool isOut = atom != nullptr && !atom->Denies(row[place]);
    unsigned gone = past.Size();
    for (unsigned i = 0; i < columns && !isOut; ++i) {
      const VokLong v = row[i];
      for (std::size_t k = first; k < because.size() && !isOut; ++k) {
        isOut = because[k].fValue == past.Id(i) && because[k].Denies(v);
      }
      if (!isOut && !past.MayBe(i, v)) {
        isOut = !past.MayBeAtRoot(i, v);
        gone = std::min(gone, i);
      }
    }
    if (isOut) {
      continue;
    }
    if (gone == past.Size()) {
      return false;
    }
    const VokLong v = row[gone];
    if (!(v < past.Lower(gone)   ? reason.AtLeast(gone, std::int64_t{v} + 1)
          : v > past.Upper(gone) ? reason.AtMost(gone, std::int64_t{v} - 1)
                                 : reason.IsNot(gone, v))) {
      return false;
    }
  }
  return true;
}
