// The kernels that the families share: memory kernels beside memcpy and memset of as many bytes, in the second-level
// cache and beyond every cache; arithmetic kernels on one block.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>

#include "frame/arithmetic_kernels.h"
#include "frame/memory_kernels.h"
#include "support/plane.h"

namespace {

using support::AlignedArray;
using support::Plane;

// Bytes written: a string move copies the second size and the third, the last goes past the cache.
void lengths(benchmark::internal::Benchmark* b) { b->ArgName("bytes")->Arg(4096)->Arg(1 << 17)->Arg(1 << 28); }

template <typename Copy>
void copyBytes(benchmark::State& state, const Copy& copy)
{
    const auto bytes = static_cast<size_t>(state.range(0));
    AlignedArray<uint8_t> src(bytes);
    AlignedArray<uint8_t> dst(bytes);
    for (auto _ : state) {
        copy(src.data(), dst.data(), bytes);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * 2 * state.range(0));  // read and written
}

template <typename Fill>
void fillBytes(benchmark::State& state, const Fill& fill)
{
    const auto bytes = static_cast<size_t>(state.range(0));
    AlignedArray<uint8_t> dst(bytes);
    for (auto _ : state) {
        fill(dst.data(), bytes);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void BM_veksCopy_8u(benchmark::State& state)
{
    copyBytes(state,
              [](const uint8_t* src, uint8_t* dst, size_t n) { q3::veksCopy_8u(src, dst, static_cast<int>(n)); });
}
BENCHMARK(BM_veksCopy_8u)->Apply(lengths);

void BM_peer_memcpy(benchmark::State& state)
{
    copyBytes(state, [](const uint8_t* src, uint8_t* dst, size_t n) { std::memcpy(dst, src, n); });
}
BENCHMARK(BM_peer_memcpy)->Apply(lengths);

void BM_veksSet_8u(benchmark::State& state)
{
    fillBytes(state, [](uint8_t* dst, size_t n) { q3::veksSet_8u(0x55, dst, static_cast<int>(n)); });
}
BENCHMARK(BM_veksSet_8u)->Apply(lengths);

void BM_veksZero_32f(benchmark::State& state)
{
    AlignedArray<float> dst(static_cast<size_t>(state.range(0)) / sizeof(float));
    for (auto _ : state) {
        q3::veksZero_32f(dst.data(), static_cast<int>(dst.size()));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_veksZero_32f)->Apply(lengths);

void BM_ownsSet_32s(benchmark::State& state)
{
    AlignedArray<int32_t> dst(static_cast<size_t>(state.range(0)) / sizeof(int32_t));
    for (auto _ : state) {
        q3::ownsSet_32s(0x55AA, dst.data(), static_cast<int>(dst.size()));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ownsSet_32s)->Apply(lengths);

void BM_peer_memset(benchmark::State& state)
{
    fillBytes(state, [](uint8_t* dst, size_t n) { std::memset(dst, 0x55, n); });
}
BENCHMARK(BM_peer_memset)->Apply(lengths);

void regions(benchmark::internal::Benchmark* b) { b->ArgNames({"w", "h"})->Args({256, 128})->Args({8192, 4096}); }

template <typename From, typename To, typename Call>
void regionToRegion(benchmark::State& state, const Call& call)
{
    const VekSize roi = {static_cast<int>(state.range(0)), static_cast<int>(state.range(1))};
    Plane<From> src(roi.width, roi.height);
    Plane<To> dst(roi.width, roi.height);
    for (auto _ : state) {
        call(src.data(), src.step(), dst.data(), dst.step(), roi);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0) * state.range(1) *
                            static_cast<int64_t>(sizeof(From) + sizeof(To)));
}

void BM_vekiCopy_16s_C1R(benchmark::State& state) { regionToRegion<int16_t, int16_t>(state, q3::vekiCopy_16s_C1R); }
BENCHMARK(BM_vekiCopy_16s_C1R)->Apply(regions);

void BM_vekiCopy_32f_C1R(benchmark::State& state)
{
    const auto copy = [](const int32_t* src, int srcStep, int32_t* dst, int dstStep, VekSize roi) {
        q3::vekiCopy_32f_C1R(reinterpret_cast<const float*>(src), srcStep, reinterpret_cast<float*>(dst), dstStep, roi);
    };
    regionToRegion<int32_t, int32_t>(state, copy);
}
BENCHMARK(BM_vekiCopy_32f_C1R)->Apply(regions);

void BM_vekiConvert_8u16s_C1R(benchmark::State& state)
{
    regionToRegion<uint8_t, int16_t>(state, q3::vekiConvert_8u16s_C1R);
}
BENCHMARK(BM_vekiConvert_8u16s_C1R)->Apply(regions);

void BM_vekiAndC_32s_C1R(benchmark::State& state)
{
    const auto mask = [](const int32_t* src, int srcStep, int32_t* dst, int dstStep, VekSize roi) {
        q3::vekiAndC_32s_C1R(src, srcStep, 0x7FFFFFFF, dst, dstStep, roi);
    };
    regionToRegion<int32_t, int32_t>(state, mask);
}
BENCHMARK(BM_vekiAndC_32s_C1R)->Apply(regions);

// memcpy that moves as many bytes in all as a kernel of so many bytes a sample.
template <int bytesMoved>
void copyOfRegion(benchmark::State& state)
{
    const auto bytes = static_cast<size_t>(bytesMoved * state.range(0) * state.range(1) / 2);
    AlignedArray<uint8_t> src(bytes);
    AlignedArray<uint8_t> dst(bytes);
    for (auto _ : state) {
        std::memcpy(dst.data(), src.data(), bytes);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * bytesMoved * state.range(0) * state.range(1));
}
BENCHMARK_TEMPLATE(copyOfRegion, 3)->Name("BM_peer_memcpy_of_3_bytes_moved")->Apply(regions);
BENCHMARK_TEMPLATE(copyOfRegion, 4)->Name("BM_peer_memcpy_of_4_bytes_moved")->Apply(regions);
BENCHMARK_TEMPLATE(copyOfRegion, 8)->Name("BM_peer_memcpy_of_8_bytes_moved")->Apply(regions);

void BM_vekiZigzagInv8x8_16s_C1(benchmark::State& state)
{
    AlignedArray<int16_t> src(64);
    AlignedArray<int16_t> dst(64);
    for (auto _ : state) {
        q3::vekiZigzagInv8x8_16s_C1(src.data(), dst.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_vekiZigzagInv8x8_16s_C1);

void BM_veksDivCRev_16u(benchmark::State& state)
{
    const auto len = static_cast<size_t>(state.range(0));
    AlignedArray<uint16_t> src(len);
    AlignedArray<uint16_t> dst(len);
    for (auto _ : state) {
        q3::veksDivCRev_16u(src.data(), 32768, dst.data(), static_cast<int>(len));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_veksDivCRev_16u)->ArgName("len")->Arg(64)->Arg(1024);

void BM_ownsMul_16u16s_PosSfs(benchmark::State& state)
{
    AlignedArray<uint16_t> table(64);
    AlignedArray<int16_t> block(64);
    std::fill(table.data(), table.data() + 64, uint16_t{32768});  // coefficients stay as they are
    for (auto _ : state) {
        q3::ownsMul_16u16s_PosSfs(table.data(), block.data(), block.data(), 64, 15);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * 64);
}
BENCHMARK(BM_ownsMul_16u16s_PosSfs);

}  // namespace
