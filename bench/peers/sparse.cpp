// Puzzles whose domains have holes: sums that must be squares or primes, sums of squares, distances from a list.

#include <cmath>
#include <fstream>
#include <stdexcept>

#include "Peer.h"

using namespace Gecode;

namespace peer {
namespace {

IntSet ListSet(const std::vector<int>& values) {
  return IntSet(values.data(), static_cast<int>(values.size()));
}

std::vector<int> ListSquares(int low, int high) {
  std::vector<int> squares;
  for (int i = low; i <= high; ++i) {
    squares.push_back(i * i);
  }
  return squares;
}

bool IsPrime(int v) {
  for (int i = 2; i * i <= v; ++i) {
    if (v % i == 0) {
      return false;
    }
  }
  return v > 1;
}

// The sum of each two variables in a row is in `sums`.
void ConstrainSums(ArraySpace& space, const IntVarArgs& row, const IntSet& sums, IntPropLevel level) {
  for (int i = 0; i + 1 < row.size(); ++i) {
    IntVar sum(space, sums);
    linear(space, IntArgs{1, 1, -1}, IntVarArgs{row[i], row[i + 1], sum}, IRT_EQ, 0, level);
  }
}

Space* MakeSquareChain(int n, IntPropLevel level) {
  ArraySpace* space = MakeSquareSpace(n, 1, n);
  distinct(*space, space->fVariables, level);
  ConstrainSums(*space, space->fVariables, ListSet(ListSquares(2, static_cast<int>(std::sqrt(2 * n)))), level);
  rel(*space, space->fVariables[0], IRT_LE, space->fVariables[n - 1]);
  branch(*space, space->fVariables, INT_VAR_NONE(), INT_VAL_MIN());
  return space;
}

Space* MakePrimeRing(int n, IntPropLevel level) {
  ArraySpace* space = MakeSquareSpace(n, 1, n);
  rel(*space, space->fVariables[0], IRT_EQ, 1);
  distinct(*space, space->fVariables, level);
  std::vector<int> primes;
  for (int i = 3; i < 2 * n; ++i) {
    if (IsPrime(i)) {
      primes.push_back(i);
    }
  }
  IntVarArgs ring(space->fVariables);
  ring << space->fVariables[0];
  ConstrainSums(*space, ring, ListSet(primes), level);
  branch(*space, space->fVariables, INT_VAR_NONE(), INT_VAL_MIN());
  return space;
}

// The square of each variable, as a variable of its own.
IntVarArgs MakeSquares(ArraySpace& space, int greatest, IntPropLevel level) {
  IntVarArgs squares;
  for (int i = 0; i < space.fVariables.size(); ++i) {
    IntVar square(space, 0, greatest * greatest);
    sqr(space, space.fVariables[i], square, level);
    squares << square;
  }
  return squares;
}

Space* MakePythagorean(IntPropLevel level) {
  ArraySpace* space = MakeSquareSpace(3, 1, 1000);
  const IntVarArgs squares = MakeSquares(*space, 1000, level);
  rel(*space, space->fVariables[0], IRT_LE, space->fVariables[1]);
  rel(*space, space->fVariables[1], IRT_LE, space->fVariables[2]);
  linear(*space, IntArgs{1, 1, -1}, squares, IRT_EQ, 0, level);
  branch(*space, space->fVariables, INT_VAR_NONE(), INT_VAL_MIN());
  return space;
}

Space* MakeThreeSquares(IntPropLevel level) {
  ArraySpace* space = MakeSquareSpace(3, 0, 836);
  const IntVarArgs squares = MakeSquares(*space, 836, level);
  rel(*space, space->fVariables[0], IRT_LQ, space->fVariables[1]);
  rel(*space, space->fVariables[1], IRT_LQ, space->fVariables[2]);
  linear(*space, squares, IRT_EQ, 700001, level);
  branch(*space, space->fVariables, INT_VAR_NONE(), INT_VAL_MIN());
  return space;
}

Space* MakeMagicSquares(IntPropLevel level) {
  ArraySpace* space = MakeSquareSpace(16, 0, 53);
  const IntVarArgs squares = MakeSquares(*space, 53, level);
  const Matrix<IntVarArgs> m(squares, 4, 4);
  for (int i = 0; i < 4; ++i) {
    linear(*space, m.row(i), IRT_EQ, 2823, level);
    linear(*space, m.col(i), IRT_EQ, 2823, level);
  }
  linear(*space, IntVarArgs{m(0, 0), m(1, 1), m(2, 2), m(3, 3)}, IRT_EQ, 2823, level);
  linear(*space, IntVarArgs{m(0, 3), m(1, 2), m(2, 1), m(3, 0)}, IRT_EQ, 2823, level);
  distinct(*space, space->fVariables, level);
  branch(*space, space->fVariables, INT_VAR_SIZE_MIN(), INT_VAL_MIN());
  return space;
}

// Reads models/NAME.data: the allowed distances, each link's frequencies, the pairs of links that disturb one another.
Space* MakeRadioLinks(const std::string& name, IntPropLevel level) {
  std::ifstream file(GetDataPath(name + ".data"));
  const auto readList = [&file] {
    int count = 0;
    file >> count;
    std::vector<int> list(static_cast<std::size_t>(count));
    for (int& v : list) {
      file >> v;
    }
    return list;
  };
  const std::vector<int> distances = readList();
  int links = 0;
  int pairs = 0;
  file >> links >> pairs;
  auto* space = new ArraySpace;
  space->fVariables = IntVarArray(*space, links + pairs, -1000000, 1000000);
  for (int i = 0; i < links; ++i) {
    dom(*space, space->fVariables[i], ListSet(readList()));
  }
  const IntSet allowed = ListSet(distances);
  for (int p = 0; p < pairs; ++p) {
    int a = 0;
    int b = 0;
    file >> a >> b;
    const IntVar d = space->fVariables[links + p];
    dom(*space, d, allowed);
    linear(*space, IntArgs{1, -1, -1}, IntVarArgs{space->fVariables[a - 1], space->fVariables[b - 1], d}, IRT_EQ, 0,
           level);
  }
  if (!file) {
    throw std::runtime_error("cannot read " + GetDataPath(name + ".data"));
  }
  branch(*space, space->fVariables, INT_VAR_SIZE_MIN(), INT_VAL_MIN());
  return space;
}

MakeSpace MakeRadio(const std::string& name) {
  return [name](IntPropLevel level) { return MakeRadioLinks(name, level); };
}

Space* MakeSquareChain25(IntPropLevel level) {
  return MakeSquareChain(25, level);
}
Space* MakeSquareChain26(IntPropLevel level) {
  return MakeSquareChain(26, level);
}
Space* MakePrimeRing14(IntPropLevel level) {
  return MakePrimeRing(14, level);
}

const Register rSquareChain25("square-chain-25", {MakeSquareChain25, true, false});
const Register rSquareChain26("square-chain-26", {MakeSquareChain26, true, false});
const Register rPrimeRing("prime-ring-14", {MakePrimeRing14, true, false});
const Register rPythagorean("pythagorean-1000", {MakePythagorean, true, false});
const Register rThreeSquares("three-squares", {MakeThreeSquares, true, false});
const Register rMagicSquares("magic-squares", {MakeMagicSquares, false, false});
const Register rRadio1("radio-60-1", {MakeRadio("radio-60-1"), false, false});
const Register rRadio2("radio-60-2", {MakeRadio("radio-60-2"), false, false});
const Register rRadio3("radio-60-3", {MakeRadio("radio-60-3"), false, false});
const Register rRadio200("radio-200", {MakeRadio("radio-200"), false, false});

}  // namespace
}  // namespace peer
