#include "Samples.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>

namespace tavik {

double Samples::mean() const {
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

double Samples::quantile(double share) const {
    std::vector<double> sorted = values;
    std::sort(sorted.begin(), sorted.end());
    const double rank = std::ceil(share * static_cast<double>(sorted.size()));
    return sorted[static_cast<std::size_t>(std::max(rank, 1.0)) - 1];
}

void printHeading(std::string_view title, std::string_view columns) {
    std::printf("\n%-40.*s%.*s\n", static_cast<int>(title.size()), title.data(),
                static_cast<int>(columns.size()), columns.data());
}

void printBudget(std::string_view statistic, double value, double budget) {
    std::printf("  %s (%.*s of %g)", value <= budget ? "within" : "OVER",
                static_cast<int>(statistic.size()), statistic.data(), budget);
}

void printLeast(std::string_view statistic, double value, double least) {
    std::printf("  %s (%.*s of at least %g)", value >= least ? "within" : "UNDER",
                static_cast<int>(statistic.size()), statistic.data(), least);
}

} // namespace tavik
