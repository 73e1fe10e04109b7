// The form of a saved network, shared by its writer and its reader.
//
//   file        = magic, version, length of the payload, checksum of the payload, payload
//   payload     = an object stream (see streamFormat.h) of these parts, in this order:
//   modules     = count, then names (texts), dependencies first
//   values      = count, then for each: type name (text), declared name (text, empty for an intermediate value),
//                 the value (object)
//   constraints = count, then constraints (objects)
//   variables   = count, then value numbers, in order of declaration
//   objective   = 0 | 1 to minimize or 2 to maximize, number of the value, number of its bound
//   failed      = 0 | 1 when a contradiction had been found
//   model       = name (text), its text in pieces (texts), an empty text
// Every number is four bytes, least significant first. Nothing follows the payload.
#pragma once

#include <string_view>

#include "framework/VokLong.h"

class VokTarnAny;

// Begins with a byte that no text begins with; the line ends in it do not survive a transfer as text.
inline constexpr std::string_view vokNetworkMagic = "\x8FVTN\r\n\x1A\n";
inline constexpr VokULong vokNetworkVersion = 1;
inline constexpr VokULong vokNoObjective = 0;
inline constexpr VokULong vokMinimize = 1;
inline constexpr VokULong vokMaximize = 2;

// Whether operations give values such a state. A record can hold others: a set that is neither empty nor has members, a
// number outside the range of integers.
bool VokHasState(const VokTarnAny& value);
