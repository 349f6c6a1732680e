#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace merchantry::bench {

// The median time of one run of the work in milliseconds, over so many runs.
template <class Work> double medianMs(int runs, Work&& work) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    std::nth_element(times.begin(), times.begin() + runs / 2, times.end());
    return times[static_cast<std::size_t>(runs) / 2];
}

// Ours beside the same work written directly on what lies underneath, one after the other in one run.
template <class Ours, class Bare> double ratio(const char* what, int runs, Ours&& ours, Bare&& bare) {
    // Alternating, so that what else the machine does falls on both.
    std::vector<double> mine;
    std::vector<double> theirs;
    for (int i = 0; i < runs; ++i) {
        theirs.push_back(medianMs(1, bare));
        mine.push_back(medianMs(1, ours));
    }
    const auto middle = [](std::vector<double>& times) {
        std::nth_element(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2), times.end());
        return times[times.size() / 2];
    };
    const double a = middle(mine);
    const double b = middle(theirs);
    std::printf("%-58s %10.3f ms %10.3f ms   ratio %.2f\n", what, a, b, a / b);
    return a / b;
}

} // namespace merchantry::bench
