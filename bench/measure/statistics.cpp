#include "bench/measure/statistics.h"

#include <algorithm>
#include <cmath>

namespace bench {

namespace {

double at(const std::vector<double>& _sorted, double _part) {
    if (_sorted.empty()) {
        return 0;
    }
    const double rank = std::ceil(_part * double(_sorted.size()));
    return _sorted[std::size_t(std::clamp(rank - 1, 0.0, double(_sorted.size() - 1)))];
}

}  // namespace

double quantile(std::vector<double> _values, double _part) {
    std::sort(_values.begin(), _values.end());
    return at(_values, _part);
}

double median(std::vector<double> _values) {
    return quantile(std::move(_values), 0.5);
}

std::vector<double> percentiles(std::vector<double> _values) {
    std::sort(_values.begin(), _values.end());
    std::vector<double> found;
    for (int percent = 0; percent <= 100; ++percent) {
        found.push_back(at(_values, percent / 100.0));
    }
    return found;
}

std::vector<double> ratios(const std::vector<double>& _ours, const std::vector<double>& _theirs) {
    std::vector<double> found;
    for (std::size_t i = 0; i < std::min(_ours.size(), _theirs.size()); ++i) {
        found.push_back(_theirs[i] > 0 ? _ours[i] / _theirs[i] : 0);
    }
    return found;
}

}  // namespace bench
