// Object streams and saved networks. After an odd first byte come the objects of a stream; after an even one the
// payload of a saved network, whose length and checksum are put right, as no mutation would hit them. After one that is
// no multiple of 4 the network is narrowed, written and read again, too.
#include "framework/VokStreamableClass.h"
#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "framework/checksum.h"
#include "framework/networkFormat.h"
#include "session.h"
#include "support/streamBytes.h"

namespace {

void RunObjects(const std::string& bytes) {
  std::istringstream text(std::string("VTOS\1\0\0\0", 8) + bytes);
  Vokipstream is(text);
  std::vector<std::unique_ptr<VokStreamable>> objects;
  while (!is.IsFailed()) {
    const std::size_t before = is.GetObjectCount();
    VokStreamable* const object = is.ReadObjectPointer();
    if (object != nullptr && is.GetObjectCount() > before) {
      objects.emplace_back(object);
    }
  }
  for (const auto& object : objects) {
    std::stringstream copy;
    Vokopstream os(copy);
    os.WriteObject(object.get());
    if (!os.IsFailed()) {
      Vokipstream again(copy);
      const std::unique_ptr<VokStreamable> same(again.ReadObjectPointer(object->CastableID()));
      if (same == nullptr) {
        fuzz::Fail(std::string("an object that was written is not read: ") + object->CastableID());
      }
    }
  }
}

void RunNetwork(const std::string& payload, bool isWritten) {
  const auto session =
      fuzz::Read(tarn::Source("network", std::string(vokNetworkMagic) + support::NumberBytes(vokNetworkVersion) +
                                             support::NumberBytes(static_cast<VokULong>(payload.size())) +
                                             support::NumberBytes(VokCalcChecksum(payload)) + payload));
  if (session == nullptr || !isWritten) {
    return;
  }
  fuzz::LimitSteps(session->GetNetwork(), 20);
  session->GetNetwork().Propagate();
  std::ostringstream bytes;
  std::string error;
  if (!VokTarnNetworkFile::Write(bytes, session->GetNetwork(), session->GetContents(), error)) {
    fuzz::Fail("a network that was read is not written: " + error);
  }
  if (fuzz::Read(tarn::Source("again", bytes.str())) == nullptr) {
    fuzz::Fail("a network that was written is not read");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::OpenModules();  // they know the classes
  if (size != 0 && data[0] % 2 != 0) {
    RunObjects(fuzz::ToString(data + 1, size - 1));
  } else if (size != 0) {
    RunNetwork(fuzz::ToString(data + 1, size - 1), data[0] % 4 != 0);
  }
  return 0;
}
