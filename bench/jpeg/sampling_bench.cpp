// Chroma sampling of planes and of rows, beside the peers' row kernels. Sizes are those of the smaller plane, so that
// both ways have the same.
#include <benchmark/benchmark.h>

#include <vector>

#include "peers/turbo_kernels.h"
#include "support/plane.h"
#include "support/regions.h"
#include "vekj.h"

namespace {

using support::Plane;

// A plane with a row above and one below, a vector of columns on either side, and pointers to its rows, from row -1 on.
class BorderedPlane {
public:
    BorderedPlane(VekSize size, uint64_t seed) : memory_(size.width + 2 * border, size.height + 2, seed)
    {
        for (int y = 0; y < size.height + 2; ++y) rows_.push_back(memory_.data() + border + y * memory_.step());
    }
    uint8_t* data() const { return rows_[1]; }
    int step() const { return memory_.step(); }
    turbo::Rows rows() { return rows_.data() + 1; }

private:
    static constexpr int border = 64;
    Plane<uint8_t> memory_;
    std::vector<uint8_t*> rows_;
};

// The small plane and the large one: twice as wide, and `vertical` times as high.
struct Planes {
    Planes(VekSize size, int vertical)
        : smallSize(size), largeSize{2 * size.width, vertical * size.height}, small(smallSize, 1), large(largeSize, 2)
    {
    }
    VekSize smallSize, largeSize;
    BorderedPlane small, large;
};

template <typename Call>
void measure(benchmark::State& state, int vertical, bool shared, const Call& call)
{
    const VekSize size = support::startRegion(state, shared);
    Planes planes(size, vertical);
    for (auto _ : state) {
        call(planes);
        benchmark::ClobberMemory();
    }
    support::countPixels(state, planes.largeSize);
}

using PlaneMember = VekStatus(const uint8_t*, int, VekSize, uint8_t*, int, VekSize);
void planeDown(benchmark::State& state, PlaneMember* function, int vertical, bool shared)
{
    measure(state, vertical, shared, [=](Planes& p) {
        benchmark::DoNotOptimize(
            function(p.large.data(), p.large.step(), p.largeSize, p.small.data(), p.small.step(), p.smallSize));
    });
}
void planeUp(benchmark::State& state, PlaneMember* function, int vertical, bool shared)
{
    measure(state, vertical, shared, [=](Planes& p) {
        benchmark::DoNotOptimize(
            function(p.small.data(), p.small.step(), p.smallSize, p.large.data(), p.large.step(), p.largeSize));
    });
}

using RowMember = VekStatus(const uint8_t*, int, uint8_t*);
using TwoRowMember = VekStatus(const uint8_t*, const uint8_t*, int, uint8_t*);
void rowsDown(benchmark::State& state, RowMember* function)
{
    measure(state, 1, false, [=](Planes& p) {
        for (int y = 0; y < p.smallSize.height; ++y)
            benchmark::DoNotOptimize(function(p.large.rows()[y], p.largeSize.width, p.small.rows()[y]));
    });
}
void rowPairsDown(benchmark::State& state, TwoRowMember* function)
{
    measure(state, 2, false, [=](Planes& p) {
        for (int y = 0; y < p.smallSize.height; ++y)
            benchmark::DoNotOptimize(
                function(p.large.rows()[2 * y], p.large.rows()[2 * y + 1], p.largeSize.width, p.small.rows()[y]));
    });
}
void rowsUp(benchmark::State& state, RowMember* function)
{
    measure(state, 1, false, [=](Planes& p) {
        for (int y = 0; y < p.smallSize.height; ++y)
            benchmark::DoNotOptimize(function(p.small.rows()[y], p.smallSize.width, p.large.rows()[y]));
    });
}
void rowPairsUp(benchmark::State& state, TwoRowMember* function)
{
    measure(state, 2, false, [=](Planes& p) {
        for (int y = 0; y < p.largeSize.height; ++y)
            benchmark::DoNotOptimize(function(p.small.rows()[y / 2], p.small.rows()[y % 2 == 0 ? y / 2 - 1 : y / 2 + 1],
                                              p.smallSize.width, p.large.rows()[y]));
    });
}

void peerDown(benchmark::State& state, decltype(turbo::jsimd_h2v1_downsample_avx2)* function, int vertical)
{
    measure(state, vertical, false, [=](Planes& p) {
        function(static_cast<unsigned>(p.largeSize.width), p.largeSize.height,
                 static_cast<unsigned>(p.smallSize.height), static_cast<unsigned>(p.smallSize.width) / 8,
                 p.large.rows(), p.small.rows());
    });
}
void peerUp(benchmark::State& state, decltype(turbo::jsimd_h2v1_fancy_upsample_avx2)* function, int vertical)
{
    measure(state, vertical, false, [=](Planes& p) {
        turbo::Rows output = p.large.rows();
        function(p.largeSize.height, static_cast<unsigned>(p.smallSize.width), p.small.rows(), &output);
    });
}

using support::regions;
using support::sharedRegions;

#define VEK_BENCH(harness, name, ...) BENCHMARK_CAPTURE(harness, name, __VA_ARGS__)->Name("BM_" #name)
#define VEK_BENCH_PLANE(harness, name, vertical) VEK_BENCH(harness, name, name, vertical, false)->Apply(regions)
#define VEK_BENCH_SHARED(harness, name, vertical) VEK_BENCH(harness, name, name, vertical, true)->Apply(sharedRegions)
#define VEK_BENCH_ROWS(harness, name) VEK_BENCH(harness, name, name)->Apply(regions)
#define VEK_BENCH_PEER(harness, name, vertical) \
    VEK_BENCH(harness, peer_##name, turbo::jsimd_##name##_avx2, vertical)->Apply(regions)

VEK_BENCH_PLANE(planeDown, vekiSampleDownH2V1_JPEG_8u_C1R, 1);
VEK_BENCH_SHARED(planeDown, vekiSampleDownH2V1_JPEG_8u_C1R, 1);
VEK_BENCH_PLANE(planeDown, vekiSampleDownH2V2_JPEG_8u_C1R, 2);
VEK_BENCH_SHARED(planeDown, vekiSampleDownH2V2_JPEG_8u_C1R, 2);
VEK_BENCH_PLANE(planeUp, vekiSampleUpH2V1_JPEG_8u_C1R, 1);
VEK_BENCH_PLANE(planeUp, vekiSampleUpH2V2_JPEG_8u_C1R, 2);
VEK_BENCH_SHARED(planeUp, vekiSampleUpH2V2_JPEG_8u_C1R, 2);
VEK_BENCH_ROWS(rowsDown, vekiSampleDownRowH2V1_Box_JPEG_8u_C1);
VEK_BENCH_ROWS(rowPairsDown, vekiSampleDownRowH2V2_Box_JPEG_8u_C1);
VEK_BENCH_ROWS(rowsUp, vekiSampleUpRowH2V1_Triangle_JPEG_8u_C1);
VEK_BENCH_ROWS(rowPairsUp, vekiSampleUpRowH2V2_Triangle_JPEG_8u_C1);
VEK_BENCH_PEER(peerDown, h2v1_downsample, 1);
VEK_BENCH_PEER(peerDown, h2v2_downsample, 2);
VEK_BENCH_PEER(peerUp, h2v1_fancy_upsample, 1);
VEK_BENCH_PEER(peerUp, h2v2_fancy_upsample, 2);

}  // namespace
