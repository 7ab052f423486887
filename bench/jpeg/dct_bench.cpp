// The DCT with quantisation, block by block: 64 blocks stay in the first-level cache, 2^18 blocks are some 100
// megabytes. The peers run over the same blocks.
#include <benchmark/benchmark.h>

#include <cstring>

#include "peers/turbo_kernels.h"
#include "support/plane.h"
#include "vekj.h"

namespace {

using support::AlignedArray;

constexpr int rowStep = 8;  // blocks of samples are packed

struct Tables {
    Tables() : raw(64), forward(64), inverse(64), forwardFloat(64), inverseFloat(64)
    {
        for (int i = 0; i < 64; ++i) raw[static_cast<size_t>(i)] = static_cast<uint8_t>(3 + i / 2);  // zig-zag order
        vekiQuantFwdTableInit_JPEG_8u16u(raw.data(), forward.data());
        vekiQuantInvTableInit_JPEG_8u16u(raw.data(), inverse.data());
        for (size_t i = 0; i < 64; ++i) {
            forwardFloat[i] = 1.0F / inverse[i];
            inverseFloat[i] = inverse[i];
            turbo::setDivisor(divisors, static_cast<int>(i), inverse[i] * 8U);  // its transform is scaled by 8
        }
    }
    const int16_t* steps() { return reinterpret_cast<const int16_t*>(inverse.data()); }

    AlignedArray<uint8_t> raw;
    AlignedArray<uint16_t> forward;
    AlignedArray<uint16_t> inverse;
    AlignedArray<float> forwardFloat;
    AlignedArray<float> inverseFloat;
    turbo::Divisors divisors;
};

// Blocks of samples of 8 and 12 bits, and of coefficients of which the first `kept` x `kept` are not zero.
struct Blocks {
    explicit Blocks(const benchmark::State& state, int kept = 8)
        : count(static_cast<size_t>(state.range(0))),
          samples(64 * count, 1),
          deepSamples(64 * count, 2),
          coefficients(64 * count, 3),
          results(64 * count, 4)
    {
        for (size_t i = 0; i < 64 * count; ++i) {
            deepSamples[i] &= 4095;
            const int row = static_cast<int>(i / 8 % 8);
            const int column = static_cast<int>(i % 8);
            const int range = 64 >> ((row + column) / 2);  // less of the high frequencies, but never all zero
            const int value = coefficients[i] % (range + 2) | 1;
            coefficients[i] = static_cast<int16_t>(row < kept && column < kept ? value : 0);
        }
    }

    size_t count;
    AlignedArray<uint8_t> samples;
    AlignedArray<uint16_t> deepSamples;
    AlignedArray<int16_t> coefficients;
    AlignedArray<int16_t> results;
};

// Eight packed rows, as the peers want them.
struct RowPointers {
    explicit RowPointers(uint8_t* block)
    {
        for (int y = 0; y < 8; ++y) rows[y] = block + rowStep * y;
    }
    uint8_t* rows[8];
};

template <typename Call>
void overBlocks(benchmark::State& state, const Blocks& blocks, int bytesPerBlock, const Call& call)
{
    for (auto _ : state) {
        for (size_t i = 0; i < 64 * blocks.count; i += 64) call(i);
        benchmark::ClobberMemory();
    }
    const auto done = state.iterations() * static_cast<int64_t>(blocks.count);
    state.SetItemsProcessed(done);
    state.SetBytesProcessed(done * bytesPerBlock);
}

void sizes(benchmark::internal::Benchmark* b) { b->ArgName("blocks")->Arg(64)->Arg(1 << 18); }

void BM_vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(benchmark::State& state)
{
    Tables tables;
    Blocks blocks(state);
    overBlocks(state, blocks, 192, [&](size_t i) {
        vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(&blocks.samples[i], rowStep, &blocks.results[i], tables.forward.data());
    });
}
BENCHMARK(BM_vekiDCTQuantFwd8x8LS_JPEG_8u16s_C1R)->Apply(sizes);

void BM_peer_convsamp_fdct_islow_quantize(benchmark::State& state)
{
    Tables tables;
    Blocks blocks(state);
    alignas(32) int16_t workspace[64];
    overBlocks(state, blocks, 192, [&](size_t i) {
        RowPointers pointers(&blocks.samples[i]);
        turbo::jsimd_convsamp_avx2(pointers.rows, 0, workspace);
        turbo::jsimd_fdct_islow_avx2(workspace);
        turbo::jsimd_quantize_avx2(&blocks.results[i], &tables.divisors, workspace);
    });
}
BENCHMARK(BM_peer_convsamp_fdct_islow_quantize)->Apply(sizes);

void BM_vekiDCTQuantFwd8x8_JPEG_16s_C1(benchmark::State& state)
{
    Tables tables;
    Blocks blocks(state);
    overBlocks(state, blocks, 256, [&](size_t i) {
        vekiDCTQuantFwd8x8_JPEG_16s_C1(&blocks.coefficients[i], &blocks.results[i], tables.forward.data());
    });
}
BENCHMARK(BM_vekiDCTQuantFwd8x8_JPEG_16s_C1)->Apply(sizes);

void BM_vekiDCTQuantFwd8x8_JPEG_16s_C1I(benchmark::State& state)
{
    Tables tables;
    Blocks blocks(state);
    overBlocks(state, blocks, 256,
               [&](size_t i) { vekiDCTQuantFwd8x8_JPEG_16s_C1I(&blocks.results[i], tables.forward.data()); });
}
BENCHMARK(BM_vekiDCTQuantFwd8x8_JPEG_16s_C1I)->Apply(sizes);

void BM_peer_fdct_islow_quantize(benchmark::State& state)
{
    Tables tables;
    Blocks blocks(state);
    overBlocks(state, blocks, 256, [&](size_t i) {
        turbo::jsimd_fdct_islow_avx2(&blocks.results[i]);
        turbo::jsimd_quantize_avx2(&blocks.results[i], &tables.divisors, &blocks.results[i]);
    });
}
BENCHMARK(BM_peer_fdct_islow_quantize)->Apply(sizes);

void BM_vekiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(benchmark::State& state)
{
    Tables tables;
    Blocks blocks(state);
    overBlocks(state, blocks, 256, [&](size_t i) {
        vekiDCTQuantFwd8x8LS_JPEG_16u16s_C1R(&blocks.deepSamples[i], 2 * rowStep, &blocks.results[i],
                                             tables.forwardFloat.data());
    });
}
BENCHMARK(BM_vekiDCTQuantFwd8x8LS_JPEG_16u16s_C1R)->Apply(sizes);

void BM_peer_convsamp_fdct_quantize_float(benchmark::State& state)
{
    Tables tables;
    Blocks blocks(state);
    alignas(32) float workspace[64];
    overBlocks(state, blocks, 192, [&](size_t i) {
        RowPointers pointers(&blocks.samples[i]);
        turbo::jsimd_convsamp_float_sse2(pointers.rows, 0, workspace);
        turbo::jsimd_fdct_float_sse(workspace);
        turbo::jsimd_quantize_float_sse2(&blocks.results[i], tables.forwardFloat.data(), workspace);
    });
}
BENCHMARK(BM_peer_convsamp_fdct_quantize_float)->Apply(sizes);

void BM_vekiDCTQuantInv8x8_JPEG_16s_C1(benchmark::State& state)
{
    Tables tables;
    Blocks blocks(state);
    overBlocks(state, blocks, 256, [&](size_t i) {
        vekiDCTQuantInv8x8_JPEG_16s_C1(&blocks.coefficients[i], &blocks.results[i], tables.inverse.data());
    });
}
BENCHMARK(BM_vekiDCTQuantInv8x8_JPEG_16s_C1)->Apply(sizes);

void BM_vekiDCTQuantInv8x8_JPEG_16s_C1I(benchmark::State& state)
{
    Tables tables;
    Blocks blocks(state);
    overBlocks(state, blocks, 256,
               [&](size_t i) { vekiDCTQuantInv8x8_JPEG_16s_C1I(&blocks.coefficients[i], tables.inverse.data()); });
}
BENCHMARK(BM_vekiDCTQuantInv8x8_JPEG_16s_C1I)->Apply(sizes);

// One member that makes 8-bit samples; template arguments: the function, and how many coefficients of a row and of a
// column are not zero.
template <auto Function, int Kept>
void inverseMember(benchmark::State& state)
{
    Tables tables;
    Blocks blocks(state, Kept);
    overBlocks(state, blocks, 192, [&](size_t i) {
        Function(&blocks.coefficients[i], &blocks.samples[i], rowStep, tables.inverse.data());
    });
}

template <auto Kernel, int Kept>
void inversePeer(benchmark::State& state)
{
    Tables tables;
    Blocks blocks(state, Kept);
    overBlocks(state, blocks, 192, [&](size_t i) {
        RowPointers pointers(&blocks.samples[i]);
        Kernel(tables.steps(), &blocks.coefficients[i], pointers.rows, 0);
    });
}

BENCHMARK(inverseMember<vekiDCTQuantInv8x8LS_JPEG_16s8u_C1R, 8>)
    ->Name("BM_vekiDCTQuantInv8x8LS_JPEG_16s8u_C1R")
    ->Apply(sizes);
BENCHMARK(inversePeer<turbo::jsimd_idct_islow_avx2, 8>)->Name("BM_peer_idct_islow")->Apply(sizes);
BENCHMARK(inverseMember<vekiDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R, 4>)
    ->Name("BM_vekiDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R")
    ->Apply(sizes);
BENCHMARK(inversePeer<turbo::jsimd_idct_islow_avx2, 4>)->Name("BM_peer_idct_islow_of_4x4")->Apply(sizes);
BENCHMARK(inverseMember<vekiDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R, 2>)
    ->Name("BM_vekiDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R")
    ->Apply(sizes);
BENCHMARK(inversePeer<turbo::jsimd_idct_islow_avx2, 2>)->Name("BM_peer_idct_islow_of_2x2")->Apply(sizes);
BENCHMARK(inverseMember<vekiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R, 1>)
    ->Name("BM_vekiDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R")
    ->Apply(sizes);
BENCHMARK(inversePeer<turbo::jsimd_idct_islow_avx2, 1>)->Name("BM_peer_idct_islow_of_1x1")->Apply(sizes);
BENCHMARK(inverseMember<vekiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R, 8>)
    ->Name("BM_vekiDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R")
    ->Apply(sizes);
BENCHMARK(inversePeer<turbo::jsimd_idct_4x4_sse2, 8>)->Name("BM_peer_idct_4x4")->Apply(sizes);
BENCHMARK(inverseMember<vekiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R, 8>)
    ->Name("BM_vekiDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R")
    ->Apply(sizes);
BENCHMARK(inversePeer<turbo::jsimd_idct_2x2_sse2, 8>)->Name("BM_peer_idct_2x2")->Apply(sizes);

void BM_vekiDCTQuantInv8x8LS_JPEG_16s16u_C1R(benchmark::State& state)
{
    Tables tables;
    Blocks blocks(state);
    overBlocks(state, blocks, 256, [&](size_t i) {
        vekiDCTQuantInv8x8LS_JPEG_16s16u_C1R(&blocks.coefficients[i], &blocks.deepSamples[i], 2 * rowStep,
                                             tables.inverseFloat.data());
    });
}
BENCHMARK(BM_vekiDCTQuantInv8x8LS_JPEG_16s16u_C1R)->Apply(sizes);

void BM_peer_idct_float(benchmark::State& state)
{
    Tables tables;
    Blocks blocks(state);
    overBlocks(state, blocks, 192, [&](size_t i) {
        RowPointers pointers(&blocks.samples[i]);
        turbo::jsimd_idct_float_sse2(tables.inverseFloat.data(), &blocks.coefficients[i], pointers.rows, 0);
    });
}
BENCHMARK(BM_peer_idct_float)->Apply(sizes);

}  // namespace
