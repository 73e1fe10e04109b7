#include <algorithm>
#include <limits>
#include <new>
#include <sstream>
#include <stdexcept>

#include "framework/VokStreamableClass.h"
#include "framework/VokTarnNetworkFile.h"
#include "framework/VokTarnObjectDescriptor.h"
#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "framework/checksum.h"
#include "framework/networkFormat.h"
#include "framework/streamFormat.h"

namespace {

// Why a network cannot be saved.
class Refusal : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

void WriteCount(Vokopstream& os, std::size_t count) {
  if (count > std::numeric_limits<VokULong>::max()) {
    throw Refusal("the network is too large for a file");
  }
  os << static_cast<VokULong>(count);
}

void WriteName(Vokopstream& os, std::string_view name) {
  if (name.size() > vokMaxTextLength) {
    throw Refusal("a name is longer than " + std::to_string(vokMaxTextLength) + " bytes");
  }
  os.WriteText(name);
}

std::string DescribeValue(const VokTarnNetwork& network, VokTarnValueId id) {
  const std::string& name = network.GetName(id);
  return "the value #" + std::to_string(id) + (name.empty() ? "" : " '" + name + "'") + " of type '" +
         network.GetType(id)->GetName().Text() + "'";
}

void CheckIsStreamable(const VokStreamable& object, const std::string& description) {
  if (VokStreamableClass::Find(object.CastableID()) == nullptr) {
    throw Refusal(description + " cannot be saved: its class '" + object.CastableID() +
                  "' is not known to the object streams");
  }
}

// Whether the record of the value holds its domain. Some records lose what the value's state cannot say by itself, and
// a domain that came back wider would give other solutions.
bool KeepsItsDomain(VokTarnNetwork& network, VokTarnValueId id) {
  const VokTarnAny& value = network.GetValue(id);
  std::stringstream bytes;
  Vokopstream os(bytes);
  os.WriteObject(&value);
  const VokTarnNetwork::Spare copy = network.TakeSpare(network.GetType(id));
  copy->SetUndefinedValue();
  VokStreamable* target = copy.get();
  Vokipstream is(bytes);
  is.ReadObject(target);
  return !os.IsFailed() && !is.IsFailed() && copy->GetCardinality() == value.GetCardinality() && VokHasState(*copy);
}

void WriteValues(Vokopstream& os, VokTarnNetwork& network) {
  WriteCount(os, network.GetValueCount());
  for (VokTarnValueId id = 0; id < network.GetValueCount(); ++id) {
    const VokTarnAny& value = network.GetValue(id);
    CheckIsStreamable(value, DescribeValue(network, id));
    if (!KeepsItsDomain(network, id)) {
      throw Refusal(DescribeValue(network, id) + " cannot be saved: its record does not hold its domain");
    }
    WriteName(os, network.GetType(id)->GetName().View());
    WriteName(os, network.GetName(id));
    os.WriteObject(&value);
  }
}

void WriteConstraints(Vokopstream& os, const VokTarnNetwork& network) {
  WriteCount(os, network.GetConstraintCount());
  for (VokULong i = 0; i < network.GetConstraintCount(); ++i) {
    CheckIsStreamable(network.GetConstraint(i), "the constraint #" + std::to_string(i));
    os.WriteObject(&network.GetConstraint(i));
  }
}

void WriteContents(Vokopstream& os, const VokTarnNetwork& network, const VokTarnNetworkFile::Contents& contents) {
  WriteCount(os, contents.fVariables.size());
  for (const VokTarnValueId variable : contents.fVariables) {
    os << variable;
  }
  if (contents.fObjective) {
    os << (contents.fObjective->fSense == VokTarnSearch::Sense::Minimize ? vokMinimize : vokMaximize)
       << contents.fObjective->fValue << contents.fObjective->fBound;
  } else {
    os << vokNoObjective;
  }
  os << VokULong{network.IsFailed() ? 1U : 0U};
  WriteName(os, contents.fModelName);
  const std::string_view text = contents.fModelText;
  for (std::size_t at = 0; at < text.size(); at += vokMaxTextLength) {
    os.WriteText(text.substr(at, vokMaxTextLength));
  }
  os.WriteText({});
}

std::string MakePayload(VokTarnNetwork& network, const VokTarnNetworkFile::Contents& contents) {
  std::ostringstream bytes;
  Vokopstream os(bytes);
  WriteCount(os, contents.fModules.size());
  for (const std::string& module : contents.fModules) {
    WriteName(os, module);
  }
  WriteValues(os, network);
  WriteConstraints(os, network);
  WriteContents(os, network, contents);
  if (network.IsMemoryShort()) {
    throw std::bad_alloc();
  }
  if (os.IsFailed()) {
    throw Refusal("a value or constraint of the network cannot be written");
  }
  return std::move(bytes).str();
}

void WriteWord(std::ostream& os, VokULong v) {
  for (int i = 0; i < 4; ++i) {
    os.put(static_cast<char>(static_cast<unsigned char>(v & 0xFFU)));
    v >>= 8;
  }
}

}  // namespace

bool VokTarnNetworkFile::IsNetworkFile(std::string_view bytes) noexcept {
  return bytes.starts_with(vokNetworkMagic);
}

bool VokTarnNetworkFile::Write(std::ostream& os, VokTarnNetwork& network, const Contents& contents,
                               std::string& error) {
  const VokTarnMemoryWatch memory;
  try {
    const std::string payload = MakePayload(network, contents);
    if (payload.size() > std::numeric_limits<VokULong>::max()) {
      throw Refusal("the network is too large for a file");
    }
    os.write(vokNetworkMagic.data(), static_cast<std::streamsize>(vokNetworkMagic.size()));
    WriteWord(os, vokNetworkVersion);
    WriteWord(os, static_cast<VokULong>(payload.size()));
    WriteWord(os, VokCalcChecksum(payload));
    os.write(payload.data(), static_cast<std::streamsize>(payload.size()));
    if (!os.flush()) {
      throw Refusal("the bytes cannot be written");
    }
    error.clear();
    return true;
  } catch (const Refusal& refusal) {
    if (memory.HasSeenFailure()) {  // it may be what was refused
      throw std::bad_alloc();
    }
    error = refusal.what();
  }
  return false;
}
