#include <algorithm>

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

// A call works on these; kept for the next one, whichever constraint that is.
struct Room {
  std::vector<char> fReached;                  // by layer and state: some path leads there, and on to a final state
  std::vector<std::vector<VokLong>> fLetters;  // by argument: the possible values
  std::vector<char> fIsSupported;              // by letter
};

}  // namespace

VokLong VokTarnRegularConstraint::Next(std::size_t state, std::size_t letter) const {
  const std::span<const VokLong> c = GetConstants();
  const auto finals = static_cast<std::size_t>(c[kFinalCount]);
  return c[kFinals + finals + (state - 1) * static_cast<std::size_t>(c[kLetters]) + letter - 1];
}

void VokTarnRegularConstraint::IndexStates() const {
  fIsDistinct = AreDistinct(GetArguments());
  fIsFinal.assign(static_cast<std::size_t>(GetConstants()[kStates]) + 1, 0);
  for (const VokLong q : GetConstants().subspan(kFinals, static_cast<std::size_t>(GetConstants()[kFinalCount]))) {
    fIsFinal[static_cast<std::size_t>(q)] = q != 0 ? 1 : 0;
  }
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
  VokLong state = GetConstants()[kInitial];
  for (unsigned i = 0; i < environment.Size() && state != 0; ++i) {
    const std::int64_t letter = ExactValue(environment, i);
    state = letter >= 1 && letter <= GetConstants()[kLetters]
                ? Next(static_cast<std::size_t>(state), static_cast<std::size_t>(letter))
                : 0;
  }
  const std::span<const VokLong> c = GetConstants();
  const auto finals = c.subspan(kFinals, static_cast<std::size_t>(c[kFinalCount]));
  return state != 0 && std::find(finals.begin(), finals.end(), state) != finals.end();
}

int VokTarnRegularConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  thread_local Room room;
  if (fIsFinal.empty()) {
    IndexStates();
  }
  const unsigned n = environment.Size();
  const VokLong letters = GetConstants()[kLetters];
  const std::size_t states = static_cast<std::size_t>(GetConstants()[kStates]) + 1;
  int changed = 0;
  if (room.fLetters.size() < n) {
    room.fLetters.resize(n);
  }
  room.fReached.assign((n + std::size_t{1}) * states, 0);
  room.fReached[static_cast<std::size_t>(GetConstants()[kInitial])] = 1;
  for (unsigned i = 0; i < n; ++i) {
    changed |= KeepBetween(environment, i, 1, letters);
    if (environment.IsFailed()) {
      return changed;
    }
    std::vector<VokLong>& possible = room.fLetters[i];
    possible.clear();
    ForEachValue(environment, i, 1, letters, [&](VokLong v) { possible.push_back(v); });
    const char* reached = &room.fReached[i * states];
    char* next = &room.fReached[(i + 1) * states];
    for (std::size_t q = 1; q < states; ++q) {
      if (reached[q] != 0) {
        for (const VokLong v : possible) {
          next[Next(q, static_cast<std::size_t>(v))] = 1;
        }
      }
    }
    next[0] = 0;
  }
  char* last = &room.fReached[n * states];
  bool isAccepted = false;
  for (std::size_t q = 1; q < states; ++q) {
    last[q] = last[q] != 0 ? fIsFinal[q] : static_cast<char>(0);
    isAccepted = isAccepted || last[q] != 0;
  }
  if (!isAccepted) {
    return changed | environment.Fail();
  }
  for (unsigned i = n; i-- > 0 && !environment.IsFailed();) {
    const std::vector<VokLong>& possible = room.fLetters[i];
    room.fIsSupported.assign(static_cast<std::size_t>(letters) + 1, 0);
    char* reached = &room.fReached[i * states];
    const char* next = &room.fReached[(i + 1) * states];
    for (std::size_t q = 1; q < states; ++q) {
      if (reached[q] == 0) {
        continue;
      }
      reached[q] = 0;
      for (const VokLong v : possible) {
        if (next[Next(q, static_cast<std::size_t>(v))] != 0) {
          reached[q] = 1;
          room.fIsSupported[static_cast<std::size_t>(v)] = 1;
        }
      }
    }
    if (std::any_of(possible.begin(), possible.end(),
                    [](VokLong v) { return room.fIsSupported[static_cast<std::size_t>(v)] == 0; })) {
      changed |= KeepWhere(environment, i, 1, letters,
                           [](VokLong v) { return room.fIsSupported[static_cast<std::size_t>(v)] != 0; });
    }
  }
  if (fIsDistinct) {
    environment.NoteFixpoint();
  }
  return changed;
}
