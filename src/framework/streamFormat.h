// The form of an object stream, shared by its writer and its reader.
//
//   stream  = magic, version, then fields, texts and objects as their owners write them
//   text    = length, bytes
//   object  = 0                                   the null pointer
//           | 1, class name (text), class version, record   a new object; objects count from 0 in this order
//           | 2, number                           the object of that number again
// Every number is four bytes, least significant first.
#pragma once

#include <array>

#include "framework/VokLong.h"

inline constexpr std::array<char, 4> vokStreamMagic = {'V', 'T', 'O', 'S'};
inline constexpr VokULong vokStreamVersion = 1;
inline constexpr VokULong vokNullObject = 0;
inline constexpr VokULong vokNewObject = 1;
inline constexpr VokULong vokObjectReference = 2;
inline constexpr VokULong vokMaxTextLength = 1U << 20;
