#include <algorithm>
#include <bit>
#include <functional>

#include "base/bits.h"
#include "constraints/VokTarnRegularConstraint.h"
#include "constraints/domains.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnRegularConstraint)

namespace {

// Places of the constants.
constexpr std::size_t kStates = 0;
constexpr std::size_t kLetters = 1;
constexpr std::size_t kInitial = 2;
constexpr std::size_t kFinalCount = 3;
constexpr std::size_t kFinals = 4;

using Bits = VokTarnBits;
// Calls visit(place) for each bit that is set in `words` words.
template <class Visit>
void ForEachBit(const Bits* bits, std::size_t words, Visit visit) {
  for (std::size_t w = 0; w < words; ++w) {
    for (Bits left = bits[w]; left != 0; left &= left - 1) {
      visit(w * kWordBits + static_cast<std::size_t>(std::countr_zero(left)));
    }
  }
}
bool AreDifferent(const Bits* a, const Bits* b, std::size_t words) {
  Bits different = 0;
  for (std::size_t w = 0; w < words; ++w) {
    different |= a[w] ^ b[w];
  }
  return different != 0;
}
// Copies `words` words, mostly one. True when that changes the copy.
bool Update(Bits* copy, const Bits* bits, std::size_t words) {
  Bits different = 0;
  for (std::size_t w = 0; w < words; ++w) {
    different |= copy[w] ^ bits[w];
    copy[w] = bits[w];
  }
  return different != 0;
}

}  // namespace

std::size_t VokTarnRegularConstraint::Next(std::size_t state, std::size_t letter) const {
  return static_cast<std::size_t>(
      fSteps[(state - 1) * static_cast<std::size_t>(GetConstants()[kLetters]) + letter - 1]);
}

// Where a word holds the states and one holds the letters: for each letter and state, the states from which it is the
// next one; for each state all that are next to it.
void VokTarnRegularConstraint::IndexSteps() const {
  const auto states = static_cast<std::size_t>(GetConstants()[kStates]);
  const auto letters = static_cast<std::size_t>(GetConstants()[kLetters]);
  fFrom.assign((letters + 1) * kWordBits, 0);
  fTo.assign(kWordBits, 0);
  for (std::size_t q = 1; q <= states; ++q) {
    for (std::size_t v = 1; v <= letters; ++v) {
      if (const std::size_t next = Next(q, v); next != 0) {
        SetBit(&fFrom[v * kWordBits + next], q);
        SetBit(&fTo[q], next);
      }
    }
  }
}

void VokTarnRegularConstraint::MakeRoom() const {
  const std::span<const VokLong> c = GetConstants();
  const std::size_t n = GetArguments().size();
  fIsDistinct = AreDistinct(GetArguments());
  fStateWords = CountWords(static_cast<std::size_t>(c[kStates]) + 1);
  fLetterWords = CountWords(static_cast<std::size_t>(c[kLetters]) + 1);
  fFinal.assign(fStateWords, 0);
  for (const VokLong q : c.subspan(kFinals, static_cast<std::size_t>(c[kFinalCount]))) {
    if (q != 0) {
      SetBit(fFinal.data(), static_cast<std::size_t>(q));
    }
  }
  fLetters.assign(n * fLetterWords, 0);
  fSupported.assign(n * fLetterWords, 0);
  fUseful.assign((n + 1) * fStateWords, 0);
  fReached.assign((n + 1) * fStateWords, 0);
  SetBit(fReached.data(), static_cast<std::size_t>(c[kInitial]));
  fNow.assign(std::max(fStateWords, fLetterWords), 0);
  fSteps = c.subspan(c.size() - static_cast<std::size_t>(c[kStates]) * static_cast<std::size_t>(c[kLetters]));
  if (fStateWords == 1 && fLetterWords == 1) {
    IndexSteps();
  }
  fIsForwardStale.assign(n, 1);
  fIsBackwardStale.assign(n, 1);
}

bool VokTarnRegularConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  const std::span<const VokLong> c = GetConstants();
  if (!AreIntegers(environment, 0, environment.Size()) || c.size() < kFinals || c[kStates] < 1 || c[kLetters] < 1 ||
      c[kInitial] < 1 || c[kInitial] > c[kStates] || c[kFinalCount] < 0) {
    return false;
  }
  const auto finals = static_cast<std::size_t>(c[kFinalCount]);
  const std::size_t cells = static_cast<std::size_t>(c[kStates]) * static_cast<std::size_t>(c[kLetters]);
  return c.size() == kFinals + finals + cells &&
         std::all_of(c.begin() + kFinals, c.end(), [&](VokLong q) { return q >= 0 && q <= c[kStates]; });
}

bool VokTarnRegularConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  if (fFinal.empty()) {
    MakeRoom();
  }
  auto state = static_cast<std::size_t>(GetConstants()[kInitial]);
  for (unsigned i = 0; i < environment.Size() && state != 0; ++i) {
    const std::int64_t letter = ExactValue(environment, i);
    state = letter >= 1 && letter <= GetConstants()[kLetters] ? Next(state, static_cast<std::size_t>(letter)) : 0;
  }
  return state != 0 && HasBit(fFinal.data(), state);
}

// Notes the possible letters of argument i.
void VokTarnRegularConstraint::ReadLetters(const VokTarnObjectEnvironment& environment, unsigned i) const {
  std::fill_n(fNow.begin(), fLetterWords, Bits{0});
  if (fLetterWords == 1 && environment.HasNoHoles(i)) {
    fNow[0] = (~Bits{0} >> (kWordBits - 1 - static_cast<unsigned>(environment.Upper(i)))) &
              (~Bits{0} << static_cast<unsigned>(environment.Lower(i)));
  } else {
    ForEachValue(environment, i, 1, GetConstants()[kLetters],
                 [&](VokLong v) { SetBit(fNow.data(), static_cast<std::size_t>(v)); });
  }
  if (Update(fLetters.data() + i * fLetterWords, fNow.data(), fLetterWords)) {
    fIsForwardStale[i] = fIsBackwardStale[i] = 1;
  }
}

void VokTarnRegularConstraint::StepForwardByWords(std::size_t i) const {
  const Bits all = (~Bits{0} >> (kWordBits - 1 - static_cast<unsigned>(GetConstants()[kLetters]))) - 1;
  Bits next = 0;
  if (fLetters[i] == all) {
    ForEachBit(fReached.data() + i, 1, [&](std::size_t q) { next |= fTo[q]; });
  } else {
    ForEachBit(fReached.data() + i, 1, [&](std::size_t q) {
      ForEachBit(fLetters.data() + i, 1, [&](std::size_t v) { next |= Bits{1} << Next(q, v); });
    });
  }
  fNow[0] = next;
}

// Finds the states that are reached after argument i from those that are before it.
void VokTarnRegularConstraint::StepForward(std::size_t i) const {
  std::fill_n(fNow.begin(), fStateWords, Bits{0});
  if (!fFrom.empty()) {
    StepForwardByWords(i);
  } else {
    ForEachBit(fReached.data() + i * fStateWords, fStateWords, [&](std::size_t q) {
      ForEachBit(fLetters.data() + i * fLetterWords, fLetterWords,
                 [&](std::size_t v) { SetBit(fNow.data(), Next(q, v)); });
    });
  }
  fNow[0] &= ~Bits{1};  // state 0 is none
  fIsForwardStale[i] = 0;
  if (Update(fReached.data() + (i + 1) * fStateWords, fNow.data(), fStateWords)) {
    if (i + 1 < fIsForwardStale.size()) {
      fIsForwardStale[i + 1] = fIsBackwardStale[i + 1] = 1;
    }
  }
}

// Finds the states before argument i that are reached and lead on to useful ones, and the letters that do.
void VokTarnRegularConstraint::StepBackward(std::size_t i) const {
  const Bits* const next = fUseful.data() + (i + 1) * fStateWords;
  Bits* const supported = fSupported.data() + i * fLetterWords;
  std::fill_n(fNow.begin(), fStateWords, Bits{0});
  std::fill_n(supported, fLetterWords, Bits{0});
  if (!fFrom.empty()) {
    ForEachBit(fLetters.data() + i, 1, [&](std::size_t v) {
      Bits from = 0;
      ForEachBit(next, 1, [&](std::size_t q) { from |= fFrom[v * kWordBits + q]; });
      from &= fReached[i];
      fNow[0] |= from;
      *supported |= from != 0 ? Bits{1} << v : 0;
    });
  } else {
    ForEachBit(fReached.data() + i * fStateWords, fStateWords, [&](std::size_t q) {
      bool isUseful = false;
      ForEachBit(fLetters.data() + i * fLetterWords, fLetterWords, [&](std::size_t v) {
        if (HasBit(next, Next(q, v))) {
          isUseful = true;
          SetBit(supported, v);
        }
      });
      if (isUseful) {
        SetBit(fNow.data(), q);
      }
    });
  }
  fIsBackwardStale[i] = 0;
  if (Update(fUseful.data() + i * fStateWords, fNow.data(), fStateWords) && i > 0) {
    fIsBackwardStale[i - 1] = 1;
  }
}

int VokTarnRegularConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  if (fFinal.empty()) {
    MakeRoom();
  }
  const unsigned n = environment.Size();
  const VokLong letters = GetConstants()[kLetters];
  int changed = 0;
  for (unsigned i = 0; i < n; ++i) {
    changed |= environment.KeepBetween(i, 1, letters);
    if (environment.IsFailed()) {
      return changed;
    }
    ReadLetters(environment, i);
    if (fIsForwardStale[i] != 0) {
      StepForward(i);
    }
  }
  const Bits* const last = fReached.data() + n * fStateWords;
  std::ranges::transform(std::span(last, fStateWords), fFinal, fNow.begin(), std::bit_and<>());
  const bool isAccepted = std::any_of(fNow.begin(), fNow.begin() + static_cast<std::ptrdiff_t>(fStateWords),
                                      [](Bits bits) { return bits != 0; });
  if (Update(fUseful.data() + n * fStateWords, fNow.data(), fStateWords) && n > 0) {
    fIsBackwardStale[n - 1] = 1;
  }
  if (!isAccepted) {
    return changed | environment.Fail();
  }
  for (unsigned i = n; i-- > 0 && !environment.IsFailed();) {
    if (fIsBackwardStale[i] != 0) {
      StepBackward(i);
    }
    const Bits* const supported = fSupported.data() + i * fLetterWords;
    if (AreDifferent(supported, fLetters.data() + i * fLetterWords, fLetterWords)) {
      changed |= KeepWhere(environment, i, 1, letters,
                           [&](VokLong v) { return HasBit(supported, static_cast<std::size_t>(v)); });
    }
  }
  if (fIsDistinct) {
    environment.NoteFixpoint();
  }
  return changed;
}
