#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace merchantry::registersim {

// Random numbers that are the same on every machine for the same seed.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t next() { // SplitMix64
        std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }
    // 0 to count - 1. Requires: count > 0.
    int below(int count) { return static_cast<int>(next() % static_cast<std::uint64_t>(count)); }
    int between(int least, int most) { return least + below(most - least + 1); }
    bool chance(int percent) { return below(100) < percent; }

private:
    std::uint64_t state_;
};

// Picks positions as often as their weights say.
class Wheel {
public:
    // A position of weight 0 is never picked.
    explicit Wheel(const std::vector<int>& weights) {
        std::int64_t sum = 0;
        for (const int weight : weights)
            sums_.push_back(sum += weight);
    }
    // Nothing can be picked.
    bool empty() const { return sums_.empty() || sums_.back() == 0; }
    // Requires: not empty.
    int pick(Random& random) const {
        const auto point = static_cast<std::int64_t>(random.next() % static_cast<std::uint64_t>(sums_.back()));
        return static_cast<int>(std::upper_bound(sums_.begin(), sums_.end(), point) - sums_.begin());
    }

private:
    std::vector<std::int64_t> sums_;
};

} // namespace merchantry::registersim
