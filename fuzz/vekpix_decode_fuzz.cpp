// JPEG files of any bytes: decoded and described in several ways, they end in a picture or in an Error. One thread and
// several give the same outcome.
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "decode_outcome.h"
#include "error.h"
#include "jpeg/decoder.h"
#include "jpeg/describe.h"

namespace {

using fuzz::Outcome;

constexpr size_t longestFile = 1 << 14;  // bounds the pixels of a run: each 8 x 8 of them take two bits and more

Outcome decode(std::span<const uint8_t> file, const vekpix::jpeg::DecodeOptions& options)
{
    return fuzz::decodeBands<vekpix::jpeg::Decoder>(file, options);
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
    if (!whole.isSameAs(shared))
        std::abort();
    std::ostringstream text;
    try {
        vekpix::jpeg::describe(file, text);
    } catch (const vekpix::Error&) {
    }
    return 0;
}
