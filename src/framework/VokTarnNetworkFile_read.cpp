#include <algorithm>
#include <array>
#include <istream>
#include <new>
#include <sstream>
#include <stdexcept>
#include <unordered_map>

#include "framework/VokTarnInteger.h"
#include "framework/VokTarnNetworkFile.h"
#include "framework/VokTarnOperatorTable.h"
#include "framework/Vokipstream.h"
#include "framework/checksum.h"
#include "framework/networkFormat.h"

namespace {

// What is wrong with the bytes.
class Refusal : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A name from the file for a message, which is no place for a long one.
std::string Quote(const std::string& name) {
  constexpr std::size_t longest = 64;
  return "'" + (name.size() > longest ? name.substr(0, longest) + "..." : name) + "'";
}

// Up to `count` bytes, fewer at the end of the stream. In pieces, so that a false count costs no memory.
std::string ReadBytes(std::istream& is, std::size_t count) {
  std::string bytes;
  char piece[1 << 16];
  while (bytes.size() < count) {
    is.read(piece, static_cast<std::streamsize>(std::min(count - bytes.size(), sizeof piece)));
    bytes.append(piece, static_cast<std::size_t>(is.gcount()));
    if (!is) {
      break;
    }
  }
  return bytes;
}

VokULong GetWord(std::string_view bytes) {
  VokULong v = 0;
  for (unsigned i = 4; i-- > 0;) {
    v = (v << 8) | static_cast<unsigned char>(bytes[i]);
  }
  return v;
}

constexpr std::size_t kHeaderSize = vokNetworkMagic.size() + 12;

// Checks everything around the payload.
std::string ReadPayload(std::istream& is) {
  const std::string header = ReadBytes(is, kHeaderSize);
  if (!VokTarnNetworkFile::IsNetworkFile(header)) {
    throw Refusal("this is no saved network: expected its mark in the first " + std::to_string(vokNetworkMagic.size()) +
                  " bytes");
  }
  if (header.size() < kHeaderSize) {
    throw Refusal("the file ends at byte " + std::to_string(header.size()) + ", within the header of " +
                  std::to_string(kHeaderSize) + " bytes");
  }
  const std::string_view words = std::string_view(header).substr(vokNetworkMagic.size());
  const VokULong version = GetWord(words);
  const VokULong length = GetWord(words.substr(4));
  if (version != vokNetworkVersion) {
    throw Refusal("the file has version " + std::to_string(version) + "; expected " +
                  std::to_string(vokNetworkVersion));
  }
  std::string payload = ReadBytes(is, length);
  if (payload.size() < length) {
    throw Refusal("the file ends at byte " + std::to_string(kHeaderSize + payload.size()) + "; expected " +
                  std::to_string(kHeaderSize + length) + " bytes");
  }
  if (is.peek() != std::istream::traits_type::eof()) {
    throw Refusal("the file goes on behind byte " + std::to_string(kHeaderSize + length) + ", where it should end");
  }
  if (VokCalcChecksum(payload) != GetWord(words.substr(8))) {
    throw Refusal("the checksum is wrong: the file is damaged");
  }
  return payload;
}

// Builds a network from a payload. Every step throws Refusal; what has been built is then destroyed with this object.
class Reader {
 public:
  Reader(std::string payload, VokTarnModuleManager& manager)
      : fBytes(std::move(payload)), fStream(fBytes), fManager(manager), fTable(manager) {
    Expect(!fStream.IsFailed(), "an object stream");
  }

  std::unique_ptr<VokTarnNetwork> Read(VokTarnNetworkFile::Contents& contents) {
    ReadModules(contents);
    ReadValues();
    ReadConstraints();
    ReadVariables(contents);
    ReadObjective(contents);
    const VokULong failed = ReadNumber("whether the network failed");
    Expect(failed <= 1, "whether the network failed");
    if (failed != 0) {
      fNetwork->Fail();
    }
    ReadModel(contents);
    Expect(fBytes.peek() == std::istringstream::traits_type::eof(), "the end of the network");
    if (fNetwork->IsMemoryShort()) {
      throw std::bad_alloc();
    }
    return std::move(fNetwork);
  }

 private:
  using Rows = std::vector<const VokTarnOperatorDescriptor*>;

  // The place is that of the byte behind what was read last.
  void Expect(bool isRight, const std::string& what) {
    if (!isRight) {
      fBytes.clear();
      throw Refusal("expected " + what + " before byte " +
                    std::to_string(kHeaderSize + static_cast<std::size_t>(fBytes.tellg())));
    }
  }

  VokULong ReadNumber(const std::string& what) {
    VokULong v = 0;
    fStream >> v;
    Expect(!fStream.IsFailed(), what);
    return v;
  }

  std::string ReadText(const std::string& what) {
    std::string text;
    fStream.ReadText(text);
    Expect(!fStream.IsFailed(), what);
    return text;
  }

  VokTarnValueId ReadValueNumber(const std::string& what) {
    const VokULong id = ReadNumber(what);
    Expect(id < fNetwork->GetValueCount(), what);
    return id;
  }

  void ReadModules(VokTarnNetworkFile::Contents& contents) {
    for (VokULong left = ReadNumber("the number of modules"); left > 0; --left) {
      contents.fModules.push_back(ReadText("the name of a module"));
      if (fManager.OpenModule(VokString(std::string_view(contents.fModules.back()))) == nullptr) {
        throw Refusal("cannot open the module " + Quote(contents.fModules.back()) + ": " + fManager.GetError());
      }
    }
    fTable.Refresh();
    for (const VokTarnModule* module : fManager.GetModules()) {
      for (const auto& descriptor : module->GetDescriptors()) {
        if (descriptor != nullptr && descriptor->IsDerivedFrom(VokTarnOperatorDescriptor::sIdent) != 0) {
          const auto* row = static_cast<const VokTarnOperatorDescriptor*>(descriptor.get());
          fConstraints[row->GetConstraint()].push_back(row);
        } else if (descriptor != nullptr && descriptor->IsDerivedFrom(VokTarnConstraintDescriptor::sIdent) != 0) {
          fConstraints.try_emplace(descriptor.get());
        }
      }
    }
  }

  void ReadValues() {
    const VokULong count = ReadNumber("the number of values");
    for (VokTarnValueId id = 0; id < count; ++id) {
      const std::string label = "the value #" + std::to_string(id);
      const std::string typeName = ReadText("the type of " + label);
      const VokTarnType type = fTable.FindType(typeName);
      Expect(type != nullptr && type->GetObjectSize() != 0,
             "a type whose values can be built for " + label + ", not " + Quote(typeName));
      fNetwork->AddValue(type, ReadText("the name of " + label));
      VokTarnAny& value = fNetwork->Touch(id);
      VokStreamable* target = &value;
      fStream.ReadObject(target);
      Expect(!fStream.IsFailed() && VokHasState(value), "a record of type " + Quote(typeName) + " for " + label);
      fNetwork->NoteChange(id);
    }
  }

  void ReadConstraints() {
    const VokULong count = ReadNumber("the number of constraints");
    for (VokULong i = 0; i < count; ++i) {
      const std::string label = "the constraint #" + std::to_string(i);
      const std::size_t objects = fStream.GetObjectCount();
      VokStreamable* const read = fStream.ReadObjectPointer();
      // A reference gives an object that has an owner already.
      std::unique_ptr<VokStreamable> object(fStream.GetObjectCount() != objects ? read : nullptr);
      Expect(object != nullptr && object->IsDerivedFrom(VokTarnConstraint::sIdent) != 0,
             label + ", of a class that the modules define,");
      std::unique_ptr<VokTarnConstraint> constraint(static_cast<VokTarnConstraint*>(object.release()));
      const std::string name = constraint->CastableID();
      try {
        fNetwork->AddConstraint(std::move(constraint));
      } catch (const std::invalid_argument& problem) {
        Expect(false, label + ", " + name + ", to be right (" + problem.what() + ")");
      }
      Expect(IsPublished(fNetwork->GetConstraint(i)),
             label + ", " + name + ", to stand over types of one of its operators");
    }
  }

  // Whether an operator gives such a constraint. Operations of a module are never given operands of types that its
  // operators do not name: they need not be ready for them.
  bool IsPublished(const VokTarnConstraint& constraint) const {
    const auto found = fConstraints.find(constraint.GetDescriptor());
    if (found == fConstraints.end()) {
      return false;
    }
    const auto* descriptor = static_cast<const VokTarnConstraintDescriptor*>(found->first);
    return descriptor->TakesAnyOperands() || std::any_of(found->second.begin(), found->second.end(),
                                                         [&](const auto* row) { return Fits(*row, constraint); });
  }

  bool Fits(const VokTarnOperatorDescriptor& row, const VokTarnConstraint& constraint) const {
    constexpr std::array<VokTarnValueId, 2> operands = {0, 1};
    constexpr VokTarnValueId result = 2;
    const std::span<const VokTarnValueId> arguments = constraint.GetArguments();
    const std::vector<VokTarnValueId> places =
        row.ArrangeArguments(std::span(operands).first(row.GetOperandCount()), result);
    if (places.size() != arguments.size()) {
      return false;
    }
    for (std::size_t i = 0; i < places.size(); ++i) {
      VokTarnType wanted = places[i] == result ? row.GetResultType() : row.GetOperandType(places[i]);
      if (i + 1 == places.size() && row.GetWorkingType() != nullptr) {
        wanted = row.GetWorkingType();
      }
      const VokTarnType type = arguments[i] == vokNoValue ? nullptr : fNetwork->GetType(arguments[i]);
      // Where an abstract type stands, the choice of the operator brings the operand to the type of the result.
      if (type != wanted && (wanted == nullptr || wanted->IsMatched(type) == 0 || type != row.GetResultType())) {
        return false;
      }
    }
    return true;
  }

  void ReadVariables(VokTarnNetworkFile::Contents& contents) {
    std::vector<bool> isDeclared(fNetwork->GetValueCount(), false);
    for (VokULong left = ReadNumber("the number of variables"); left > 0; --left) {
      const VokTarnValueId id = ReadValueNumber("the number of a variable's value");
      Expect(!isDeclared[id], "another variable than the value #" + std::to_string(id) + " once more");
      isDeclared[id] = true;
      contents.fVariables.push_back(id);
    }
  }

  void ReadObjective(VokTarnNetworkFile::Contents& contents) {
    const VokULong sense = ReadNumber("the sense of the objective");
    Expect(sense <= vokMaximize, "the sense of the objective");
    if (sense == vokNoObjective) {
      return;
    }
    const VokTarnValueId value = ReadValueNumber("the number of the objective's value");
    const VokTarnValueId bound = ReadValueNumber("the number of the objective's bound");
    for (const VokTarnValueId id : {value, bound}) {
      Expect(fNetwork->GetValue(id).IsDerivedFrom(VokTarnInteger::sIdent) != 0,
             "an integer, not the value #" + std::to_string(id) + ", in the objective");
    }
    Expect(value != bound, "another value as the objective's bound");
    contents.fObjective = VokTarnSearch::Objective{
        value, bound, sense == vokMinimize ? VokTarnSearch::Sense::Minimize : VokTarnSearch::Sense::Maximize};
  }

  void ReadModel(VokTarnNetworkFile::Contents& contents) {
    contents.fModelName = ReadText("the name of the model");
    while (true) {
      const std::string piece = ReadText("a piece of the model's text");
      if (piece.empty()) {
        return;
      }
      contents.fModelText += piece;
    }
  }

  std::istringstream fBytes;
  Vokipstream fStream;
  VokTarnModuleManager& fManager;
  VokTarnOperatorTable fTable;
  // The published constraint classes, each with the operators that stand for it.
  std::unordered_map<const VokTarnObjectDescriptor*, Rows> fConstraints;
  std::unique_ptr<VokTarnNetwork> fNetwork = std::make_unique<VokTarnNetwork>();
};

}  // namespace

bool VokHasState(const VokTarnAny& value) {
  const bool isNil = value.IsNil() != 0;
  const bool isUndefined = value.IsUndefined() != 0;
  if ((value.GetCardinality() == 0) != isNil || (isNil && isUndefined)) {
    return false;
  }
  if (isNil || isUndefined || value.IsDerivedFrom(VokTarnInteger::sIdent) == 0) {
    return true;
  }
  const auto& integer = static_cast<const VokTarnInteger&>(value);
  return integer.GetLowerBound() >= -VokTarnInteger::sGreatest && integer.GetUpperBound() <= VokTarnInteger::sGreatest;
}

std::unique_ptr<VokTarnNetwork> VokTarnNetworkFile::Read(std::istream& is, VokTarnModuleManager& manager,
                                                         Contents& contents, std::string& error) {
  const VokTarnMemoryWatch memory;
  try {
    Contents read;
    std::unique_ptr<VokTarnNetwork> network = Reader(ReadPayload(is), manager).Read(read);
    contents = std::move(read);
    error.clear();
    return network;
  } catch (const Refusal& refusal) {
    if (memory.HasSeenFailure()) {  // it may be what was refused
      throw std::bad_alloc();
    }
    error = refusal.what();
  }
  return nullptr;
}
