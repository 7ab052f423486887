// Code-blocks of 64x64 samples: the wavelet coefficients of a drawn picture, or these without their lowest planes, one
// after the other, in one thread.
//
// The peer is the packaged JPEG 2000 library on the same samples in the same blocks and segments. It offers its block
// coder only inside of whole images, so the coefficients are its image, of 12 bits with signs, and no wavelet follows:
// what it does besides coding blocks is to set up its objects, to copy samples and to read or write packet headers.
#include <benchmark/benchmark.h>
#include <openjpeg.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "vekj.h"

namespace {

constexpr int pictureSize = 512;
constexpr int blockSize = 64;
constexpr int blocksPerRow = pictureSize / blockSize;
constexpr int blockCount = blocksPerRow * blocksPerRow;
constexpr VekSize wholeBlock = {blockSize, blockSize};

using Line = std::vector<int>;

// The reversible wavelet of ISO/IEC 15444-1, Annex F, on an even number of samples: low ones, then high ones.
Line transformed(const Line& line)
{
    const size_t half = line.size() / 2;
    Line result(line.size());
    for (size_t i = 0; i < half; ++i) {
        const int after = line[i + 1 < half ? 2 * i + 2 : 2 * i];
        result[half + i] = line[2 * i + 1] - ((line[2 * i] + after) >> 1);
    }
    for (size_t i = 0; i < half; ++i)
        result[i] = line[2 * i] + ((result[half + (i > 0 ? i - 1 : 0)] + result[half + i] + 2) >> 2);
    return result;
}

// Three levels over smooth shades, edges and some noise; magnitudes lose `dropped` bits.
std::vector<int> drawnCoefficients(int dropped)
{
    std::vector<int> samples(pictureSize * pictureSize);
    const auto at = [&samples](int x, int y) -> int& { return samples[static_cast<size_t>(y * pictureSize + x)]; };
    std::mt19937 engine(1);
    for (int y = 0; y < pictureSize; ++y)
        for (int x = 0; x < pictureSize; ++x)
            at(x, y) = static_cast<int>(60 * std::sin(x / 37.0) * std::cos(y / 23.0)) +
                       ((x / 48 + y / 40) % 3 == 0 ? 40 : 0) + static_cast<int>(engine() % 7) - 20;
    for (int size = pictureSize; size > pictureSize / 8; size /= 2) {
        Line line(static_cast<size_t>(size));
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x) line[static_cast<size_t>(x)] = at(x, y);
            const Line row = transformed(line);
            for (int x = 0; x < size; ++x) at(x, y) = row[static_cast<size_t>(x)];
        }
        for (int x = 0; x < size; ++x) {
            for (int y = 0; y < size; ++y) line[static_cast<size_t>(y)] = at(x, y);
            const Line column = transformed(line);
            for (int y = 0; y < size; ++y) at(x, y) = column[static_cast<size_t>(y)];
        }
    }
    for (int& v : samples) v = v < 0 ? -(-v >> dropped) : v >> dropped;
    return samples;
}

// Ways to segment: one segment to a block, or raw segments below the fourth plane.
constexpr int oneSegment = 0;
constexpr int withBypass = 0x2;

void pictures(benchmark::internal::Benchmark* b)
{
    b->ArgNames({"dropped", "style"})
        ->Args({0, oneSegment})
        ->Args({2, oneSegment})
        ->Args({4, oneSegment})
        ->Args({0, withBypass})
        ->Unit(benchmark::kMicrosecond);
}

void countSamples(benchmark::State& state)
{
    const auto pictureTimes = static_cast<double>(state.iterations());
    const auto nanoseconds = benchmark::Counter::kIsRate | benchmark::Counter::kInvert;
    state.counters["per_block"] = benchmark::Counter(pictureTimes * blockCount, nanoseconds);
    state.counters["per_sample"] = benchmark::Counter(pictureTimes * pictureSize * pictureSize, nanoseconds);
    state.SetItemsProcessed(state.iterations() * pictureSize * pictureSize);
}

struct CodedBlock {
    std::vector<uint8_t> bytes;
    std::vector<int> lengths;  // of the segments
    int planes, passes;
};

struct FreeDecoder {
    void operator()(VekDecodeCBProgrState_JPEG2K* state) const { vekiDecodeCBProgrFree_JPEG2K(state); }
};
struct FreeEncoder {
    void operator()(VekEncodeState_JPEG2K* state) const { vekiEncodeFree_JPEG2K(state); }
};

class Blocks {
public:
    explicit Blocks(const benchmark::State& state)
        : style_(static_cast<int>(state.range(1))), samples_(pictureSize * pictureSize)
    {
        const std::vector<int> coefficients = drawnCoefficients(static_cast<int>(state.range(0)));
        std::transform(coefficients.begin(), coefficients.end(), samples_.begin(),
                       [](int v) { return v < 0 ? INT32_MIN | -v : v; });
        VekEncodeState_JPEG2K* encoder = nullptr;
        vekiEncodeInitAlloc_JPEG2K(&encoder, wholeBlock);
        encoder_.reset(encoder);
        VekDecodeCBProgrState_JPEG2K* decoder = nullptr;
        vekiDecodeCBProgrInitAlloc_JPEG2K(&decoder, wholeBlock);
        decoder_.reset(decoder);
        decoded_.resize(samples_.size());
        for (int i = 0; i < blockCount; ++i) coded_.push_back(encode(i));
    }

    CodedBlock encode(int block)
    {
        CodedBlock coded;
        const int length = encodeInto(block, coded.planes, coded.passes, segments_);
        coded.bytes.assign(room_.begin(), room_.begin() + length);
        for (int i = 0; i < segments_; ++i) {
            coded.lengths.push_back(0);
            vekiEncodeGetTermPassLen_JPEG2K(encoder_.get(), i, &coded.lengths.back());
        }
        return coded;
    }
    int encodeInto(int block, int& planes, int& passes, int& segments)
    {
        vekiEncodeLoadCodeBlock_JPEG2K_32s_C1R(blockOf(samples_, block), step, wholeBlock, encoder_.get(), 0, 31, 0, 0,
                                               style_, &planes, &passes, &segments);
        int length = static_cast<int>(room_.size());
        int isNotFinished = 1;
        vekiEncodeStoreBits_JPEG2K_1u(room_.data(), &length, encoder_.get(), &isNotFinished);
        return isNotFinished == 0 ? length : -1;
    }
    void decode(int block)
    {
        const CodedBlock& coded = coded_[static_cast<size_t>(block)];
        vekiDecodeCodeBlock_JPEG2K_1u32s_C1R(coded.bytes.data(), blockOf(decoded_, block), step, wholeBlock, 0,
                                             coded.planes, coded.passes, coded.lengths.data(),
                                             static_cast<int>(coded.lengths.size()), style_, nullptr, decoder_.get());
    }
    bool isDecoded() const { return decoded_ == samples_; }

private:
    static constexpr int step = 4 * pictureSize;

    static int32_t* blockOf(std::vector<int32_t>& samples, int block)
    {
        const int x = block % blocksPerRow * blockSize, y = block / blocksPerRow * blockSize;
        return samples.data() + y * pictureSize + x;
    }

    int style_;
    int segments_ = 0;
    std::vector<int32_t> samples_, decoded_;
    std::unique_ptr<VekEncodeState_JPEG2K, FreeEncoder> encoder_;
    std::unique_ptr<VekDecodeCBProgrState_JPEG2K, FreeDecoder> decoder_;
    std::vector<uint8_t> room_ = std::vector<uint8_t>(1 << 16);
    std::vector<CodedBlock> coded_;
};

void BM_code_block_decode(benchmark::State& state)
{
    Blocks blocks(state);
    for (auto _ : state)
        for (int i = 0; i < blockCount; ++i) blocks.decode(i);
    if (!blocks.isDecoded())
        state.SkipWithError("the blocks do not come back");
    countSamples(state);
}
BENCHMARK(BM_code_block_decode)->Apply(pictures);

void BM_code_block_encode(benchmark::State& state)
{
    Blocks blocks(state);
    int planes = 0, passes = 0, segments = 0;
    for (auto _ : state)
        for (int i = 0; i < blockCount; ++i)
            if (blocks.encodeInto(i, planes, passes, segments) < 0)
                state.SkipWithError("a block needs more room");
    countSamples(state);
}
BENCHMARK(BM_code_block_encode)->Apply(pictures);

// A code-stream in memory, as the peer reads and writes it.
struct MemoryStream {
    std::vector<uint8_t> bytes;
    size_t position = 0;

    static OPJ_SIZE_T read(void* to, OPJ_SIZE_T size, void* self)
    {
        auto& stream = *static_cast<MemoryStream*>(self);
        const size_t n = std::min(size, stream.bytes.size() - stream.position);
        if (n == 0)
            return static_cast<OPJ_SIZE_T>(-1);
        std::memcpy(to, stream.bytes.data() + stream.position, n);
        stream.position += n;
        return n;
    }
    static OPJ_SIZE_T write(void* from, OPJ_SIZE_T size, void* self)
    {
        auto& stream = *static_cast<MemoryStream*>(self);
        stream.bytes.resize(std::max(stream.bytes.size(), stream.position + size));
        std::memcpy(stream.bytes.data() + stream.position, from, size);
        stream.position += size;
        return size;
    }
    static OPJ_OFF_T skip(OPJ_OFF_T size, void* self)
    {
        static_cast<MemoryStream*>(self)->position += static_cast<size_t>(size);
        return size;
    }
    static OPJ_BOOL seek(OPJ_OFF_T position, void* self)
    {
        static_cast<MemoryStream*>(self)->position = static_cast<size_t>(position);
        return OPJ_TRUE;
    }
    opj_stream_t* open(bool isInput)
    {
        position = 0;
        opj_stream_t* const stream = opj_stream_default_create(isInput ? OPJ_TRUE : OPJ_FALSE);
        opj_stream_set_user_data(stream, this, nullptr);
        opj_stream_set_user_data_length(stream, bytes.size());
        opj_stream_set_read_function(stream, read);
        opj_stream_set_write_function(stream, write);
        opj_stream_set_skip_function(stream, skip);
        opj_stream_set_seek_function(stream, seek);
        return stream;
    }
};

bool peerEncode(const std::vector<int>& coefficients, int style, MemoryStream& memory)
{
    opj_cparameters_t parameters;
    opj_set_default_encoder_parameters(&parameters);
    parameters.numresolution = 1;
    parameters.cblockw_init = parameters.cblockh_init = blockSize;
    parameters.mode = style == withBypass ? 1 : 0;
    parameters.tcp_numlayers = 1;
    parameters.cp_disto_alloc = 1;
    opj_image_cmptparm_t component{};
    component.dx = component.dy = 1;
    component.w = component.h = pictureSize;
    component.prec = 12;
    component.sgnd = 1;
    opj_image_t* const image = opj_image_create(1, &component, OPJ_CLRSPC_GRAY);
    image->x1 = image->y1 = pictureSize;
    std::memcpy(image->comps[0].data, coefficients.data(), coefficients.size() * sizeof(int));
    opj_codec_t* const codec = opj_create_compress(OPJ_CODEC_J2K);
    opj_stream_t* const stream = memory.open(false);
    const bool good = opj_setup_encoder(codec, &parameters, image) != 0 &&
                      opj_start_compress(codec, image, stream) != 0 && opj_encode(codec, stream) != 0 &&
                      opj_end_compress(codec, stream) != 0;
    opj_stream_destroy(stream);
    opj_destroy_codec(codec);
    opj_image_destroy(image);
    return good;
}

bool peerDecode(MemoryStream& memory, const std::vector<int>* expected)
{
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    opj_codec_t* const codec = opj_create_decompress(OPJ_CODEC_J2K);
    opj_stream_t* const stream = memory.open(true);
    opj_image_t* image = nullptr;
    bool good = opj_setup_decoder(codec, &parameters) != 0 && opj_read_header(stream, codec, &image) != 0 &&
                opj_decode(codec, stream, image) != 0;
    if (good && expected != nullptr)
        good = std::equal(expected->begin(), expected->end(), image->comps[0].data);
    opj_stream_destroy(stream);
    opj_destroy_codec(codec);
    opj_image_destroy(image);
    return good;
}

void BM_peer_image_of_code_blocks_decode(benchmark::State& state)
{
    const std::vector<int> coefficients = drawnCoefficients(static_cast<int>(state.range(0)));
    MemoryStream memory;
    if (!peerEncode(coefficients, static_cast<int>(state.range(1)), memory) || !peerDecode(memory, &coefficients))
        state.SkipWithError("the peer does not give the coefficients back");
    for (auto _ : state) benchmark::DoNotOptimize(peerDecode(memory, nullptr));
    countSamples(state);
}
BENCHMARK(BM_peer_image_of_code_blocks_decode)->Apply(pictures);

void BM_peer_image_of_code_blocks_encode(benchmark::State& state)
{
    const std::vector<int> coefficients = drawnCoefficients(static_cast<int>(state.range(0)));
    MemoryStream memory;
    for (auto _ : state)
        if (!peerEncode(coefficients, static_cast<int>(state.range(1)), memory))
            state.SkipWithError("the peer fails");
    countSamples(state);
}
BENCHMARK(BM_peer_image_of_code_blocks_encode)->Apply(pictures);

}  // namespace
