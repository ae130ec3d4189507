#pragma once

#include <vector>

class MIntArray;

/// The values of an index array where the standard algorithms can work on them.
std::vector<int> toVector(const MIntArray& values);
MIntArray toArray(const std::vector<int>& values);

/// Sorts and drops repeats. Linear for values that are in order already, and where their range is
/// not much more than their number.
void makeSortedUnique(std::vector<int>& values);
