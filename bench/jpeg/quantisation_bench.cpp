// Quantisation tables and blocks, and the level shift of whole planes beside memcpy of as many bytes: regions in the
// second-level cache, and beyond it.
#include <benchmark/benchmark.h>
#include <omp.h>

#include <algorithm>
#include <cstring>

#include "support/plane.h"
#include "vekj.h"

namespace {

using support::AlignedArray;
using support::Plane;

AlignedArray<uint8_t> rawTable()
{
    AlignedArray<uint8_t> raw(64);
    for (size_t i = 0; i < 64; ++i) raw[i] = static_cast<uint8_t>(3 + i);
    return raw;
}

void BM_vekiQuantFwdRawTableInit_JPEG_8u(benchmark::State& state)
{
    auto raw = rawTable();
    for (auto _ : state) benchmark::DoNotOptimize(vekiQuantFwdRawTableInit_JPEG_8u(raw.data(), 50));
}
BENCHMARK(BM_vekiQuantFwdRawTableInit_JPEG_8u);

template <VekStatus function(const uint8_t*, uint16_t*)>
void tableInit(benchmark::State& state)
{
    auto raw = rawTable();
    AlignedArray<uint16_t> table(64);
    for (auto _ : state) benchmark::DoNotOptimize(function(raw.data(), table.data()));
}
BENCHMARK_TEMPLATE(tableInit, vekiQuantFwdTableInit_JPEG_8u16u)->Name("BM_vekiQuantFwdTableInit_JPEG_8u16u");
BENCHMARK_TEMPLATE(tableInit, vekiQuantInvTableInit_JPEG_8u16u)->Name("BM_vekiQuantInvTableInit_JPEG_8u16u");

// Blocks one after the other; a table of ones, so that they stay as they are.
template <VekStatus function(int16_t*, const uint16_t*)>
void blocks(benchmark::State& state)
{
    const auto count = static_cast<size_t>(state.range(0));
    AlignedArray<int16_t> coefficients(64 * count);
    AlignedArray<uint16_t> table(64);
    std::fill(table.data(), table.data() + 64, uint16_t{1});
    for (auto _ : state)
        for (size_t i = 0; i < count; ++i)
            benchmark::DoNotOptimize(function(coefficients.data() + 64 * i, table.data()));
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(count));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(count) * 256);  // 128 read, 128 written
}
BENCHMARK_TEMPLATE(blocks, vekiQuantFwd8x8_JPEG_16s_C1I)
    ->Name("BM_vekiQuantFwd8x8_JPEG_16s_C1I")
    ->ArgName("blocks")
    ->Arg(64)
    ->Arg(1 << 18);
BENCHMARK_TEMPLATE(blocks, vekiQuantInv8x8_JPEG_16s_C1I)
    ->Name("BM_vekiQuantInv8x8_JPEG_16s_C1I")
    ->ArgName("blocks")
    ->Arg(64)
    ->Arg(1 << 18);

// Regions of the level shift; one thread.
void regions(benchmark::internal::Benchmark* b) { b->ArgNames({"w", "h"})->Args({256, 256})->Args({8192, 4096}); }

int64_t bytesMoved(const benchmark::State& state) { return state.iterations() * 3 * state.range(0) * state.range(1); }

void BM_vekiSub128_JPEG_8u16s_C1R(benchmark::State& state)
{
    const VekSize roi = {static_cast<int>(state.range(0)), static_cast<int>(state.range(1))};
    omp_set_num_threads(1);
    Plane<uint8_t> src(roi.width, roi.height);
    Plane<int16_t> dst(roi.width, roi.height);
    for (auto _ : state)
        benchmark::DoNotOptimize(vekiSub128_JPEG_8u16s_C1R(src.data(), src.step(), dst.data(), dst.step(), roi));
    state.SetBytesProcessed(bytesMoved(state));
}
BENCHMARK(BM_vekiSub128_JPEG_8u16s_C1R)->Apply(regions);

void BM_vekiAdd128_JPEG_16s8u_C1R(benchmark::State& state)
{
    const VekSize roi = {static_cast<int>(state.range(0)), static_cast<int>(state.range(1))};
    omp_set_num_threads(1);
    Plane<int16_t> src(roi.width, roi.height);
    Plane<uint8_t> dst(roi.width, roi.height);
    for (auto _ : state)
        benchmark::DoNotOptimize(vekiAdd128_JPEG_16s8u_C1R(src.data(), src.step(), dst.data(), dst.step(), roi));
    state.SetBytesProcessed(bytesMoved(state));
}
BENCHMARK(BM_vekiAdd128_JPEG_16s8u_C1R)->Apply(regions);

// As many bytes as a level shift moves, half of them read and half written.
void BM_peer_memcpy_of_level_shift(benchmark::State& state)
{
    const auto bytes = static_cast<size_t>(3 * state.range(0) * state.range(1) / 2);
    AlignedArray<uint8_t> src(bytes);
    AlignedArray<uint8_t> dst(bytes);
    for (auto _ : state) {
        std::memcpy(dst.data(), src.data(), bytes);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(bytesMoved(state));
}
BENCHMARK(BM_peer_memcpy_of_level_shift)->Apply(regions);

}  // namespace
