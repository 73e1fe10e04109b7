#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "framework/VokStreamable.h"

// A persistent object stream to read from; see Vokopstream for the form. The bytes are not trusted.
//
// Errors     Throws nothing. After the first failure (short input, wrong header, unknown class, bad reference, nesting
//            deeper than sMaxDepth) the stream is failed, and every field read from then on is 0, every object null.
// Ownership  An object made by ReadObjectPointer belongs to the caller; the stream keeps only its address
//            for later references. When the stream fails while it reads an object, that object is destroyed.
class VOKTARN_EXPORT Vokipstream {
 public:
  static constexpr int sMaxDepth = 1000;

  // Reads and checks the header. `is` must outlive this object and be opened in binary mode.
  explicit Vokipstream(std::istream& is);
  Vokipstream(const Vokipstream&) = delete;
  Vokipstream& operator=(const Vokipstream&) = delete;
  ~Vokipstream();

  Vokipstream& operator>>(int& v);
  Vokipstream& operator>>(unsigned int& v);
  Vokipstream& operator>>(long& v);
  Vokipstream& ReadText(std::string& text);

  // Reads an object into the existing one that `object` points at; refuses a record of another class. With
  // a null `object` a new object is made, as by ReadObjectPointer.
  Vokipstream& ReadObject(VokStreamable*& object);
  // Reads an object or a reference to one read before; null for the null pointer and after a failure. With a
  // class name, an object of another class fails the stream.
  VokStreamable* ReadObjectPointer(const char* className = nullptr);

  // How many objects have been read so far, references not counted: it grows when ReadObjectPointer makes a new object.
  std::size_t GetObjectCount() const noexcept { return fRead.size(); }

  bool IsFailed() const noexcept { return fFailed; }
  void SetFailed() noexcept { fFailed = true; }

 private:
  // False when there are not as many.
  bool ReadBytes(char* bytes, std::size_t count);
  VokULong ReadWord();
  VokStreamable* ReadRecord(VokStreamable* existing, const char* className);

  std::istream& fStream;
  std::vector<VokStreamable*> fRead;
  int fDepth = 0;
  bool fFailed = false;
};
