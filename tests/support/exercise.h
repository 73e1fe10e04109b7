// Every operation of a value class, run on a value in whatever state: nothing is asserted but that it comes back.
#pragma once

#include <sstream>

#include "domain/VokFenEnumInteger.h"
#include "framework/Vokopstream.h"
#include "numbers/VokFenSingleBoolean.h"
#include "support/operations.h"

namespace support {

template <class Value, class Partner>
void ExerciseBeside(const Value& value, const Partner& partner) {
  VokFenSingleBoolean truth;
  value.IsIntersected(partner);
  value.CalcIsEqual(partner, truth);
  value.CalcIsLessOrEqual(partner, truth);
  const auto onCopies = [&](auto operation) {
    Value x = value;
    Partner y = partner;
    operation(x, y);
  };
  onCopies([](auto& x, auto& y) { x.Assign(y), x.Intersect(y), x.Unite(y); });
  onCopies([](auto& x, auto& y) { y.Assign(x), y.Unite(x), y.Intersect(x); });
  onCopies([](auto& x, auto& y) { x.Unite(y), y.CalcInverseUnequalValue(x), x.CalcEqualValue(y); });
  onCopies([](auto& x, auto& y) { x.CalcUnequalValue(y), x.CalcInverseEqualValue(y); });
  onCopies([](auto& x, auto& y) { x.CalcMinValue(x, y), y.CalcFirstInverseMaxValue(x, y); });
  if constexpr (std::is_base_of_v<VokTarnInteger, Value>) {
    value.CalcIsLess(partner, truth);
    for (const Operation& op : Operations()) {
      Partner other = partner;
      onCopies([&](auto& x, auto& y) { op.run(x, y, other); });
      onCopies([&](auto& x, auto& y) { op.run(y, x, other); });
      onCopies([&](auto& x, auto& y) { op.run(y, other, x); });
      onCopies([&](auto& x, auto&) { op.run(x, x, x); });
    }
  }
}

template <class Value>
void Exercise(const Value& value) {
  std::stringstream text;
  value.PrintOn(text);
  Vokopstream record(text);
  value.Write(record);
  static_cast<void>(value.GetCardinality() + value.IsNil() + value.IsUndefined() + value.IsDerivedFrom(Value::sIdent));
  static_cast<void>(value.GetWidth() + value.GetRelativeWidth(2));
  for (const int part : {VokTarnAny::LowerHalf, VokTarnAny::UpperHalf, VokTarnAny::Smallest, VokTarnAny::Largest}) {
    Value x = value;
    Value y;
    x.Bisect(y, static_cast<VokTarnAny::ValueSelection>(part));
    ExerciseBeside(x, y);
  }
  Value least = value;
  Value greatest = value;
  least.CalcMinValue(), greatest.CalcMaxValue();
  if constexpr (std::is_base_of_v<VokTarnInteger, Value>) {
    constexpr VokLong list[] = {3, -1, 3, 7};  // a count and its values
    const VokFenEnumInteger small(static_cast<const void*>(list));
    ExerciseBeside(value, VokFenSingleInteger(3));
    ExerciseBeside(value, VokFenIntervalInteger(-4, 9));
    ExerciseBeside(value, small);
    for (const VokLong v : {-2147483647 - 1, -2147483645, -1, 0, 7, 2147483645, 2147483647}) {
      static_cast<void>(value.GetNextExactValue(v) + 0LL + value.GetPrevExactValue(v));
      static_cast<void>(value.IsPossible(v));
      for (int (VokTarnInteger::*change)(VokLong) :
           {&VokTarnInteger::SetExactValue, &VokTarnInteger::SetLowerBound, &VokTarnInteger::SetUpperBound,
            &VokTarnInteger::AddExactValue, &VokTarnInteger::RemoveExactValue}) {
        Value x = value;
        (x.*change)(v);
        ExerciseBeside(x, VokFenSingleInteger(v));
      }
    }
    least.CalcZeroValue(), greatest.CalcOneValue();
  } else {
    ExerciseBeside(value, Value());
    least.CalcTruthValue(value.IsPossible(0));
  }
}

}  // namespace support
