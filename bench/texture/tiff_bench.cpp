// Rows of TIFF pictures: photographs, runs and noise through PackBits, beside libtiff; samples of 16 bits as planes.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "peers/memory_tiff.h"
#include "vekj.h"

namespace {

constexpr int rowBytes = 2048;
constexpr int rows = 128;
constexpr size_t pictureBytes = size_t{rowBytes} * rows;

// Runs of one to `longest` bytes; for 0 slow shades with little noise, as photographs have them.
std::vector<uint8_t> drawnPicture(const benchmark::State& state)
{
    const auto longest = static_cast<unsigned>(state.range(0));
    std::vector<uint8_t> picture;
    std::mt19937 engine(9);
    while (picture.size() < pictureBytes) {
        if (longest == 0)
            picture.push_back(static_cast<uint8_t>(128 + 90 * std::sin(static_cast<double>(picture.size()) / 400) +
                                                   static_cast<double>(engine() % 3)));
        else
            picture.insert(picture.end(), 1 + engine() % longest, static_cast<uint8_t>(engine()));
    }
    picture.resize(pictureBytes);
    return picture;
}

// Every row by itself. Returns the length of what is packed.
int pack(const std::vector<uint8_t>& picture, std::vector<uint8_t>& packed)
{
    int position = 0;
    for (size_t y = 0; y < picture.size(); y += rowBytes)
        vekiPackBitsRow_TIFF_8u_C1(picture.data() + y, rowBytes, packed.data(), &position, 2 * rowBytes);
    return position;
}

void unpack(const std::vector<uint8_t>& packed, std::vector<uint8_t>& picture)
{
    int position = 0;
    for (size_t y = 0; y < picture.size(); y += rowBytes)
        vekiUnpackBitsRow_TIFF_8u_C1(packed.data(), &position, static_cast<int>(packed.size()), picture.data() + y,
                                     rowBytes);
}

void setBytes(benchmark::State& state) { state.SetBytesProcessed(state.iterations() * state.range(0) * rowBytes); }

// So many that no branch predictor learns them by heart.
void kinds(benchmark::internal::Benchmark* b) { b->ArgName("run")->Arg(0)->Arg(1)->Arg(8)->Arg(100); }

void BM_vekiPackBitsRow_TIFF_8u_C1(benchmark::State& state)
{
    const std::vector<uint8_t> picture = drawnPicture(state);
    std::vector<uint8_t> packed(2 * pictureBytes);
    for (auto _ : state) {
        pack(picture, packed);
        benchmark::ClobberMemory();
    }
    setBytes(state);
}
BENCHMARK(BM_vekiPackBitsRow_TIFF_8u_C1)->Apply(kinds);

void BM_peer_libtiff_pack(benchmark::State& state)
{
    std::vector<uint8_t> picture = drawnPicture(state);
    peer::MemoryTiff file(rowBytes, rows);
    for (auto _ : state) {
        if (!file.pack(picture))
            state.SkipWithError("libtiff packs nothing");
        benchmark::ClobberMemory();
    }
    setBytes(state);
}
BENCHMARK(BM_peer_libtiff_pack)->Apply(kinds);

void BM_vekiUnpackBitsRow_TIFF_8u_C1(benchmark::State& state)
{
    const std::vector<uint8_t> picture = drawnPicture(state);
    std::vector<uint8_t> packed(2 * pictureBytes), unpacked(pictureBytes);
    packed.resize(static_cast<size_t>(pack(picture, packed)));
    for (auto _ : state) {
        unpack(packed, unpacked);
        benchmark::ClobberMemory();
    }
    if (unpacked != picture)
        state.SkipWithError("unpacked to something else");
    setBytes(state);
}
BENCHMARK(BM_vekiUnpackBitsRow_TIFF_8u_C1)->Apply(kinds);

void BM_peer_libtiff_unpack(benchmark::State& state)
{
    std::vector<uint8_t> picture = drawnPicture(state);
    std::vector<uint8_t> unpacked(pictureBytes);
    peer::MemoryTiff file(rowBytes, rows);
    file.pack(picture);
    file.finish();
    for (auto _ : state) {
        if (!file.unpack(unpacked))
            state.SkipWithError("libtiff unpacks nothing");
        benchmark::ClobberMemory();
    }
    if (unpacked != picture)
        state.SkipWithError("libtiff unpacks to something else");
    setBytes(state);
}
BENCHMARK(BM_peer_libtiff_unpack)->Apply(kinds);

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
