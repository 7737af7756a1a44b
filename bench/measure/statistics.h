#pragma once

#include <vector>

namespace bench {

/// Of none: 0. The value at this part of the sorted ones, 0 to 1, nearest rank.
double quantile(std::vector<double> _values, double _part);
double median(std::vector<double> _values);

/// One value a percent, from the least to the greatest: 101.
std::vector<double> percentiles(std::vector<double> _values);

/// Of each to the one at its place; pairs of the same round.
std::vector<double> ratios(const std::vector<double>& _ours, const std::vector<double>& _theirs);

}  // namespace bench
