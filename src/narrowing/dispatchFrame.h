// The frame of every generic narrowing entry of VokFenEnumInteger: find out what the operands are, settle
// those that are Nil, bring the given ones to enumerated form and hand over to the typed routine.
//
// An operand that is neither enumerated nor a single, an interval for one, cannot be listed. As a given
// operand it counts as Nil, so x < [0, 9] makes x Nil; as the narrowed operand of an inverse it stays as it
// is. That is the rule for every relation and function but equality and sign, which have their own.
//
// Internal to the module.
#pragma once

#include "domain/VokFenEnumInteger.h"

namespace VokFenNarrowing {

using GivenOne = int (VokFenEnumInteger::*)(const VokFenEnumInteger&);
using GivenTwo = int (VokFenEnumInteger::*)(const VokFenEnumInteger&, const VokFenEnumInteger&);
using InverseOnSet = int (VokFenEnumInteger::*)(VokFenEnumInteger&) const;
using InverseOnSingle = int (VokFenEnumInteger::*)(VokFenSingleInteger&) const;
using FirstInverseOnSet = int (VokFenEnumInteger::*)(VokFenEnumInteger&, const VokFenEnumInteger&) const;
using FirstInverseOnSingle = int (VokFenEnumInteger::*)(VokFenSingleInteger&, const VokFenEnumInteger&) const;
using SecondInverseOnSet = int (VokFenEnumInteger::*)(const VokFenEnumInteger&, VokFenEnumInteger&) const;

// Make the operand Nil and return the status of that: 0 when it has been Nil before.
int MakeNil(VokFenEnumInteger& set);
int MakeNil(VokFenSingleInteger& single);

// Forward relation: narrows x, given y.
int NarrowLeft(VokFenEnumInteger& x, const VokTarnAny& y, GivenOne typed);

// Inverse relation: narrows y, given x.
int NarrowRight(const VokFenEnumInteger& x, VokTarnAny& y, InverseOnSet onSet, InverseOnSingle onSingle);

// Function of two operands: narrows the result z, given a and b.
int NarrowResult(VokFenEnumInteger& z, const VokTarnAny& a, const VokTarnAny& b, GivenTwo typed);

// Narrows the first operand a, given z and b.
int NarrowFirst(const VokFenEnumInteger& z, VokTarnAny& a, const VokTarnAny& b, FirstInverseOnSet onSet,
                FirstInverseOnSingle onSingle);

// Narrows the second operand b, given z and a. Unlike the first one, it leaves an Undefined z to the typed
// routine.
int NarrowSecond(const VokFenEnumInteger& z, const VokTarnAny& a, VokTarnAny& b, SecondInverseOnSet onSet);

}  // namespace VokFenNarrowing
