// JPEG files of any bytes: decoded and described in several ways, they end in a picture or in an Error. One thread and
// several give the same outcome.
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "error.h"
#include "jpeg/decoder.h"
#include "jpeg/describe.h"

namespace {

constexpr size_t longestFile = 1 << 14;  // bounds the pixels of a run: each 8 x 8 of them take two bits and more

struct Outcome {
    bool failed = false;
    uint64_t hash = 14695981039346656037u;

    void add(const uint8_t* bytes, size_t count)
    {
        for (size_t i = 0; i < count; ++i) hash = (hash ^ bytes[i]) * 1099511628211u;
    }
};

Outcome decode(std::span<const uint8_t> file, const vekpix::jpeg::DecodeOptions& options)
{
    Outcome outcome;
    try {
        vekpix::jpeg::Decoder decoder(file, options);
        const size_t step = decoder.shape().rowBytes();
        std::vector<uint8_t> band(step * static_cast<size_t>(decoder.bandRows()));
        while (const int rows = decoder.readBand(band.data(), step))
            outcome.add(band.data(), static_cast<size_t>(rows) * step);
    } catch (const vekpix::Error&) {
        outcome.failed = true;
    }
    return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0 || size > longestFile)
        return 0;
    const std::vector<uint8_t> file(data, data + size);  // its end is the end of its memory
    const int choice = data[size - 1];
    const auto upsampling = choice >= 128 ? vekpix::jpeg::Upsampling::Box : vekpix::jpeg::Upsampling::Smooth;
    const bool inks = choice % 2 == 1;
    const Outcome whole = decode(file, {1, 1, upsampling, inks});
    const Outcome reduced = decode(file, {2 << choice % 3, 1, upsampling, inks});
    if (whole.failed != reduced.failed)
        std::abort();
    const Outcome shared = decode(file, {1, 2, upsampling, inks});
    if (whole.failed != shared.failed || (!whole.failed && whole.hash != shared.hash))
        std::abort();
    std::ostringstream text;
    try {
        vekpix::jpeg::describe(file, text);
    } catch (const vekpix::Error&) {
    }
    return 0;
}
