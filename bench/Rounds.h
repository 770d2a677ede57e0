#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace tavlo {

inline double median(std::vector<double> values) {
    if (values.empty()) return 0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

struct Contender {
    std::string name;
    std::function<bool()> run;                            ///< false ends the measurement
    std::vector<double> seconds;                          ///< by round
    std::function<bool()> prepare = [] { return true; };  ///< before each run, not timed
};

/// Runs all contenders in turn, round by round; a first round warms the caches and is left out.
inline bool runRounds(std::vector<Contender>& contenders, int rounds) {
    using Clock = std::chrono::steady_clock;
    for (int round = 0; round <= rounds; ++round) {
        for (Contender& contender : contenders) {
            if (!contender.prepare()) return false;
            const auto start = Clock::now();
            if (!contender.run()) return false;
            const std::chrono::duration<double> time = Clock::now() - start;
            if (round > 0) contender.seconds.push_back(time.count());
        }
    }
    return true;
}

/// How many times longer `a` took than `b`: the median of the ratios within each round.
inline double ratio(const Contender& a, const Contender& b) {
    std::vector<double> ratios;
    for (std::size_t i = 0; i < a.seconds.size(); ++i) {
        ratios.push_back(a.seconds[i] / b.seconds[i]);
    }
    return median(std::move(ratios));
}

}  // namespace tavlo
