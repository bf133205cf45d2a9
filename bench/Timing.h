#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

/// Times things against each other in one run: their rounds alternate, so that what slows the machine down slows both,
/// and the median round of each counts.
namespace Timing
{

using Clock = std::chrono::steady_clock;

/// Nanoseconds that a call takes.
template <typename Call>
double Nanoseconds(Call &&call)
{
    const auto start = Clock::now();
    call();
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

inline double Median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + static_cast<long>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

struct PairStruct
{
    double Ours;  ///< nanoseconds a unit of work
    double Limit; ///< likewise
};

/// `ours` and `limit` run one round each and answer its nanoseconds a unit of work.
template <typename Ours, typename Limit>
PairStruct Compare(int rounds, Ours &&ours, Limit &&limit)
{
    std::vector<double> left;
    std::vector<double> right;
    for (int round = 0; round < rounds; ++round) {
        left.push_back(ours());
        right.push_back(limit());
    }
    return {Median(std::move(left)), Median(std::move(right))};
}

} // namespace Timing
