// The MCU conversions on one row of MCUs: 256 pixels stay in the first-level cache, 65536 leave the second. With an
// `offset` of 2 bytes the planes are not aligned, which chooses another arithmetic in some members. The peers take the
// same pixels to the same blocks in their several passes, and back from samples of 8 bits.
#include <benchmark/benchmark.h>

#include <array>
#include <type_traits>
#include <vector>

#include "peers/turbo_kernels.h"
#include "support/plane.h"
#include "vekj.h"

namespace {

using support::AlignedArray;
using support::Plane;

struct Layout {
    int mcuWidth, mcuHeight, lumaBlocks;
};
constexpr Layout s444 = {8, 8, 1};
constexpr Layout s422 = {16, 8, 2};
constexpr Layout s411 = {16, 16, 4};

// Blocks and pixels of a row of MCUs. Four planes of blocks, each of whole MCUs one after the other.
class McuRow {
public:
    McuRow(const benchmark::State& state, Layout layout, int pixelBytes)
        : layout_(layout),
          pixelBytes_(pixelBytes),
          mcus_(static_cast<int>(state.range(0)) / layout.mcuWidth),
          misalignment_(static_cast<size_t>(state.range(1)) / sizeof(int16_t)),
          pixels_(mcus_ * layout.mcuWidth * pixelBytes, layout.mcuHeight)
    {
        for (int i = 0; i < 4; ++i) {
            planes_.emplace_back(64 * static_cast<size_t>(mcus_ * blocks(i)) + 16, static_cast<uint64_t>(i));
            for (size_t k = 0; k < planes_.back().size(); ++k)  // the nominal range
                planes_.back()[k] = static_cast<int16_t>(static_cast<int8_t>(planes_.back()[k]));
        }
    }

    // A codec's loop: the pointers go on by additions. More than that would count, as an MCU of 4:4:4 takes some 40
    // cycles; the peers take a whole row of MCUs in one call.
    template <typename Call>
    void overMcus(const Call& call)
    {
        std::array<int16_t*, 4> planes;
        for (size_t i = 0; i < 4; ++i) planes[i] = planes_[i].data() + misalignment_;
        uint8_t* pPixels = pixels_.data();
        const int step = pixels_.step();
        const int mcuBytes = layout_.mcuWidth * pixelBytes_;
        const int lumaSamples = 64 * layout_.lumaBlocks;
        for (int m = mcus_; m > 0; --m) {
            call(planes.data(), pPixels, step);
            planes[0] += lumaSamples;
            planes[1] += 64;
            planes[2] += 64;
            planes[3] += lumaSamples;
            pPixels += mcuBytes;
        }
    }
    int64_t pixels() const { return int64_t{mcus_} * layout_.mcuWidth * layout_.mcuHeight; }

private:
    int blocks(int plane) const { return plane == 0 || plane == 3 ? layout_.lumaBlocks : 1; }

    Layout layout_;
    int pixelBytes_;
    int mcus_;
    size_t misalignment_;
    std::vector<AlignedArray<int16_t>> planes_;
    Plane<uint8_t> pixels_;
};

template <auto function>
using PixelOf = std::conditional_t<std::is_invocable_v<decltype(function), const int16_t* const*, uint8_t*, int> ||
                                       std::is_invocable_v<decltype(function), const uint8_t*, int, int16_t* const*>,
                                   uint8_t, uint16_t>;

template <auto function, Layout layout, int pixelBytes>
void decodeMember(benchmark::State& state)
{
    McuRow row(state, layout, pixelBytes);
    for (auto _ : state) {
        row.overMcus([](int16_t* const* planes, uint8_t* pixels, int step) {
            function(planes, reinterpret_cast<PixelOf<function>*>(pixels), step);
        });
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * row.pixels());
}
template <auto function, Layout layout, int pixelBytes>
void encodeMember(benchmark::State& state)
{
    McuRow row(state, layout, pixelBytes);
    for (auto _ : state) {
        row.overMcus([](int16_t* const* planes, uint8_t* pixels, int step) {
            function(reinterpret_cast<const PixelOf<function>*>(pixels), step, planes);
        });
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * row.pixels());
}

// Rows of samples of 8 bits and of pixels, with the pointers that the peers want. Rows of pixels begin 16 bytes past a
// 32-byte boundary: at the boundary the peers would write around the cache.
struct PeerRow {
    PeerRow(const benchmark::State& state, Layout l)
        : layout(l), width(static_cast<int>(state.range(0))), rgb(3 * width + pastBoundary, l.mcuHeight)
    {
        for (size_t i = 0; i < 6; ++i) {
            samples.emplace_back(width, layout.mcuHeight, i);
            for (int y = 0; y < layout.mcuHeight; ++y) rows[i].push_back(samples[i].data() + y * samples[i].step());
        }
        for (int y = 0; y < layout.mcuHeight; ++y) rgbRows.push_back(rgb.data() + pastBoundary + y * rgb.step());
        for (size_t i = 0; i < 3; ++i) {
            fullPlanes[i] = rows[i].data();
            sharedPlanes[i] = i == 0 ? rows[0].data() : rows[i + 3].data();
            blocks.emplace_back(64 * static_cast<size_t>(width / 8) * static_cast<size_t>(layout.mcuHeight / 8));
        }
    }
    int64_t pixels() const { return int64_t{width} * layout.mcuHeight; }

    static constexpr int pastBoundary = 16;
    Layout layout;
    int width;
    Plane<uint8_t> rgb;
    std::vector<uint8_t*> rgbRows;
    std::vector<Plane<uint8_t>> samples;  // Y, Cb, Cr of each pixel; of the chromas again, shared by pixels
    std::vector<uint8_t*> rows[6];
    uint8_t** fullPlanes[3];
    uint8_t** sharedPlanes[3];
    std::vector<AlignedArray<int16_t>> blocks;
};

void encodePeer(benchmark::State& state, Layout layout)
{
    PeerRow row(state, layout);
    const auto width = static_cast<unsigned>(row.width);
    const bool shared = layout.lumaBlocks > 1;
    for (auto _ : state) {
        turbo::jsimd_rgb_ycc_convert_avx2(width, row.rgbRows.data(), row.fullPlanes, 0, layout.mcuHeight);
        for (int i = 1; i < 3 && shared; ++i) {
            const auto downsample =
                layout.mcuHeight == 8 ? turbo::jsimd_h2v1_downsample_avx2 : turbo::jsimd_h2v2_downsample_avx2;
            downsample(width, layout.mcuHeight, 8, width / 16, row.fullPlanes[i], row.sharedPlanes[i]);
        }
        for (int i = 0; i < 3; ++i) {
            const bool luma = i == 0 || !shared;
            int16_t* block = row.blocks[static_cast<size_t>(i)].data();
            for (int y = 0; y < (luma ? layout.mcuHeight : 8); y += 8)
                for (unsigned x = 0; x < (luma ? width : width / 2); x += 8, block += 64)
                    turbo::jsimd_convsamp_avx2((luma ? row.fullPlanes : row.sharedPlanes)[i] + y, x, block);
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * row.pixels());
}

void decodePeer(benchmark::State& state, Layout layout)
{
    PeerRow row(state, layout);
    const auto width = static_cast<unsigned>(row.width);
    for (auto _ : state) {
        for (int i = 1; i < 3 && layout.lumaBlocks > 1; ++i) {
            const auto upsample =
                layout.mcuHeight == 8 ? turbo::jsimd_h2v1_upsample_avx2 : turbo::jsimd_h2v2_upsample_avx2;
            upsample(layout.mcuHeight, width, row.sharedPlanes[i], &row.fullPlanes[i]);
        }
        turbo::jsimd_ycc_rgb_convert_avx2(width, row.fullPlanes, 0, row.rgbRows.data(), layout.mcuHeight);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * row.pixels());
}

void decodeMergedPeer(benchmark::State& state, Layout layout)
{
    PeerRow row(state, layout);
    const auto width = static_cast<unsigned>(row.width);
    const int rowsAtOnce = layout.mcuHeight / 8;
    const auto merged =
        rowsAtOnce == 1 ? turbo::jsimd_h2v1_merged_upsample_avx2 : turbo::jsimd_h2v2_merged_upsample_avx2;
    for (auto _ : state) {
        for (unsigned group = 0; group < 8; ++group)
            merged(width, row.sharedPlanes, group, row.rgbRows.data() + group * static_cast<unsigned>(rowsAtOnce));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * row.pixels());
}

void sizes(benchmark::internal::Benchmark* b)
{
    b->ArgNames({"width", "offset"})->Args({256, 0})->Args({65536, 0})->Args({256, 2});
}
#define VEK_BENCH_DECODE(name, layout, pixelBytes) \
    BENCHMARK_TEMPLATE(decodeMember, name, layout, pixelBytes)->Name("BM_" #name)->Apply(sizes)
#define VEK_BENCH_ENCODE(name, layout, pixelBytes) \
    BENCHMARK_TEMPLATE(encodeMember, name, layout, pixelBytes)->Name("BM_" #name)->Apply(sizes)
#define VEK_BENCH_PEER(function, title, layout) \
    BENCHMARK_CAPTURE(function, layout, layout)->Name("BM_peer_" title)->Apply(sizes)

VEK_BENCH_DECODE(vekiYCbCr444ToRGBLS_MCU_16s8u_P3C3R, s444, 3);
VEK_BENCH_PEER(decodePeer, "upsample_ycc_rgb_444", s444);
VEK_BENCH_DECODE(vekiYCbCr422ToRGBLS_MCU_16s8u_P3C3R, s422, 3);
VEK_BENCH_PEER(decodePeer, "upsample_ycc_rgb_422", s422);
VEK_BENCH_PEER(decodeMergedPeer, "merged_upsample_422", s422);
VEK_BENCH_DECODE(vekiYCbCr411ToRGBLS_MCU_16s8u_P3C3R, s411, 3);
VEK_BENCH_PEER(decodePeer, "upsample_ycc_rgb_411", s411);
VEK_BENCH_PEER(decodeMergedPeer, "merged_upsample_411", s411);
VEK_BENCH_DECODE(vekiYCbCr444ToBGRLS_MCU_16s8u_P3C3R, s444, 3);
VEK_BENCH_DECODE(vekiYCbCr422ToBGRLS_MCU_16s8u_P3C3R, s422, 3);
VEK_BENCH_DECODE(vekiYCbCr411ToBGRLS_MCU_16s8u_P3C3R, s411, 3);
VEK_BENCH_DECODE(vekiYCbCr444ToBGR555LS_MCU_16s16u_P3C3R, s444, 2);
VEK_BENCH_DECODE(vekiYCbCr422ToBGR555LS_MCU_16s16u_P3C3R, s422, 2);
VEK_BENCH_DECODE(vekiYCbCr411ToBGR555LS_MCU_16s16u_P3C3R, s411, 2);
VEK_BENCH_DECODE(vekiYCbCr444ToBGR565LS_MCU_16s16u_P3C3R, s444, 2);
VEK_BENCH_DECODE(vekiYCbCr422ToBGR565LS_MCU_16s16u_P3C3R, s422, 2);
VEK_BENCH_DECODE(vekiYCbCr411ToBGR565LS_MCU_16s16u_P3C3R, s411, 2);
VEK_BENCH_DECODE(vekiYCCK444ToCMYKLS_MCU_16s8u_P4C4R, s444, 4);
VEK_BENCH_DECODE(vekiYCCK422ToCMYKLS_MCU_16s8u_P4C4R, s422, 4);
VEK_BENCH_DECODE(vekiYCCK411ToCMYKLS_MCU_16s8u_P4C4R, s411, 4);
VEK_BENCH_DECODE(vekiSampleUp444LS_MCU_16s8u_P3C3R, s444, 3);
VEK_BENCH_DECODE(vekiSampleUp422LS_MCU_16s8u_P3C3R, s422, 3);
VEK_BENCH_DECODE(vekiSampleUp411LS_MCU_16s8u_P3C3R, s411, 3);
VEK_BENCH_DECODE(vekiJoin422LS_MCU_16s8u_P3C2R, s422, 2);
VEK_BENCH_ENCODE(vekiRGBToYCbCr444LS_MCU_8u16s_C3P3R, s444, 3);
VEK_BENCH_PEER(encodePeer, "rgb_ycc_downsample_convsamp_444", s444);
VEK_BENCH_ENCODE(vekiRGBToYCbCr422LS_MCU_8u16s_C3P3R, s422, 3);
VEK_BENCH_PEER(encodePeer, "rgb_ycc_downsample_convsamp_422", s422);
VEK_BENCH_ENCODE(vekiRGBToYCbCr411LS_MCU_8u16s_C3P3R, s411, 3);
VEK_BENCH_PEER(encodePeer, "rgb_ycc_downsample_convsamp_411", s411);
VEK_BENCH_ENCODE(vekiBGRToYCbCr444LS_MCU_8u16s_C3P3R, s444, 3);
VEK_BENCH_ENCODE(vekiBGRToYCbCr422LS_MCU_8u16s_C3P3R, s422, 3);
VEK_BENCH_ENCODE(vekiBGRToYCbCr411LS_MCU_8u16s_C3P3R, s411, 3);
VEK_BENCH_ENCODE(vekiBGR555ToYCbCr444LS_MCU_16u16s_C3P3R, s444, 2);
VEK_BENCH_ENCODE(vekiBGR555ToYCbCr422LS_MCU_16u16s_C3P3R, s422, 2);
VEK_BENCH_ENCODE(vekiBGR555ToYCbCr411LS_MCU_16u16s_C3P3R, s411, 2);
VEK_BENCH_ENCODE(vekiBGR565ToYCbCr444LS_MCU_16u16s_C3P3R, s444, 2);
VEK_BENCH_ENCODE(vekiBGR565ToYCbCr422LS_MCU_16u16s_C3P3R, s422, 2);
VEK_BENCH_ENCODE(vekiBGR565ToYCbCr411LS_MCU_16u16s_C3P3R, s411, 2);
VEK_BENCH_ENCODE(vekiCMYKToYCCK444LS_MCU_8u16s_C4P4R, s444, 4);
VEK_BENCH_ENCODE(vekiCMYKToYCCK422LS_MCU_8u16s_C4P4R, s422, 4);
VEK_BENCH_ENCODE(vekiCMYKToYCCK411LS_MCU_8u16s_C4P4R, s411, 4);
VEK_BENCH_ENCODE(vekiSampleDown444LS_MCU_8u16s_C3P3R, s444, 3);
VEK_BENCH_ENCODE(vekiSampleDown422LS_MCU_8u16s_C3P3R, s422, 3);
VEK_BENCH_ENCODE(vekiSampleDown411LS_MCU_8u16s_C3P3R, s411, 3);
VEK_BENCH_ENCODE(vekiSplit422LS_MCU_8u16s_C2P3R, s422, 2);

}  // namespace
