// In which order a search takes variables, and the values of one: the parts that the choices of both languages are
// composed of. A new order is an enumerator here, its case in VokTarnOrders.cpp, and a word in each language's table
// (tarn/commands/CommandLine.cpp, flatzinc/SearchAnnotations.cpp).
#pragma once

#include <cstdint>

#include "framework/VokTarnAtom.h"
#include "framework/VokTarnNetwork.h"
#include "framework/VokTarnRestartSequences.h"

// Which open variable is chosen first. Among equals it is the one that stands first.
enum class VokTarnVariableOrder : unsigned char {
  FirstFail,        // fewest possible values
  InputOrder,       // the one that stands first
  MostConstrained,  // as FirstFail, but among equals the one in most constraints
  Weighted,       // fewest possible values per failure seen by the variable's constraints (F. Boussemart, F. Hemery, C.
                  // Lecoutre, L. Sais, "Boosting systematic search by weighting constraints", 2004)
  AntiFirstFail,  // most possible values
  Smallest,       // the least lower bound
  Largest,        // the greatest upper bound
  Occurrence,     // in most constraints
  MaxRegret,      // the greatest difference between the two least values
  Activity        // most often involved in the failures of late that the search has learned from (M. Moskewicz and
                  // others, "Chaff: engineering an efficient SAT solver", 2001)
};

// Which part of a domain is searched first. Where one value is taken, inside an interval, which cannot lose it alone,
// it is the values up to it.
enum class VokTarnValueOrder : unsigned char {
  Min,       // the least value
  Max,       // the greatest
  Split,     // the lower half of the values, the greater one if they are odd
  SplitMax,  // the upper half
  Median,    // the middle one of the values, the lesser of two
  Middle,    // the value nearest to the middle between the bounds
  HalveMin,  // the values up to the middle between the bounds
  HalveMax,  // those above it
  Interval,  // the values before the first hole; without one as HalveMin
  Random,    // any value
  HalveRandom,
  OutMin,  // all but the least value
  OutMax,
  OutMedian,
  OutRandom
};

// A fraction, less of which is chosen first; so that every machine ranks alike.
struct VokTarnRank {
  std::uint64_t fNumerator;  // times a denominator, below 2^64
  std::uint32_t fDenominator;

  bool operator<(const VokTarnRank& other) const noexcept {
    return fNumerator * other.fDenominator < other.fNumerator * fDenominator;
  }
};

// What the search has seen of a value.
struct VokTarnMerit {
  std::uint32_t fWeight;    // 1, its constraints, and the failures that these have seen
  std::uint64_t fActivity;  // below 2^63
};

// Of a value with more than one possible value.
VOKTARN_EXPORT VokTarnRank RankVariable(VokTarnVariableOrder order, const VokTarnNetwork& network, VokTarnValueId id,
                                        const VokTarnMerit& merit);

// What to assume first of a value with more than one possible value, an integer or a truth value whose type is a range
// or lists its values; neither it nor its negation is impossible.
VOKTARN_EXPORT VokTarnAtom ChooseValues(VokTarnValueOrder order, const VokTarnNetwork& network, VokTarnValueId id,
                                        VokTarnRandom& random);
// That the value is v, which is possible: as above.
VOKTARN_EXPORT VokTarnAtom ChooseValue(const VokTarnNetwork& network, VokTarnValueId id, VokLong v);
