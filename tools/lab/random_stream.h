// Random numbers by their place: what stands at an index of a stream is the same however often, in
// whatever order and by whom it is asked for. Two runs of one game thus get the same work, frame by
// frame, whatever either does to its frames.
#pragma once

#include <cmath>
#include <cstdint>
#include <string_view>

// What a stream is for; those of one seed and game have nothing to do with each other.
enum class stream_purpose : uint64_t { noise, heavy, scene, drift, display, touch, draw };

struct random_stream {
    uint64_t key;
};

constexpr uint64_t golden_ratio_64 = 0x9E3779B97F4A7C15;

// The finisher of the generator SplitMix64.
constexpr uint64_t random_mixed(uint64_t x) {
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EB;
    return x ^ (x >> 31);
}

// The stream of a seed and a game for one purpose.
constexpr random_stream stream_of(uint64_t seed, std::string_view name, stream_purpose purpose) {
    uint64_t key = random_mixed(seed + golden_ratio_64);
    for (const char c : name)
        key = random_mixed(key ^ static_cast<unsigned char>(c));
    return {random_mixed(key + golden_ratio_64 * static_cast<uint64_t>(purpose))};
}

// `part` tells numbers at one index apart.
constexpr uint64_t random_at(random_stream stream, uint64_t index, uint64_t part = 0) {
    return random_mixed(stream.key + golden_ratio_64 * (4 * index + part + 1));
}

// From 0 to less than 1.
constexpr double uniform_at(random_stream stream, uint64_t index) {
    return static_cast<double>(random_at(stream, index) >> 11) / 9007199254740992.0;
}

// Of mean 0 and standard deviation 1: the sum of twelve uniform parts, less six; close enough, and
// quick.
constexpr double normal_at(random_stream stream, uint64_t index) {
    double sum = -6;
    for (uint64_t part = 0; part < 3; ++part) {
        const uint64_t bits = random_at(stream, index, part);
        for (int each = 0; each < 4; ++each)
            sum += static_cast<double>(bits >> (16 * each) & 0xFFFF) / 65536;
    }
    return sum;
}
