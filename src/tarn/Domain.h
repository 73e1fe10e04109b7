#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "framework/VokTarnAny.h"

namespace tarn {

// What a variable could be at one moment, for a person to compare with another moment.
//
// Integers are known by their runs of neighbours, unless nothing bounds them or they are too many to be looked at one
// by one; every other domain is known by its text only.
class Domain {
 public:
  explicit Domain(const VokTarnAny& value);

  bool operator==(const Domain&) const = default;

  // "7", "[1, 9]", "{1, 3, 8}", "{1..20, 30..50}", or the type's own text.
  std::string Format() const;
  // "x: before -> after   gone: values" for the variable that has become `after`; long lists are cut. What is gone is
  // left out where it cannot be told.
  std::string FormatChange(const std::string& name, const Domain& after) const;

 private:
  struct Run {
    std::int64_t fFirst;
    std::int64_t fLast;
    bool operator==(const Run&) const = default;
  };
  using Runs = std::vector<Run>;

  static std::optional<Runs> FindRuns(const VokTarnAny& value);
  static Runs Subtract(const Runs& from, const Runs& what);
  static std::string List(const Runs& runs, std::size_t most);
  std::string Format(std::size_t most) const;

  std::optional<Runs> fRuns;
  std::string fText;  // without runs
};

}  // namespace tarn
