#pragma once

#include <cstddef>
#include <iosfwd>
#include <span>

#include "framework/VokLong.h"
#include "framework/VokStreamable.h"
#include "framework/VokString.h"

class VokTarnAny;
class VokTarnObject;

// The published description of a type, an operator or a constraint: its name, its parent in the type tree and, for
// a concrete type, how its values are built.
//
// The order of the virtual operations is part of the binary interface.
class VOKTARN_EXPORT VokTarnObjectDescriptor : public VokStreamable {
 public:
  static const char* const sIdent;

  // `parent` is the more general type, or null; it must outlive this descriptor. `arguments` is the number of arguments
  // of an object of this type (0 for a value).
  VokTarnObjectDescriptor(const VokString& name, const VokTarnObjectDescriptor* parent, int arguments);
  explicit VokTarnObjectDescriptor(VokStreamableInit init);
  VokTarnObjectDescriptor(const VokTarnObjectDescriptor&) = delete;
  VokTarnObjectDescriptor& operator=(const VokTarnObjectDescriptor&) = delete;

  ~VokTarnObjectDescriptor() override;
  const char* CastableID() const override;
  // A descriptor is written as its name; reading one restores the name alone.
  void Write(Vokopstream& os) const override;
  void Read(Vokipstream& is) override;
  int IsDerivedFrom(const char* ident) const override;

  // Builds an undefined value in `place`, which has GetObjectSize() bytes, aligned for any object. Returns
  // `place`, or null when `place` is null or the type is abstract.
  virtual void* InitObject(void* place) const;
  // The same from a list of values: `source` points at a 32-bit count n followed by n 32-bit values.
  virtual void* InitObject(void* place, const void* source) const;
  // Runs the destructor; the storage stays with its owner. Null is ignored.
  virtual void DestroyObject(VokTarnObject* object) const;
  // Bytes of one object; 0 for an abstract type.
  virtual std::size_t GetObjectSize() const;
  virtual unsigned GetNumberOfArguments() const;
  // Bytes of the table of argument addresses.
  virtual std::size_t GetArgumentsSize() const;
  // 1 when a value of type `type` may stand where this type is asked for: the same type, or one below it.
  virtual int IsMatched(const VokTarnObjectDescriptor* type) const;
  virtual std::ostream& PrintOn(std::ostream& os) const;

  // How a network may hold and change the possible values of a value of this type without its own operations.
  enum class Shape : unsigned char {
    Other,  // in no way: each change is an operation of the value
    Range,  // each number between its bounds is possible, always; for a truth value 0 and 1
    Listed  // some numbers, up to a limit: it lists them, and is filled with a list
  };
  // The possible values, ascending, valid until the value changes. None for a value that is undefined or empty.
  using Lister = std::span<const VokLong> (*)(const VokTarnAny& value);
  // Makes a value hold some numbers, at least one, ascending, which may be part of its own list. When memory is short
  // it holds fewer.
  using Filler = void (*)(VokTarnAny& value, std::span<const VokLong> numbers);
  // A type is of the shape Other at first. `limit` is how many numbers a value holds at most.
  void SetRange() noexcept { fShape = Shape::Range; }
  void SetListed(Lister lister, Filler filler, std::size_t limit) noexcept {
    fShape = Shape::Listed;
    fLister = lister;
    fFiller = filler;
    fLimit = limit;
  }
  Shape GetShape() const noexcept { return fShape; }
  bool IsListed() const noexcept { return fShape == Shape::Listed; }
  // Of a listed type; else null, and 0.
  Lister GetLister() const noexcept { return fLister; }
  Filler GetFiller() const noexcept { return fFiller; }
  std::size_t GetLimit() const noexcept { return fLimit; }

  const VokString& GetName() const noexcept { return fName; }
  const VokTarnObjectDescriptor* GetParent() const noexcept { return fParent; }

 private:
  VokString fName;
  const VokTarnObjectDescriptor* fParent;
  int fArguments;
  Lister fLister = nullptr;
  Filler fFiller = nullptr;
  std::size_t fLimit = 0;
  Shape fShape = Shape::Other;
};
