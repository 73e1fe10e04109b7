#include <algorithm>
#include <array>
#include <limits>
#include <vector>

#include "base/bits.h"
#include "constraints/VokTarnAllDifferentConstraint.h"
#include "constraints/domains.h"
#include "constraints/narrowing.h"
#include "constraints/valueMatching.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnAllDifferentConstraint)

namespace {

// Domains beyond these sizes are left to value elimination: matching them would cost more than it prunes.
constexpr unsigned kMostMatched = 256;
constexpr int kMostValues = 16384;

using Bits = VokTarnBits;
constexpr unsigned kMostBits = 64;

bool HasDuplicate(std::vector<std::int64_t>& values) {
  std::sort(values.begin(), values.end());
  return std::adjacent_find(values.begin(), values.end()) != values.end();
}

// Whether some arguments may have no more values than they are, so that they need all of them: as many as k of at most
// k values. Only then can a matching take a value that is not another argument's only one. `sizes` are the numbers of
// values of the arguments that are open; O(n).
bool MayBeTight(std::span<const int> sizes, std::vector<unsigned>& counts) {
  counts.assign(sizes.size() + 1, 0);
  for (const int size : sizes) {
    if (static_cast<std::size_t>(size) <= sizes.size()) {
      ++counts[static_cast<std::size_t>(size)];
    }
  }
  unsigned count = 0;
  for (unsigned k = 1; k < counts.size(); ++k) {
    count += counts[k];
    if (count >= k) {
      return true;
    }
  }
  return false;
}

// The arguments when they are at most 64 and their values lie in a window of 64: every set of values, and of
// arguments, is a word.
class SmallMatching {
 public:
  SmallMatching(unsigned size, std::int64_t base) : fSize(size), fBase(base) {}

  void Set(unsigned i, Bits domain) { fDomains[i] = domain; }
  Bits GetDomain(unsigned i) const { return fDomains[i]; }
  std::int64_t GetBase() const { return fBase; }

  // Takes what is known of one argument from the others. False when no assignment is left.
  bool EliminateKnown();
  // See MayBeTight above, here of all arguments: those that are known have left the others alone.
  bool MayBeTight() const;
  // Takes the values that no assignment with all values different has: by J.-C. Régin, as in valueMatching.h. The
  // partners that a matching gave an argument last are tried first, and replaced. False when no assignment is left.
  bool EliminateUnsupported(std::vector<VokLong>& partners);

 private:
  bool Match(std::vector<VokLong>& partners);
  bool Augment(unsigned i, Bits& visited);
  Bits KeepCycles(Bits stuck);
  void SetPartner(unsigned i, unsigned value) {
    fPartner[i] = value;
    fOwner[value] = i;
    fTaken |= Bit(value);
  }

  unsigned fSize;
  std::int64_t fBase;
  Bits fTaken = 0;
  std::array<Bits, kMostBits> fDomains;
  std::array<unsigned, kMostBits> fPartner;  // per argument, its value in the matching
  std::array<unsigned, kMostBits> fOwner;    // per value that is taken, its argument
};

bool SmallMatching::EliminateKnown() {
  Bits known = 0;
  Bits open = BitRange(0, fSize - 1);
  for (Bits before = ~open; before != open;) {
    before = open;
    for (Bits rest = open; rest != 0; rest &= rest - 1) {
      const auto i = static_cast<unsigned>(std::countr_zero(rest));
      fDomains[i] &= ~known;
      if ((fDomains[i] & (fDomains[i] - 1)) == 0) {
        if (fDomains[i] == 0) {
          return false;
        }
        known |= fDomains[i];
        open &= ~Bit(i);
      }
    }
  }
  return true;
}

bool SmallMatching::MayBeTight() const {
  std::array<unsigned char, kMostBits + 1> counts{};
  unsigned open = 0;
  for (unsigned i = 0; i < fSize; ++i) {
    const unsigned size = CountBits(fDomains[i]);
    open += size > 1 ? 1U : 0U;
    ++counts[size];
  }
  unsigned count = 0;
  for (unsigned k = 2; k <= open; ++k) {
    count += counts[k];
    if (count >= k) {
      return true;
    }
  }
  return false;
}

bool SmallMatching::Augment(unsigned i, Bits& visited) {
  const Bits free = fDomains[i] & ~fTaken;
  if (free != 0) {
    SetPartner(i, static_cast<unsigned>(std::countr_zero(free)));
    return true;
  }
  while (const Bits open = fDomains[i] & ~visited) {
    const auto value = static_cast<unsigned>(std::countr_zero(open));
    visited |= Bit(value);
    if (Augment(fOwner[value], visited)) {
      SetPartner(i, value);
      return true;
    }
  }
  return false;
}

bool SmallMatching::Match(std::vector<VokLong>& partners) {
  Bits unmatched = 0;
  for (unsigned i = 0; i < fSize; ++i) {
    const std::int64_t last = std::int64_t{partners[i]} - fBase;
    if (last >= 0 && last < kMostBits && (fDomains[i] & ~fTaken & Bit(static_cast<unsigned>(last))) != 0) {
      SetPartner(i, static_cast<unsigned>(last));
    } else {
      unmatched |= Bit(i);
    }
  }
  bool exists = true;
  ForEachBit(unmatched, [&](unsigned i) {
    Bits visited = 0;
    exists = exists && Augment(i, visited);
  });
  for (unsigned i = 0; i < fSize && exists; ++i) {
    partners[i] = static_cast<VokLong>(fBase + fPartner[i]);
  }
  return exists;
}

bool SmallMatching::EliminateUnsupported(std::vector<VokLong>& partners) {
  if (!Match(partners)) {
    return false;
  }
  // An argument that can move to a value nobody has, at once or by others moving on, sets its own value free.
  // One that is known has no value that another has, and stays out of it.
  Bits stuck = 0;
  for (unsigned i = 0; i < fSize; ++i) {
    stuck |= (fDomains[i] & (fDomains[i] - 1)) != 0 ? Bit(i) : 0;
  }
  Bits free = ~fTaken;
  for (Bits before = 0; before != free;) {
    before = free;
    ForEachBit(stuck, [&](unsigned i) {
      if ((fDomains[i] & free) != 0) {
        free |= Bit(fPartner[i]);
        stuck &= ~Bit(i);
      }
    });
  }
  if (stuck == 0) {
    return true;
  }
  // The others have only each other's values, and exchange them along cycles.
  Bits stuckValues = 0;
  ForEachBit(stuck, [&](unsigned i) { stuckValues |= Bit(fPartner[i]); });
  for (unsigned i = 0; i < fSize; ++i) {
    if ((stuck & Bit(i)) == 0) {
      fDomains[i] &= ~stuckValues;
    }
  }
  while (stuck != 0) {
    const Bits values = KeepCycles(stuck);
    ForEachBit(stuck, [&](unsigned i) { stuck &= (values & Bit(fPartner[i])) != 0 ? ~Bit(i) : ~Bits{0}; });
  }
  return true;
}

// Of the arguments `stuck`, those on a cycle with the first one: those that it can push on, directly or by others, and
// that can push it on. They keep the values of one another, which are the answer.
Bits SmallMatching::KeepCycles(Bits stuck) {
  const auto first = static_cast<unsigned>(std::countr_zero(stuck));
  Bits values = 0;
  ForEachBit(stuck, [&](unsigned i) { values |= Bit(fPartner[i]); });
  Bits pushed = Bit(fPartner[first]);  // the values of arguments that the first one can push on
  for (Bits open = pushed; open != 0;) {
    const auto value = static_cast<unsigned>(std::countr_zero(open));
    open &= open - 1;
    const Bits next = fDomains[fOwner[value]] & values & ~pushed;
    pushed |= next;
    open |= next;
  }
  Bits pushing = Bit(fPartner[first]);  // the values of arguments that can push the first one on
  for (Bits before = 0; before != pushing;) {
    before = pushing;
    ForEachBit(stuck, [&](unsigned i) { pushing |= (fDomains[i] & pushing) != 0 ? Bit(fPartner[i]) : 0; });
  }
  const Bits cycle = pushed & pushing;
  ForEachBit(cycle, [&](unsigned value) { fDomains[fOwner[value]] &= cycle; });
  return cycle;
}

}  // namespace

bool VokTarnAllDifferentConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreIntegers(environment, 0, environment.Size()) &&
         (GetConstants().empty() || GetConstants().size() == environment.Size());
}

bool VokTarnAllDifferentConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  std::vector<std::int64_t> values(environment.Size());
  for (unsigned i = 0; i < environment.Size(); ++i) {
    values[i] = ExactValue(environment, i) + GetOffset(i);
  }
  return !HasDuplicate(values);
}

int VokTarnAllDifferentConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  if (environment.Size() < 2) {
    return 0;
  }
  std::int64_t lower = std::numeric_limits<std::int64_t>::max();
  std::int64_t upper = std::numeric_limits<std::int64_t>::min();
  for (unsigned i = 0; i < environment.Size(); ++i) {
    lower = std::min(lower, environment.Lower(i) + GetOffset(i));
    upper = std::max(upper, environment.Upper(i) + GetOffset(i));
  }
  if (environment.Size() <= kMostBits && upper - lower < std::int64_t{kMostBits}) {
    return PropagateSmall(environment, lower);
  }
  const int changed = EliminateKnown(environment);
  return environment.IsFailed() ? changed : changed | EliminateUnsupported(environment);
}

int VokTarnAllDifferentConstraint::PropagateSmall(const VokTarnObjectEnvironment& environment,
                                                  std::int64_t base) const {
  const unsigned size = environment.Size();
  SmallMatching matching(size, base);
  std::array<Bits, kMostBits> before;
  for (unsigned i = 0; i < size; ++i) {
    before[i] = BitsFrom(environment, i, base - GetOffset(i));
    matching.Set(i, before[i]);
  }
  fPartners.resize(size);
  if (!matching.EliminateKnown() || (matching.MayBeTight() && !matching.EliminateUnsupported(fPartners))) {
    return environment.Fail();
  }
  int changed = 0;
  bool isExact = true;
  for (unsigned i = 0; i < size; ++i) {
    const Bits kept = matching.GetDomain(i);
    if (kept == before[i]) {
      continue;
    }
    const std::int64_t zero = base - GetOffset(i);
    if (environment.Bits(i) != 0) {
      changed |= environment.KeepBits(i, zero, kept);
      isExact = isExact && !environment.IsRange(i);  // a range keeps the holes: the next call may find more
      continue;
    }
    isExact = false;
    ForEachBit(before[i] & ~kept,
               [&](unsigned bit) { changed |= environment.Remove(i, static_cast<VokLong>(zero + bit)); });
  }
  if (isExact) {
    environment.NoteFixpoint();
  }
  return changed;
}

// Takes every value that is known from the arguments that are open, until no further one becomes known.
int VokTarnAllDifferentConstraint::EliminateKnown(const VokTarnObjectEnvironment& environment) const {
  int changed = 0;
  std::vector<unsigned>& open = fOpen;
  std::vector<std::int64_t>& known = fKnown;
  open.clear();
  known.clear();
  for (unsigned i = 0; i < environment.Size(); ++i) {
    if (environment.IsSingle(i)) {
      known.push_back(environment.Lower(i) + GetOffset(i));
    } else {
      open.push_back(i);
    }
  }
  while (!known.empty()) {
    if (HasDuplicate(known)) {
      return environment.Fail();
    }
    fBecameKnown.clear();
    std::size_t stillOpen = 0;
    for (const unsigned i : open) {
      for (const std::int64_t v : known) {
        const std::int64_t own = v - GetOffset(i);
        if (own >= environment.Lower(i) && own <= environment.Upper(i)) {
          changed |= environment.Remove(i, static_cast<VokLong>(own));
        }
      }
      if (environment.IsFailed()) {
        return changed;
      }
      if (environment.IsSingle(i)) {
        fBecameKnown.push_back(environment.Lower(i) + GetOffset(i));
      } else {
        open[stillOpen++] = i;
      }
    }
    open.resize(stillOpen);
    known.swap(fBecameKnown);
  }
  return changed;
}

// Takes the values that no assignment with all values different has. An argument that is known already has no other
// argument's value after the elimination, so only the open ones are matched.
int VokTarnAllDifferentConstraint::EliminateUnsupported(const VokTarnObjectEnvironment& environment) const {
  std::vector<unsigned>& open = fOpen;
  std::vector<int>& sizes = fSizes;
  open.clear();
  sizes.clear();
  int total = 0;
  for (unsigned i = 0; i < environment.Size(); ++i) {
    const int cardinality = environment.Cardinality(i);
    if (cardinality == 1) {
      continue;
    }
    if (cardinality < 0 || cardinality > kMostValues - total || open.size() == kMostMatched) {
      return 0;
    }
    total += cardinality;
    open.push_back(i);
    sizes.push_back(cardinality);
  }
  if (!MayBeTight(sizes, fCounts)) {
    return 0;
  }
  std::vector<std::vector<std::int64_t>> domains;
  domains.reserve(open.size());
  for (const unsigned i : open) {
    const std::vector<VokLong> values = ListValues(environment.Integer(i));
    domains.emplace_back(values.begin(), values.end());
    for (std::int64_t& v : domains.back()) {
      v += GetOffset(i);
    }
  }
  VokTarnValueMatching matching(std::move(domains));
  if (!matching.Exists()) {
    return environment.Fail();
  }
  int changed = 0;
  for (const auto& [position, v] : matching.FindUnsupported()) {
    changed |= environment.Remove(open[position], static_cast<VokLong>(v - GetOffset(open[position])));
  }
  return changed;
}
