#include "tarn/Domain.h"

#include <algorithm>
#include <limits>

#include "framework/VokTarnInteger.h"
#include "tarn/Evaluator.h"
#include "tarn/TextStream.h"

namespace tarn {
namespace {

// Domains with holes are looked at value by value up to this size.
constexpr int sMostValues = 10000;
// Up to this many values are listed one by one, more of them by their runs.
constexpr std::int64_t sListed = 10;
// A line tells at most this many runs.
constexpr std::size_t sMostRuns = 10;

}  // namespace

Domain::Domain(const VokTarnAny& value) : fRuns(FindRuns(value)) {
  if (!fRuns) {
    TextWriter text;
    value.PrintOn(text);
    fText = text.str();
  }
}

std::optional<Domain::Runs> Domain::FindRuns(const VokTarnAny& value) {
  if (value.IsDerivedFrom(VokTarnInteger::sIdent) == 0 || value.IsNil() != 0 || value.IsUndefined() != 0) {
    return std::nullopt;
  }
  const auto& integer = static_cast<const VokTarnInteger&>(value);
  const std::int64_t lower = integer.GetLowerBound();
  const std::int64_t upper = integer.GetUpperBound();
  // The ends of the integer range stand for everything beyond them.
  if (lower <= -Evaluator::sLimit || upper >= Evaluator::sLimit) {
    return std::nullopt;
  }
  const int count = integer.GetCardinality();
  if (count == std::min<std::int64_t>(upper - lower + 1, std::numeric_limits<int>::max())) {
    return Runs{{lower, upper}};
  }
  if (count > sMostValues) {
    return std::nullopt;
  }
  Runs runs{{lower, lower}};
  VokLong last = integer.GetLowerBound();
  for (int i = 1; i < count; ++i) {
    last = integer.GetNextExactValue(last);
    if (last == runs.back().fLast + 1) {
      runs.back().fLast = last;
    } else {
      runs.push_back({last, last});
    }
  }
  return runs;
}

Domain::Runs Domain::Subtract(const Runs& from, const Runs& what) {
  Runs rest;
  auto hole = what.begin();
  for (Run run : from) {
    while (hole != what.end() && hole->fLast < run.fFirst) {
      ++hole;
    }
    for (auto next = hole; next != what.end() && next->fFirst <= run.fLast; ++next) {
      if (run.fFirst < next->fFirst) {
        rest.push_back({run.fFirst, next->fFirst - 1});
      }
      run.fFirst = next->fLast + 1;
    }
    if (run.fFirst <= run.fLast) {
      rest.push_back(run);
    }
  }
  return rest;
}

std::string Domain::List(const Runs& runs, std::size_t most) {
  std::int64_t count = 0;
  for (const Run& run : runs) {
    count += run.fLast - run.fFirst + 1;
  }
  std::string list;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    if (runs.size() > most && i == most - 2) {
      list += ", ...";
      i = runs.size() - 1;
    }
    const Run& run = runs[i];
    const bool isListed = count <= sListed || run.fLast - run.fFirst < 2;
    for (std::int64_t v = run.fFirst; v <= (isListed ? run.fLast : run.fFirst); ++v) {
      list += (list.empty() ? "" : ", ") + std::to_string(v);
    }
    list += isListed ? "" : ".." + std::to_string(run.fLast);
  }
  return list;
}

std::string Domain::Format(std::size_t most) const {
  if (!fRuns) {
    return fText;
  }
  const Run& first = fRuns->front();
  if (fRuns->size() > 1) {
    return "{" + List(*fRuns, most) + "}";
  }
  return first.fFirst == first.fLast ? std::to_string(first.fFirst)
                                     : "[" + std::to_string(first.fFirst) + ", " + std::to_string(first.fLast) + "]";
}

std::string Domain::Format() const {
  return Format(std::numeric_limits<std::size_t>::max());
}

std::string Domain::FormatChange(const std::string& name, const Domain& after) const {
  std::string line = name + ": " + Format(sMostRuns) + " -> " + after.Format(sMostRuns);
  if (fRuns && after.fRuns) {
    line += "   gone: " + List(Subtract(*fRuns, *after.fRuns), sMostRuns);
  }
  return line;
}

}  // namespace tarn
