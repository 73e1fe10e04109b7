#pragma once

#include <iosfwd>
#include <string_view>
#include <unordered_map>

#include "framework/VokStreamable.h"

// A persistent object stream to write to.
//
// Fields    int, unsigned int and long take four bytes each, least significant first. A long that does not fit 32
//           bits fails the stream.
// Objects   One object is written once, with the name of its class; after that a reference stands for it.
// Errors    Throws nothing. After the first failure the stream is failed and writes nothing more.
class VOKTARN_EXPORT Vokopstream {
 public:
  // Writes the stream's header. `os` must outlive this object and be opened in binary mode.
  explicit Vokopstream(std::ostream& os);
  Vokopstream(const Vokopstream&) = delete;
  Vokopstream& operator=(const Vokopstream&) = delete;
  ~Vokopstream();

  Vokopstream& operator<<(int v);
  Vokopstream& operator<<(unsigned int v);
  Vokopstream& operator<<(long v);
  // A text: its length as an unsigned field, then its bytes.
  Vokopstream& WriteText(std::string_view text);

  // Writes the object, or a reference to it when it has been written before.
  Vokopstream& WriteObject(const VokStreamable* object);
  // The same; the pointer may be null.
  Vokopstream& WriteObjectPointer(const VokStreamable* object);

  bool IsFailed() const noexcept { return fFailed; }
  void SetFailed() noexcept { fFailed = true; }

 private:
  void WriteWord(VokULong v);

  std::ostream& fStream;
  std::unordered_map<const VokStreamable*, unsigned> fWritten;
  bool fFailed = false;
};
