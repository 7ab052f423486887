// Textures of 1024 x 1024 pixels, in one thread: shades, edges and noise. Peers are squish, with its range fit, and for
// BC7 a plain decoder, bit by bit, and a plain search, pixel by pixel.
#include <benchmark/benchmark.h>
#include <squish.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "reference/texture/bc7_encoder.h"
#include "reference/texture/bptc.h"
#include "texture/bc7_svd.h"
#include "vekj.h"

namespace {

constexpr int side = 1024;
constexpr VekSize whole = {side, side};
constexpr int blocks = side / 4 * (side / 4);

std::vector<uint8_t> drawnPixels(int channels)
{
    std::vector<uint8_t> pixels(static_cast<size_t>(side * side * channels));
    std::mt19937 engine(7);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            for (int c = 0; c < channels; ++c) {
                const double shade = 128 + 70 * std::sin(x / (31.0 + c)) * std::cos(y / (27.0 - c));
                const int edge = (x / 37 + y / 53) % 4 == 0 ? 40 : 0;
                pixels[static_cast<size_t>((y * side + x) * channels + c)] =
                    static_cast<uint8_t>(shade + edge + static_cast<int>(engine() % 9));
            }
    return pixels;
}

std::vector<uint8_t> noise(size_t size)
{
    std::vector<uint8_t> bytes(size);
    std::mt19937 engine(8);
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(engine());
    return bytes;
}

void setPixels(benchmark::State& state) { state.SetItemsProcessed(state.iterations() * side * side); }

using Encode = VekStatus(const uint8_t*, uint32_t, VekSize, uint8_t*);
using Decode = VekStatus(const uint8_t*, uint8_t*, uint32_t, VekSize);

template <int channels, int blockBytes>
void encode(benchmark::State& state, Encode* function)
{
    const std::vector<uint8_t> pixels = drawnPixels(channels);
    std::vector<uint8_t> out(static_cast<size_t>(blocks * blockBytes));
    for (auto _ : state) {
        function(pixels.data(), side * channels, whole, out.data());
        benchmark::ClobberMemory();
    }
    setPixels(state);
}

template <int channels, int blockBytes>
void decode(benchmark::State& state, Decode* function)
{
    const std::vector<uint8_t> in = noise(static_cast<size_t>(blocks * blockBytes));
    std::vector<uint8_t> pixels(static_cast<size_t>(side * side * channels));
    for (auto _ : state) {
        function(in.data(), pixels.data(), side * channels, whole);
        benchmark::ClobberMemory();
    }
    setPixels(state);
}

void squishEncode(benchmark::State& state, int format)
{
    const std::vector<uint8_t> pixels = drawnPixels(4);
    std::vector<uint8_t> out(static_cast<size_t>(blocks * 16));
    for (auto _ : state) {
        squish::CompressImage(pixels.data(), side, side, out.data(), format | squish::kColourRangeFit);
        benchmark::ClobberMemory();
    }
    setPixels(state);
}

void squishDecode(benchmark::State& state, int format)
{
    const std::vector<uint8_t> in = noise(static_cast<size_t>(blocks * 16));
    std::vector<uint8_t> pixels(static_cast<size_t>(side * side * 4));
    for (auto _ : state) {
        squish::DecompressImage(pixels.data(), side, side, in.data(), format);
        benchmark::ClobberMemory();
    }
    setPixels(state);
}

void memcpyOf(benchmark::State& state, int channels)
{
    const std::vector<uint8_t> in = noise(static_cast<size_t>(side * side * channels));
    std::vector<uint8_t> out(in.size());
    for (auto _ : state) {
        std::memcpy(out.data(), in.data(), in.size());
        benchmark::ClobberMemory();
    }
    setPixels(state);
}

// Blocks of all modes in turn.
std::vector<uint8_t> bc7Blocks()
{
    std::vector<uint8_t> in = noise(static_cast<size_t>(blocks * 16));
    for (size_t i = 0; i < static_cast<size_t>(blocks); ++i) {
        const size_t mode = i % 8;
        in[16 * i] = static_cast<uint8_t>((in[16 * i] & ~((2U << mode) - 1)) | 1U << mode);
    }
    return in;
}

void BM_vekiTextureDecodeBlockToRGBA_BC7_8u_C1C4R(benchmark::State& state)
{
    const std::vector<uint8_t> in = bc7Blocks();
    std::vector<uint8_t> pixels(static_cast<size_t>(side * side * 4));
    for (auto _ : state) {
        vekiTextureDecodeBlockToRGBA_BC7_8u_C1C4R(in.data(), pixels.data(), side * 4, whole);
        benchmark::ClobberMemory();
    }
    setPixels(state);
}
BENCHMARK(BM_vekiTextureDecodeBlockToRGBA_BC7_8u_C1C4R);

void BM_peer_bc7_bit_by_bit(benchmark::State& state)
{
    const std::vector<uint8_t> in = bc7Blocks();
    std::vector<uint8_t> pixels(static_cast<size_t>(side * side * 4));
    for (auto _ : state) {
        for (size_t i = 0; i < static_cast<size_t>(blocks); ++i) {
            const model::Bc7Block block = model::decodeBc7(in.data() + 16 * i);
            uint8_t* const first = pixels.data() + i / (side / 4) * 16 * side + i % (side / 4) * 16;
            for (size_t y = 0; y < 4; ++y) std::memcpy(first + y * side * 4, &block[4 * y], 16);
        }
        benchmark::ClobberMemory();
    }
    setPixels(state);
}
BENCHMARK(BM_peer_bc7_bit_by_bit);

// Blocks from all over the picture, in the mode that the argument tells.
constexpr size_t encodedBlocks = 16;

// Calls encode(first pixel) for each.
template <class Encode>
void encodeBc7(benchmark::State& state, const Encode& encode)
{
    const std::vector<uint8_t> pixels = drawnPixels(4);
    for (auto _ : state)
        for (size_t i = 0; i < encodedBlocks; ++i) {
            const size_t x = i * 7 % (side / 4) * 16, y = i * (side / 4 / encodedBlocks);
            benchmark::DoNotOptimize(encode(pixels.data() + y * 16 * side + x));
        }
    state.SetItemsProcessed(state.iterations() * int64_t{encodedBlocks} * 16);
}

void BM_vekiTextureEncodeBlock4x4FromRGBA_BC7_8u_C4C1R(benchmark::State& state)
{
    encodeBc7(state, [&](const uint8_t* first) {
        uint8_t block[16];
        int error = 0;
        vekiTextureEncodeBlock4x4FromRGBA_BC7_8u_C4C1R(first, side * 4, block, &error,
                                                       static_cast<int>(state.range(0)));
        return error;
    });
}
BENCHMARK(BM_vekiTextureEncodeBlock4x4FromRGBA_BC7_8u_C4C1R)->ArgName("mode")->DenseRange(0, 7);

// The model of the tests, with the library's decomposition.
void BM_peer_bc7_search_pixel_by_pixel(benchmark::State& state)
{
    encodeBc7(state, [&](const uint8_t* first) {
        uint8_t pixels[64];
        for (size_t y = 0; y < 4; ++y) std::memcpy(pixels + 16 * y, first + 4 * side * y, 16);
        return model::encodeBc7(pixels, static_cast<int>(state.range(0)), q3::svd_32f).error;
    });
}
BENCHMARK(BM_peer_bc7_search_pixel_by_pixel)->ArgName("mode")->DenseRange(0, 7);

template <auto function, int channels, int blockBytes>
void BM_encode(benchmark::State& state)
{
    encode<channels, blockBytes>(state, function);
}
template <auto function, int channels, int blockBytes>
void BM_decode(benchmark::State& state)
{
    decode<channels, blockBytes>(state, function);
}

#define VEK_BENCH_ENCODE(name, channels, bytes) BENCHMARK(BM_encode<name, channels, bytes>)->Name("BM_" #name)
#define VEK_BENCH_DECODE(name, channels, bytes) BENCHMARK(BM_decode<name, channels, bytes>)->Name("BM_" #name)

VEK_BENCH_ENCODE(vekiTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R, 4, 8);
VEK_BENCH_ENCODE(vekiTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R, 4, 16);
VEK_BENCH_ENCODE(vekiTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R, 4, 16);
VEK_BENCH_ENCODE(vekiTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R, 3, 16);
VEK_BENCH_ENCODE(vekiTextureEncodeBlock_BC4_8u_C1R, 1, 8);
VEK_BENCH_ENCODE(vekiTextureEncodeBlockFromRG_BC5_8u_C2C1R, 2, 16);
VEK_BENCH_DECODE(vekiTextureDecodeBlockToRGBA_DXT1_8u_C1C4R, 4, 8);
VEK_BENCH_DECODE(vekiTextureDecodeBlockToRGBA_DXT3_8u_C1C4R, 4, 16);
VEK_BENCH_DECODE(vekiTextureDecodeBlockToRGBA_DXT5_8u_C1C4R, 4, 16);
VEK_BENCH_DECODE(vekiTextureDecodeBlock_BC4_8u_C1R, 1, 8);
VEK_BENCH_DECODE(vekiTextureDecodeBlockToRG_BC5_8u_C1C2R, 2, 16);

void BM_peer_squish_encode_dxt1(benchmark::State& state) { squishEncode(state, squish::kDxt1); }
void BM_peer_squish_encode_dxt3(benchmark::State& state) { squishEncode(state, squish::kDxt3); }
void BM_peer_squish_encode_dxt5(benchmark::State& state) { squishEncode(state, squish::kDxt5); }
void BM_peer_squish_decode_dxt1(benchmark::State& state) { squishDecode(state, squish::kDxt1); }
void BM_peer_squish_decode_dxt3(benchmark::State& state) { squishDecode(state, squish::kDxt3); }
void BM_peer_squish_decode_dxt5(benchmark::State& state) { squishDecode(state, squish::kDxt5); }
void BM_peer_memcpy_of_grey(benchmark::State& state) { memcpyOf(state, 1); }
void BM_peer_memcpy_of_two_channels(benchmark::State& state) { memcpyOf(state, 2); }
BENCHMARK(BM_peer_squish_encode_dxt1);
BENCHMARK(BM_peer_squish_encode_dxt3);
BENCHMARK(BM_peer_squish_encode_dxt5);
BENCHMARK(BM_peer_squish_decode_dxt1);
BENCHMARK(BM_peer_squish_decode_dxt3);
BENCHMARK(BM_peer_squish_decode_dxt5);
BENCHMARK(BM_peer_memcpy_of_grey);
BENCHMARK(BM_peer_memcpy_of_two_channels);

}  // namespace
