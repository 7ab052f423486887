// JPEG 2000 files of any bytes: whole, reduced and with fewer layers they end in a picture or in an Error, soon. One
// thread and several give the same outcome.
#include <sstream>
#include <string>
#include <vector>

#include "decode_outcome.h"
#include "error.h"
#include "input.h"
#include "jpeg2000/codestream_reader.h"
#include "jpeg2000/decoder.h"
#include "jpeg2000/describe.h"
#include "jpeg2000/jp2_boxes.h"

namespace {

using fuzz::Outcome;

constexpr size_t longestFile = 1 << 13;
// A file of a few bytes may well hold a large picture, of one value.
constexpr int64_t mostSamples = int64_t{1} << 17;

bool isSmall(std::span<const uint8_t> file)
{
    try {
        const vekpix::jpeg2000::Codestream codestream(vekpix::jpeg2000::readJp2(file).codestream);
        const vekpix::jpeg2000::PictureSize& size = codestream.size();
        const int64_t width = size.x1 - size.x0, height = size.y1 - size.y0;
        return width * height <= mostSamples / static_cast<int64_t>(size.components.size());
    } catch (const vekpix::Error&) {
        return true;
    }
}

Outcome decode(std::span<const uint8_t> file, const vekpix::jpeg2000::DecodeOptions& options)
{
    return fuzz::decodeBands<vekpix::jpeg2000::Decoder>(file, options);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0 || size > longestFile)
        return 0;
    const std::vector<uint8_t> file(data, data + size);  // its end is the end of its memory
    if (!isSmall(file))
        return 0;
    const int choice = data[size - 1];
    const Outcome whole = decode(file, {});
    const Outcome shared = decode(file, {.threads = 2});
    fuzz::require(whole.isSameAs(shared));
    std::ostringstream text;
    try {
        vekpix::jpeg2000::describe(file, text);
    } catch (const vekpix::Error&) {
    }
    decode(file, {.droppedResolutions = 1 + choice % 4, .layers = 1 + choice % 3});
    return 0;
}
