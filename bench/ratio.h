#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace merchantry::bench {

// Requires: at least one time.
inline double median(std::vector<double> times) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

// The time of one run of the work in milliseconds.
template <class Work> double msOf(Work&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// One line of figures: ours in milliseconds, the bare work's, and how many times that ours takes.
inline void print(const char* what, double oursMs, double bareMs) {
    std::printf("%-58s %10.3f ms %10.3f ms   ratio %.2f\n", what, oursMs, bareMs, oursMs / bareMs);
}

// Ours beside the same work written directly on what lies underneath: medians of so many runs, alternating, so that what else the machine
// does falls on both.
template <class Ours, class Bare> void ratio(const char* what, int runs, Ours&& ours, Bare&& bare) {
    std::vector<double> mine;
    std::vector<double> theirs;
    for (int i = 0; i < runs; ++i) {
        theirs.push_back(msOf(bare));
        mine.push_back(msOf(ours));
    }
    print(what, median(mine), median(theirs));
}

} // namespace merchantry::bench
