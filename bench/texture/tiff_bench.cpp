// Rows of TIFF pictures: runs and noise through PackBits, and samples of 16 bits as planes.
#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <vector>

#include "reference/tiff/pack_bits.h"
#include "vekj.h"

namespace {

constexpr int rowBytes = 65536;

// Runs of one to `longest` bytes.
std::vector<uint8_t> drawnRow(int longest)
{
    std::vector<uint8_t> row;
    std::mt19937 engine(9);
    while (row.size() < rowBytes)
        row.insert(row.end(), 1 + engine() % static_cast<unsigned>(longest), static_cast<uint8_t>(engine()));
    row.resize(rowBytes);
    return row;
}

void BM_vekiPackBitsRow_TIFF_8u_C1(benchmark::State& state)
{
    const std::vector<uint8_t> row = drawnRow(static_cast<int>(state.range(0)));
    std::vector<uint8_t> packed(2 * rowBytes);
    for (auto _ : state) {
        int position = 0;
        vekiPackBitsRow_TIFF_8u_C1(row.data(), rowBytes, packed.data(), &position, 2 * rowBytes);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * rowBytes);
}
BENCHMARK(BM_vekiPackBitsRow_TIFF_8u_C1)->ArgName("run")->Arg(1)->Arg(8)->Arg(100);

void BM_vekiUnpackBitsRow_TIFF_8u_C1(benchmark::State& state)
{
    const std::vector<uint8_t> row = drawnRow(static_cast<int>(state.range(0)));
    std::vector<uint8_t> packed, unpacked(rowBytes);
    for (const auto& packet : model::packetsOf(row)) packed.insert(packed.end(), packet.begin(), packet.end());
    for (auto _ : state) {
        int position = 0;
        vekiUnpackBitsRow_TIFF_8u_C1(packed.data(), &position, static_cast<int>(packed.size()), unpacked.data(),
                                     rowBytes);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * rowBytes);
}
BENCHMARK(BM_vekiUnpackBitsRow_TIFF_8u_C1)->ArgName("run")->Arg(1)->Arg(8)->Arg(100);

constexpr int samples = 1 << 20;

void BM_vekiSplitRow_TIFF_16u8u_C1(benchmark::State& state)
{
    const std::vector<uint16_t> in(samples, 0x1234);
    std::vector<uint8_t> high(samples), low(samples);
    uint8_t* planes[2] = {high.data(), low.data()};
    for (auto _ : state) {
        vekiSplitRow_TIFF_16u8u_C1(in.data(), planes, samples);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_vekiSplitRow_TIFF_16u8u_C1);

void BM_vekiJoinRow_TIFF_8u16u_C1(benchmark::State& state)
{
    const std::vector<uint8_t> high(samples, 0x12), low(samples, 0x34);
    const uint8_t* planes[2] = {high.data(), low.data()};
    std::vector<uint16_t> out(samples);
    for (auto _ : state) {
        vekiJoinRow_TIFF_8u16u_C1(planes, out.data(), samples);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_vekiJoinRow_TIFF_8u16u_C1);

void BM_peer_memcpy_of_deep_samples(benchmark::State& state)
{
    const std::vector<uint16_t> in(samples, 0x1234);
    std::vector<uint16_t> out(samples);
    for (auto _ : state) {
        std::memcpy(out.data(), in.data(), 2 * samples);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_peer_memcpy_of_deep_samples);

}  // namespace
