// Code-block decoding, of whole blocks and segment by segment: any segments, style, size and pass count give what the
// model gives, on from damage as well, and nothing outside the segments is read.
#include <algorithm>
#include <vector>

#include "input.h"
#include "reference/jpeg2k/code_block_decoder.h"
#include "vekj.h"

namespace {

using fuzz::Bytes;
using fuzz::require;

constexpr int untouched = -1000;

struct Case {
    VekSize size;
    int subband, sfBits, passes, style;
    std::vector<int> lengths;
    std::vector<uint8_t> stream;
};

// The last of the segments takes the bytes that are left.
Case readCase(Bytes& bytes)
{
    Case c;
    c.size = {1 + bytes.next() % 40, 1 + bytes.next() % 40};
    c.subband = bytes.next() % 5;
    c.sfBits = bytes.next() % 33;
    c.passes = bytes.next() % 110;
    c.style = bytes.next() & 0x1F;
    c.style |= (bytes.next() & 0x1F) << 16;
    c.lengths.resize(bytes.next() % 64U);
    for (int& length : c.lengths) length = bytes.next();
    c.stream = bytes.rest();
    c.stream.shrink_to_fit();  // its end is the end of its memory
    int left = static_cast<int>(c.stream.size());
    for (int& length : c.lengths) {
        length = std::min(length, left);
        left -= length;
    }
    if (!c.lengths.empty())
        c.lengths.back() += left;
    return c;
}

// Memory of the decoder's, all zeros, so that styles may call it clear.
struct Decoder {
    explicit Decoder(const Case& c) : samples(static_cast<size_t>(c.size.width * c.size.height)), size(c.size)
    {
        int bytes = 0;
        require(vekiDecodeCBProgrGetStateSize_JPEG2K(size, &bytes) == vekStsOk);
        memory.resize(static_cast<size_t>(bytes));
        require(vekiDecodeCBProgrInit_JPEG2K(state()) == vekStsOk);
    }

    VekDecodeCBProgrState_JPEG2K* state() { return reinterpret_cast<VekDecodeCBProgrState_JPEG2K*>(memory.data()); }
    int32_t* block() { return reinterpret_cast<int32_t*>(samples.data()); }
    int step() const { return 4 * size.width; }
    int passesLeft()
    {
        int passes = 0;
        require(vekiDecodeCBProgrGetPassCounter_JPEG2K(state(), &passes) == vekStsOk);
        return passes;
    }
    int bitPlane()
    {
        int plane = 0;
        require(vekiDecodeCBProgrGetCurBitPlaneNum_JPEG2K(state(), &plane) == vekStsOk);
        return plane;
    }

    std::vector<uint8_t> memory;
    std::vector<uint32_t> samples;
    VekSize size;
};

void wholeBlock(const Case& c)
{
    const model::DecodedBlock want = model::decodeCodeBlock(c.stream, c.size.width, c.size.height, c.subband, c.sfBits,
                                                            c.passes, c.lengths, c.style);
    Decoder decoder(c);
    const uint8_t none = 0;
    const int noLength = 0;
    int errorBitPlane = untouched;
    const VekStatus status = vekiDecodeCodeBlock_JPEG2K_1u32s_C1R(
        c.stream.empty() ? &none : c.stream.data(), decoder.block(), decoder.step(), c.size, c.subband, c.sfBits,
        c.passes, c.lengths.empty() ? &noLength : c.lengths.data(), static_cast<int>(c.lengths.size()), c.style,
        &errorBitPlane, decoder.state());
    require(status == want.status && errorBitPlane == want.errorBitPlane);
    require(decoder.samples == want.samples);
    require(decoder.passesLeft() == want.passesLeft && decoder.bitPlane() == want.bitPlane);
}

void segmentBySegment(const Case& c)
{
    model::CodeBlockDecoder expected(c.size.width, c.size.height, c.subband, c.sfBits, c.style, c.passes);
    Decoder decoder(c);
    require(vekiDecodeCBProgrAttach_JPEG2K_32s_C1R(decoder.block(), decoder.step(), c.size, decoder.state(), c.subband,
                                                   c.sfBits, c.style) == vekStsOk);
    require(vekiDecodeCBProgrSetPassCounter_JPEG2K(c.passes, decoder.state()) == vekStsOk);
    auto next = c.stream.begin();
    for (const int length : c.lengths) {
        std::vector<uint8_t> segment(next, next + length);
        next += length;
        segment.reserve(1);  // an address also for an empty one
        require(vekiDecodeCBProgrStep_JPEG2K(segment.data(), length, decoder.state()) ==
                expected.step(segment.data(), length));
        require(decoder.samples == expected.samples);
        require(decoder.passesLeft() == expected.passesLeft && decoder.bitPlane() == expected.bitPlane);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Bytes bytes(data, size);
    const Case c = readCase(bytes);
    wholeBlock(c);
    segmentBySegment(c);
    return 0;
}
