#include <algorithm>

#include "constraints/VokTarnCircuitConstraint.h"
#include "constraints/domains.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnCircuitConstraint)

namespace {

constexpr unsigned kNone = 0xFFFFFFFFU;

// The possible successors of every place, or its predecessors: those of place i begin at fFirst[i].
struct Graph {
  std::vector<unsigned> fFirst;
  std::vector<unsigned> fEnds;

  void Reverse(const Graph& other) {
    const std::size_t n = other.fFirst.size() - 1;
    fFirst.assign(n + 1, 0);
    fEnds.resize(other.fEnds.size());
    for (const unsigned end : other.fEnds) {
      ++fFirst[end];
    }
    for (std::size_t i = 1; i <= n; ++i) {
      fFirst[i] += fFirst[i - 1];
    }
    for (unsigned i = 0; i < n; ++i) {
      for (unsigned e = other.fFirst[i]; e < other.fFirst[i + 1]; ++e) {
        fEnds[--fFirst[other.fEnds[e]]] = i;
      }
    }
  }

  // Adds `mark` to the places that can be reached from `root`.
  void Mark(unsigned root, unsigned char mark, std::vector<unsigned char>& marks) const {
    thread_local std::vector<unsigned> open;
    open.assign(1, root);
    marks[root] |= mark;
    while (!open.empty()) {
      const unsigned i = open.back();
      open.pop_back();
      for (unsigned e = fFirst[i]; e < fFirst[i + 1]; ++e) {
        if ((marks[fEnds[e]] & mark) == 0) {
          marks[fEnds[e]] |= mark;
          open.push_back(fEnds[e]);
        }
      }
    }
  }
};

}  // namespace

bool VokTarnCircuitConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreIntegers(environment, 0, environment.Size()) && GetConstants().size() == 2;
}

bool VokTarnCircuitConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const unsigned n = environment.Size();
  std::vector<char> isSuccessor(n);
  unsigned start = kNone;
  unsigned left = 0;
  for (unsigned i = 0; i < n; ++i) {
    const std::int64_t next = ExactValue(environment, i) - GetConstants()[0];
    if (next < 0 || next >= n || isSuccessor[static_cast<std::size_t>(next)] != 0) {
      return false;
    }
    isSuccessor[static_cast<std::size_t>(next)] = 1;
    if (IsPartial() && next == i) {
      ++left;
    } else {
      start = i;
    }
  }
  if (start == kNone) {
    return true;
  }
  unsigned length = 0;
  unsigned i = start;
  do {
    i = static_cast<unsigned>(ExactValue(environment, i) - GetConstants()[0]);
    ++length;
  } while (i != start);
  return length + left == n;
}

// Follows each chain of known successors from its start to its end, which must not lead back while some place outside
// has to be on the circuit.
int VokTarnCircuitConstraint::CutChains(const VokTarnObjectEnvironment& environment) const {
  const unsigned n = environment.Size();
  const std::int64_t first = GetConstants()[0];
  thread_local std::vector<unsigned> next;
  thread_local std::vector<char> isSuccessor;
  thread_local std::vector<char> isDue;  // cannot be left out
  next.assign(n, kNone);
  isSuccessor.assign(n, 0);
  isDue.assign(n, 1);
  unsigned due = 0;
  for (unsigned i = 0; i < n; ++i) {
    isDue[i] = IsPartial() && environment.MayBe(i, first + i) ? 0 : 1;
    due += isDue[i] != 0 ? 1U : 0U;
    if (environment.IsSingle(i) && environment.Lower(i) != first + i) {
      next[i] = static_cast<unsigned>(environment.Lower(i) - first);
      if (isSuccessor[next[i]] != 0) {
        return environment.Fail();
      }
      isSuccessor[next[i]] = 1;
    }
  }
  int changed = 0;
  unsigned onChains = 0;
  for (unsigned start = 0; start < n; ++start) {
    if (isSuccessor[start] != 0 || next[start] == kNone) {
      continue;
    }
    unsigned end = start;
    unsigned dueInside = 0;
    for (; next[end] != kNone; end = next[end]) {
      dueInside += isDue[end] != 0 ? 1U : 0U;
      ++onChains;
    }
    dueInside += isDue[end] != 0 ? 1U : 0U;
    changed |= environment.Remove(end, static_cast<VokLong>(first + end));
    if (!environment.IsFailed() && dueInside < due) {
      changed |= environment.Remove(end, static_cast<VokLong>(first + start));
    }
    if (environment.IsFailed()) {
      return changed;
    }
  }
  // Known successors that are on no chain with a start make circuits: one at most, and then every other place is left
  // out.
  const auto known = static_cast<unsigned>(n - std::count(next.begin(), next.end(), kNone));
  if (known == onChains) {
    return changed;
  }
  for (unsigned start = 0; start < n; ++start) {
    if (isSuccessor[start] == 0) {
      for (unsigned i = start; i != kNone; i = next[i]) {
        isSuccessor[i] = 2;  // on a chain
      }
    }
  }
  const auto isOnCircuit = [](unsigned i) { return next[i] != kNone && isSuccessor[i] == 1; };
  unsigned start = 0;
  while (!isOnCircuit(start)) {
    ++start;
  }
  for (unsigned i = start; isSuccessor[i] == 1; i = next[i]) {
    isSuccessor[i] = 3;
  }
  for (unsigned i = 0; i < n && !environment.IsFailed(); ++i) {
    if (isSuccessor[i] != 3) {
      changed |= IsPartial() ? environment.KeepBetween(i, first + i, first + i) : environment.Fail();
    }
  }
  return changed;
}

int VokTarnCircuitConstraint::KeepConnected(const VokTarnObjectEnvironment& environment) const {
  const unsigned n = environment.Size();
  const std::int64_t first = GetConstants()[0];
  thread_local Graph forward;
  thread_local Graph backward;
  thread_local std::vector<unsigned char> marks;
  unsigned root = kNone;
  forward.fFirst.assign(1, 0);
  forward.fEnds.clear();
  for (unsigned i = 0; i < n; ++i) {
    ForEachValue(environment, i, first, first + n - 1,
                 [&](VokLong v) { forward.fEnds.push_back(static_cast<unsigned>(v - first)); });
    forward.fFirst.push_back(static_cast<unsigned>(forward.fEnds.size()));
    if (root == kNone && !(IsPartial() && environment.MayBe(i, first + i))) {
      root = i;
    }
  }
  if (root == kNone) {
    return 0;
  }
  backward.Reverse(forward);
  marks.assign(n, 0);
  forward.Mark(root, 1, marks);
  backward.Mark(root, 2, marks);
  int changed = 0;
  for (unsigned i = 0; i < n && !environment.IsFailed(); ++i) {
    if (marks[i] != 3) {
      changed |= IsPartial() ? environment.KeepBetween(i, first + i, first + i) : environment.Fail();
    }
  }
  return changed;
}

int VokTarnCircuitConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const unsigned n = environment.Size();
  const std::int64_t first = GetConstants()[0];
  int changed = 0;
  for (unsigned i = 0; i < n && !environment.IsFailed(); ++i) {
    changed |= environment.KeepBetween(i, first, first + n - 1);
    if (!IsPartial() && n > 1 && !environment.IsFailed()) {
      changed |= environment.Remove(i, static_cast<VokLong>(first + i));
    }
  }
  if (!environment.IsFailed()) {
    changed |= CutChains(environment);
  }
  return environment.IsFailed() ? changed : changed | KeepConnected(environment);
}
