// Puzzles with dense domains and long sums, where bounds suffice.

#include "Peer.h"

using namespace Gecode;

namespace peer {
namespace {

// The same order as `--var input-order --val min`, or `--var first-fail --val min`.
void BranchInOrder(ArraySpace& space) {
  branch(space, space.fVariables, INT_VAR_NONE(), INT_VAL_MIN());
}

void BranchFirstFail(ArraySpace& space) {
  branch(space, space.fVariables, INT_VAR_SIZE_MIN(), INT_VAL_MIN());
}

Space* MakeSend(IntPropLevel level) {
  ArraySpace* space = MakeSquareSpace(8, 0, 9);
  const IntVarArray& v = space->fVariables;  // S E N D M O R Y
  rel(*space, v[0], IRT_GR, 0);
  rel(*space, v[4], IRT_GR, 0);
  const IntArgs coefficients{1000, 91, -90, 1, -9000, -900, 10, -1};
  linear(*space, coefficients, v, IRT_EQ, 0, level);
  distinct(*space, v, level);
  BranchFirstFail(*space);
  return space;
}

Space* MakeQueens(int n, IntPropLevel level) {
  ArraySpace* space = MakeSquareSpace(n, 1, n);
  distinct(*space, space->fVariables, level);
  distinct(*space, IntArgs::create(n, 1), space->fVariables, level);
  distinct(*space, IntArgs::create(n, -1, -1), space->fVariables, level);
  BranchFirstFail(*space);
  return space;
}

Space* MakeMagic4(IntPropLevel level) {
  constexpr int n = 4;
  ArraySpace* space = MakeSquareSpace(n * n, 1, n * n);
  const Matrix<IntVarArray> m(space->fVariables, n, n);
  for (int i = 0; i < n; ++i) {
    linear(*space, m.row(i), IRT_EQ, 34, level);
    linear(*space, m.col(i), IRT_EQ, 34, level);
  }
  linear(*space, IntVarArgs{m(0, 0), m(1, 1), m(2, 2), m(3, 3)}, IRT_EQ, 34, level);
  linear(*space, IntVarArgs{m(0, 3), m(1, 2), m(2, 1), m(3, 0)}, IRT_EQ, 34, level);
  distinct(*space, space->fVariables, level);
  // One of each square's eight turns and mirror images.
  rel(*space, m(0, 0), IRT_LE, m(3, 0));
  rel(*space, m(0, 0), IRT_LE, m(0, 3));
  rel(*space, m(0, 0), IRT_LE, m(3, 3));
  rel(*space, m(3, 0), IRT_LE, m(0, 3));
  BranchFirstFail(*space);
  return space;
}

Space* MakeGolomb(int n, IntPropLevel level) {
  ArraySpace* space = MakeSquareSpace(n, 0, n * n);
  const IntVarArray& m = space->fVariables;
  rel(*space, m[0], IRT_EQ, 0);
  IntVarArgs distances;
  for (int i = 0; i < n; ++i) {
    for (int j = i + 1; j < n; ++j) {
      IntVar d = i == 0 ? m[j] : IntVar(*space, 1, n * n);
      if (i > 0) {
        linear(*space, IntArgs{1, -1, -1}, IntVarArgs{m[j], m[i], d}, IRT_EQ, 0, level);
      }
      rel(*space, d, IRT_GQ, (j - i) * (j - i + 1) / 2);
      distances << d;
    }
  }
  for (int i = 1; i < n; ++i) {
    rel(*space, m[i - 1], IRT_LE, m[i]);
  }
  distinct(*space, distances, level == IPL_DOM ? IPL_DOM : IPL_BND);
  rel(*space, distances[0], IRT_LE, distances[distances.size() - 1]);
  space->fCost = m[n - 1];
  BranchInOrder(*space);
  return space;
}

// The numbers 1 to 26 for the letters; the sum of each word is known.
Space* MakeAlpha(IntPropLevel level) {
  const std::vector<std::pair<const char*, int>> words = {
      {"ballet", 45}, {"cello", 43}, {"concert", 74}, {"flute", 30}, {"fugue", 50},   {"glee", 66},       {"jazz", 58},
      {"lyre", 47},   {"oboe", 53},  {"opera", 65},   {"polka", 59}, {"quartet", 50}, {"saxophone", 134}, {"scale", 51},
      {"solo", 37},   {"song", 61},  {"soprano", 82}, {"theme", 72}, {"violin", 100}, {"waltz", 34}};
  ArraySpace* space = MakeSquareSpace(26, 1, 26);
  distinct(*space, space->fVariables, level);
  for (const auto& [word, total] : words) {
    IntArgs coefficients(26);
    for (int i = 0; i < 26; ++i) {
      coefficients[i] = 0;
    }
    for (const char* c = word; *c != '\0'; ++c) {
      ++coefficients[*c - 'a'];
    }
    linear(*space, coefficients, space->fVariables, IRT_EQ, total, level);
  }
  BranchInOrder(*space);
  return space;
}

Space* MakeQueens8(IntPropLevel level) {
  return MakeQueens(8, level);
}
Space* MakeQueens12(IntPropLevel level) {
  return MakeQueens(12, level);
}
Space* MakeGolomb8(IntPropLevel level) {
  return MakeGolomb(8, level);
}
Space* MakeGolomb9(IntPropLevel level) {
  return MakeGolomb(9, level);
}

const Register rSend("send", {MakeSend, true, false});
const Register rQueens8("queens-8", {MakeQueens8, true, false});
const Register rQueens12("queens-12", {MakeQueens12, true, false});
const Register rMagic4("magic-4", {MakeMagic4, true, false});
const Register rGolomb8("golomb-8", {MakeGolomb8, true, true});
const Register rGolomb9("golomb-9", {MakeGolomb9, true, true});
const Register rAlpha("alpha", {MakeAlpha, true, false});

}  // namespace
}  // namespace peer
