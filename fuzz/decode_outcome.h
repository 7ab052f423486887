// What came of decoding a file: an Error, or pixels, told apart by a hash.
#ifndef VEK_FUZZ_DECODE_OUTCOME_H
#define VEK_FUZZ_DECODE_OUTCOME_H

#include <cstdint>
#include <span>
#include <vector>

#include "error.h"

namespace fuzz {

struct Outcome {
    bool failed = false;
    uint64_t hash = 14695981039346656037u;

    void add(const uint8_t* bytes, size_t count)
    {
        for (size_t i = 0; i < count; ++i) hash = (hash ^ bytes[i]) * 1099511628211u;
    }
    bool isSameAs(const Outcome& other) const { return failed == other.failed && (failed || hash == other.hash); }
};

template <class Decoder, class Options>
Outcome decodeBands(std::span<const uint8_t> file, const Options& options)
{
    Outcome outcome;
    try {
        Decoder decoder(file, options);
        const size_t step = decoder.shape().rowBytes();
        std::vector<uint8_t> band(step * static_cast<size_t>(decoder.bandRows()));
        while (const int rows = decoder.readBand(band.data(), step))
            outcome.add(band.data(), static_cast<size_t>(rows) * step);
    } catch (const vekpix::Error&) {
        outcome.failed = true;
    }
    return outcome;
}

}  // namespace fuzz

#endif
