// The text forms of domains: a text that is read prints as one that is read as the same. The first byte chooses the
// type, the rest is the text.
#include "domain/VokFenEnumInteger.h"
#include "fuzz.h"
#include "numbers/SubIntBase.h"
#include "numbers/VokFenSingleBoolean.h"

namespace {

const VokULong sLimit = InitEnumIntegers();

template <class Value>
void Run(const std::string& text) {
  std::istringstream is(text);
  Value value;
  value.InputValue(is);
  if (is.fail()) {
    return;
  }
  // Numbers beyond the ends of the integer range are printed as the ends.
  if constexpr (requires { value.GetUpperBound(); }) {
    if (value.GetLowerBound() < SubIntBase::sMin || value.GetUpperBound() > SubIntBase::sMax) {
      return;
    }
  }
  const std::string printed = fuzz::Print(value);
  std::istringstream again(printed);
  Value same;
  same.InputValue(again);
  if (again.fail() || fuzz::Print(same) != printed || same.GetCardinality() != value.GetCardinality()) {
    fuzz::Fail("a printed domain is not read as itself: " + printed);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  constexpr void (*sRuns[])(const std::string&) = {Run<VokFenEnumInteger>, Run<VokFenIntervalInteger>,
                                                   Run<VokFenSingleInteger>, Run<VokFenSingleBoolean>};
  sRuns[data[0] % std::size(sRuns)](fuzz::ToString(data + 1, size - 1));
  return 0;
}
