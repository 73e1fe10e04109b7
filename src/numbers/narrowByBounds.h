// The frame of every narrowing by bounds: tells what the operands are, settles the empty ones, and brings the narrowed
// operand within the bounds that a projection computes.
#pragma once

#include "framework/VokTarnInteger.h"
#include "numbers/VokFenBounds.h"

// The bounds of the operand x, given its own and those of the other operands.
using VokFenProjection = VokFenBounds (*)(VokFenBounds x, VokFenBounds a);
using VokFenBinaryProjection = VokFenBounds (*)(VokFenBounds x, VokFenBounds a, VokFenBounds b);

// Narrow x and return 1 when it changed. x becomes Nil when it or another operand is not an integer, when another
// operand is Nil, and when the projection is empty. The operands may be one object.
int NarrowByBounds(VokTarnAny& x, const VokTarnAny& a, VokFenProjection project);
int NarrowByBounds(VokTarnAny& x, const VokTarnAny& a, const VokTarnAny& b, VokFenBinaryProjection project);

// `v` as an integer; null when it is none.
const VokTarnInteger* CastToInteger(const VokTarnAny& v);

// Makes v Nil; 1 unless it was.
int MakeNil(VokTarnAny& v);

// The bounds of the values that x and y have in common, x without holes. Holes of y show at the bounds.
VokFenBounds CommonBounds(VokFenBounds x, const VokTarnInteger& y);
