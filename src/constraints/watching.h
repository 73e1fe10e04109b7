// What constraints that watch two of their arguments share.
#pragma once

#include <vector>

#include "framework/VokTarnObjectEnvironment.h"

// Two arguments, those that are open first; none where there are fewer than two.
std::vector<unsigned> ChooseWatched(const VokTarnObjectEnvironment& environment, unsigned (&watched)[2]);
// An open argument to watch in place of `argument`, which becomes its place in `watched`; VokTarnConstraint::sWake when
// all others are single. O(n), from argument `from` on around.
unsigned ReplaceWatched(const VokTarnObjectEnvironment& environment, unsigned (&watched)[2], unsigned argument,
                        unsigned from);
// Every argument keeps 0 and 1 alone.
int KeepTruths(const VokTarnObjectEnvironment& environment);
