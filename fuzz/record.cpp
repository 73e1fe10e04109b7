// The record of the enumerated set: whatever the bytes, what was read is a set, and its own record gives it back.
#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "fuzz.h"
#include "support/enumSets.h"

namespace {

const std::string sHeader("VTOS\1\0\0\0", 8);

std::string Write(const VokFenEnumInteger& set) {
  std::ostringstream bytes;
  Vokopstream os(bytes);
  set.Write(os);
  if (os.IsFailed()) {
    fuzz::Fail("a set cannot be written: " + enumSets::Show(set));
  }
  return bytes.str();
}

VokFenEnumInteger Read(const std::string& bytes) {
  std::istringstream text(bytes);
  Vokipstream is(text);
  VokFenEnumInteger set;
  set.Read(is);
  return set;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const VokFenEnumInteger set = Read(sHeader + fuzz::ToString(data, size));
  const std::string record = Write(set);
  if (record != Write(Read(record))) {
    fuzz::Fail("its record does not give back " + enumSets::Show(set));
  }
  for (unsigned i = 1; i < set.GetCount(); ++i) {
    if (set.GetValue(i - 1) >= set.GetValue(i)) {
      fuzz::Fail("members do not ascend: " + enumSets::Show(set));
    }
  }
  fuzz::Print(set);
  return 0;
}
