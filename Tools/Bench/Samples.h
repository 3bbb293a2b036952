#pragma once

#include <chrono>
#include <string_view>
#include <vector>

namespace tavik {

/// Measured values of one kind.
class Samples {
public:
    void add(double value) { values.push_back(value); }

    std::size_t size() const { return values.size(); }

    double operator[](std::size_t index) const { return values[index]; }

    double median() const { return quantile(0.5); }

    double p99() const { return quantile(0.99); }

    double max() const { return quantile(1); }

    double mean() const;

private:
    /// The least value that `share` of all values do not exceed; there must be a value.
    double quantile(double share) const;

    std::vector<double> values;
};

/// The time since it was made.
class Stopwatch {
public:
    double microseconds() const {
        return std::chrono::duration<double, std::micro>(Clock::now() - began).count();
    }

private:
    using Clock = std::chrono::steady_clock;

    Clock::time_point began = Clock::now();
};

void printHeading(std::string_view title, std::string_view columns);

/// "within" or "OVER", with the budget.
void printBudget(std::string_view statistic, double value, double budget);

/// "within" or "UNDER", with what the value should be at least.
void printLeast(std::string_view statistic, double value, double least);

} // namespace tavik
