// Calls on enumerated sets, singles, intervals and vectors, each beside a plain model of it.
#include "fuzz.h"
#include "support/apiTrace.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string mismatch = apiTrace::FindMismatch(data, size);
  if (!mismatch.empty()) {
    fuzz::Fail("a call differs from its model:\n" + mismatch);
  }
  return 0;
}
