// The model language: parse, build, narrow, and a few steps of search, whose solutions must satisfy the model as it is
// written.
#include "framework/VokTarnSearch.h"
#include "session.h"
#include "tarn/commands/Commands.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t sLongest = 1024;
  if (size > sLongest) {
    return 0;
  }
  const std::string text = fuzz::ToString(data, size);
  const auto session = fuzz::Read(tarn::Source("model", text));
  if (session == nullptr) {
    return 0;
  }
  fuzz::LimitSteps(session->GetNetwork(), 40);
  VokTarnSearch::Options options;
  options.fNodeLimit = 10;
  VokTarnSearch search(session->GetNetwork(), session->GetVariables(), session->GetObjective(), options);
  while (search.Next() == VokTarnSearch::Status::Solution) {
    std::ostringstream fault;
    if (!tarn::IsSolution(*session, fault)) {
      fuzz::Fail(fault.str());
    }
  }
  return 0;
}
