// Colour conversion of whole images: every member on one thread, in the cache and beyond it, beside the peers that take
// the same pixels the same way; and those that share their rows among threads, on one and on two.
#include <benchmark/benchmark.h>

#include <utility>
#include <vector>

#include "peers/turbo_kernels.h"
#include "support/plane.h"
#include "support/regions.h"
#include "vekj.h"

namespace {

using support::Plane;

// An image in every layout. Rows have the room that the peers' whole vectors want. Rows of pixels begin 16 bytes past a
// 32-byte boundary: at the boundary the peers would write around the cache.
class Image {
public:
    Image(VekSize size, int pixelBytes)
        : size_(size), pixels_(pixelBytes * padded(size.width) + pastBoundary, size.height, 9)
    {
        for (size_t i = 0; i < 4; ++i) add(full_, size.width, size.height, i);
        for (size_t i = 0; i < 3; ++i) add(shared_, i == 0 ? size.width : size.width / 2, size.height, i + 4);
        for (int y = 0; y < size.height; ++y) pixelRows_.push_back(pixels() + y * pixels_.step());
    }

    VekSize size() const { return size_; }
    uint8_t* pixels() { return pixels_.data() + pastBoundary; }
    int pixelStep() const { return pixels_.step(); }
    uint8_t** planes() { return full_.origins.data(); }
    int step() const { return full_.steps[0]; }
    uint8_t** sharedPlanes() { return shared_.origins.data(); }  // chroma of half the width; every row of it is there
    const int* sharedSteps() const { return shared_.steps.data(); }

    turbo::Rows pixelRows() { return pixelRows_.data(); }
    turbo::PlaneRows planeRows() { return full_.rows(); }
    turbo::PlaneRows sharedPlaneRows() { return shared_.rows(); }

private:
    struct Planes {
        std::vector<Plane<uint8_t>> memory;
        std::vector<uint8_t*> origins;
        std::vector<int> steps;
        std::vector<std::vector<uint8_t*>> rowsOfPlane;
        std::vector<uint8_t**> planeRows;

        turbo::PlaneRows rows()
        {
            planeRows.clear();
            for (auto& rows : rowsOfPlane) planeRows.push_back(rows.data());
            return planeRows.data();
        }
    };
    static constexpr int pastBoundary = 16;
    // One vector more than whole vectors, lest the planes lie at multiples of a page from each other.
    static int padded(int width) { return (width + 127) / 64 * 64; }
    static void add(Planes& planes, int width, int height, uint64_t seed)
    {
        planes.memory.emplace_back(padded(width), height, seed);
        Plane<uint8_t>& plane = planes.memory.back();
        planes.origins.push_back(plane.data());
        planes.steps.push_back(plane.step());
        planes.rowsOfPlane.emplace_back();
        for (int y = 0; y < height; ++y) planes.rowsOfPlane.back().push_back(plane.data() + y * plane.step());
    }

    VekSize size_;
    Plane<uint8_t> pixels_;
    Planes full_;
    Planes shared_;
    std::vector<uint8_t*> pixelRows_;
};

// One call with each of the signatures that the members have.
using ToPixels = VekStatus(const uint8_t* const*, int, uint8_t*, int, VekSize);
using ToPixels4 = VekStatus(const uint8_t* const*, int, uint8_t*, int, VekSize, uint8_t);
using ToPacked = VekStatus(const uint8_t* const*, int, uint16_t*, int, VekSize);
using FromPixels = VekStatus(const uint8_t*, int, uint8_t* const*, int, VekSize);
using FromPacked = VekStatus(const uint16_t*, int, uint8_t* const*, int, VekSize);
using ToLuma = VekStatus(const uint8_t*, int, uint8_t*, int, VekSize);
using SharedToPixels = VekStatus(const uint8_t* const*, const int*, uint8_t*, int, VekSize);
using SharedToPixels4 = VekStatus(const uint8_t* const*, const int*, uint8_t*, int, VekSize, uint8_t);
using SharedFromPixels = VekStatus(const uint8_t*, int, uint8_t* const*, const int*, VekSize);

VekStatus call(ToPixels* f, Image& x) { return f(x.planes(), x.step(), x.pixels(), x.pixelStep(), x.size()); }
VekStatus call(ToPixels4* f, Image& x) { return f(x.planes(), x.step(), x.pixels(), x.pixelStep(), x.size(), 255); }
VekStatus call(ToPacked* f, Image& x)
{
    return f(x.planes(), x.step(), reinterpret_cast<uint16_t*>(x.pixels()), x.pixelStep(), x.size());
}
VekStatus call(FromPixels* f, Image& x) { return f(x.pixels(), x.pixelStep(), x.planes(), x.step(), x.size()); }
VekStatus call(FromPacked* f, Image& x)
{
    return f(reinterpret_cast<const uint16_t*>(x.pixels()), x.pixelStep(), x.planes(), x.step(), x.size());
}
VekStatus call(ToLuma* f, Image& x) { return f(x.pixels(), x.pixelStep(), x.planes()[0], x.step(), x.size()); }
VekStatus call(SharedToPixels* f, Image& x)
{
    return f(x.sharedPlanes(), x.sharedSteps(), x.pixels(), x.pixelStep(), x.size());
}
VekStatus call(SharedToPixels4* f, Image& x)
{
    return f(x.sharedPlanes(), x.sharedSteps(), x.pixels(), x.pixelStep(), x.size(), 255);
}
VekStatus call(SharedFromPixels* f, Image& x)
{
    return f(x.pixels(), x.pixelStep(), x.sharedPlanes(), x.sharedSteps(), x.size());
}

template <typename Function>
void member(benchmark::State& state, Function* function, int pixelBytes, bool shared)
{
    const VekSize size = support::startRegion(state, shared);
    Image image(size, pixelBytes);
    for (auto _ : state) {
        benchmark::DoNotOptimize(call(function, image));
        benchmark::ClobberMemory();
    }
    support::countPixels(state, size);
}

// Planes into planes, and the stream Y, Cb, Y, Cr into pixels: two images.
using PlanesToPlanes = VekStatus(const uint8_t* const*, int, uint8_t* const*, int, VekSize);
void planesToPlanes(benchmark::State& state, PlanesToPlanes* function, int sampleBytes, bool shared)
{
    const VekSize size = support::startRegion(state, shared);
    Image src(size, sampleBytes);
    Image dst(size, sampleBytes);
    for (auto _ : state) {
        benchmark::DoNotOptimize(function(src.planes(), src.step(), dst.planes(), dst.step(), size));
        benchmark::ClobberMemory();
    }
    support::countPixels(state, size);
}
void streamToPixels(benchmark::State& state, ToLuma* function, int pixelBytes, bool shared)
{
    const VekSize size = support::startRegion(state, shared);
    Image src(size, 2);
    Image dst(size, pixelBytes);
    for (auto _ : state) {
        benchmark::DoNotOptimize(function(src.pixels(), src.pixelStep(), dst.pixels(), dst.pixelStep(), size));
        benchmark::ClobberMemory();
    }
    support::countPixels(state, size);
}

void forwardPeer(benchmark::State& state, decltype(turbo::jsimd_rgb_ycc_convert_avx2)* convert, int pixelBytes)
{
    const VekSize size = support::startRegion(state, false);
    Image x(size, pixelBytes);
    for (auto _ : state) {
        convert(static_cast<unsigned>(size.width), x.pixelRows(), x.planeRows(), 0, size.height);
        benchmark::ClobberMemory();
    }
    support::countPixels(state, size);
}

void inversePeer(benchmark::State& state, decltype(turbo::jsimd_ycc_rgb_convert_avx2)* convert, int pixelBytes)
{
    const VekSize size = support::startRegion(state, false);
    Image x(size, pixelBytes);
    for (auto _ : state) {
        convert(static_cast<unsigned>(size.width), x.planeRows(), 0, x.pixelRows(), size.height);
        benchmark::ClobberMemory();
    }
    support::countPixels(state, size);
}

// A few rows at a time, as a codec does, so that the chroma is still near when it is halved.
void forwardSharedPeer(benchmark::State& state, decltype(turbo::jsimd_rgb_ycc_convert_avx2)* convert,
                       decltype(turbo::jsimd_h2v1_downsample_avx2)* halve, int pixelBytes, int rowsAtOnce)
{
    const VekSize size = support::startRegion(state, false);
    Image x(size, pixelBytes);
    Image strip({size.width, rowsAtOnce}, 1);
    const auto width = static_cast<unsigned>(size.width);
    uint8_t** const* const out = x.sharedPlaneRows();
    for (auto _ : state) {
        for (int y = 0; y < size.height; y += rowsAtOnce) {
            uint8_t** rows[3] = {out[0] + y, strip.planeRows()[1], strip.planeRows()[2]};
            convert(width, x.pixelRows() + y, rows, 0, rowsAtOnce);
            for (int i = 1; i < 3; ++i) halve(width, rowsAtOnce, 1, width / 16, rows[i], out[i] + y / rowsAtOnce);
        }
        benchmark::ClobberMemory();
    }
    support::countPixels(state, size);
}

void inverseSharedPeer(benchmark::State& state, decltype(turbo::jsimd_h2v1_merged_upsample_avx2)* convert,
                       int pixelBytes, int rowsAtOnce)
{
    const VekSize size = support::startRegion(state, false);
    Image x(size, pixelBytes);
    for (auto _ : state) {
        for (int y = 0; y < size.height; y += rowsAtOnce)
            convert(static_cast<unsigned>(size.width), x.sharedPlaneRows(), static_cast<unsigned>(y / rowsAtOnce),
                    x.pixelRows() + y);
        benchmark::ClobberMemory();
    }
    support::countPixels(state, size);
}

using support::regions;
using support::sharedRegions;

// Members that stay on the calling thread, and those that share their rows.
#define VEK_BENCH(harness, name, pixelBytes) \
    BENCHMARK_CAPTURE(harness, name, name, pixelBytes, false)->Name("BM_" #name)->Apply(regions)
#define VEK_BENCH_SHARED(harness, name, pixelBytes) \
    VEK_BENCH(harness, name, pixelBytes);           \
    BENCHMARK_CAPTURE(harness, name##_shared, name, pixelBytes, true)->Name("BM_" #name)->Apply(sharedRegions)
#define VEK_BENCH_PEER(harness, title, ...) \
    BENCHMARK_CAPTURE(harness, title, __VA_ARGS__)->Name("BM_peer_" #title)->Apply(regions)

VEK_BENCH_SHARED(planesToPlanes, vekiYCbCrToRGB_JPEG_8u_P3R, 1);
VEK_BENCH_SHARED(planesToPlanes, vekiRGBToYCbCr_JPEG_8u_P3R, 1);
VEK_BENCH_SHARED(planesToPlanes, vekiCMYKToYCCK_JPEG_8u_P4R, 1);
VEK_BENCH_SHARED(planesToPlanes, vekiYCCKToCMYK_JPEG_8u_P4R, 1);
VEK_BENCH_SHARED(member, vekiYCbCrToRGB_JPEG_8u_P3C3R, 3);
VEK_BENCH_SHARED(member, vekiYCbCrToBGR_JPEG_8u_P3C3R, 3);
VEK_BENCH_SHARED(member, vekiYCCKToCMYK_JPEG_8u_P4C4R, 4);
VEK_BENCH(member, vekiYCbCrToRGB555_JPEG_8u16u_P3C3R, 2);
VEK_BENCH(member, vekiYCbCrToBGR555_JPEG_8u16u_P3C3R, 2);
VEK_BENCH(member, vekiYCbCrToRGB565_JPEG_8u16u_P3C3R, 2);
VEK_BENCH(member, vekiYCbCrToBGR565_JPEG_8u16u_P3C3R, 2);
VEK_BENCH(member, vekiYCbCrToRGB_JPEG_8u_P3C4R, 4);
VEK_BENCH(member, vekiYCbCrToBGR_JPEG_8u_P3C4R, 4);
VEK_BENCH_SHARED(member, vekiRGBToYCbCr_JPEG_8u_C3P3R, 3);
VEK_BENCH_SHARED(member, vekiBGRToYCbCr_JPEG_8u_C3P3R, 3);
VEK_BENCH(member, vekiRGBToYCbCr_JPEG_8u_C4P3R, 4);
VEK_BENCH(member, vekiBGRToYCbCr_JPEG_8u_C4P3R, 4);
VEK_BENCH_SHARED(member, vekiCMYKToYCCK_JPEG_8u_C4P4R, 4);
VEK_BENCH(member, vekiRGB555ToYCbCr_JPEG_16u8u_C3P3R, 2);
VEK_BENCH(member, vekiBGR555ToYCbCr_JPEG_16u8u_C3P3R, 2);
VEK_BENCH(member, vekiRGB565ToYCbCr_JPEG_16u8u_C3P3R, 2);
VEK_BENCH(member, vekiBGR565ToYCbCr_JPEG_16u8u_C3P3R, 2);
VEK_BENCH_SHARED(member, vekiRGBToY_JPEG_8u_P3C1R, 1);
VEK_BENCH_SHARED(member, vekiRGBToY_JPEG_8u_C3C1R, 3);
VEK_BENCH_SHARED(member, vekiBGRToY_JPEG_8u_C3C1R, 3);
VEK_BENCH(member, vekiYCbCr422ToRGB_JPEG_8u_P3C3R, 3);
VEK_BENCH(member, vekiYCbCr422ToBGR_JPEG_8u_P3C3R, 3);
VEK_BENCH(member, vekiYCbCr411ToRGB_JPEG_8u_P3C3R, 3);
VEK_BENCH(member, vekiYCbCr411ToBGR_JPEG_8u_P3C3R, 3);
VEK_BENCH(member, vekiYCbCr422ToRGB_JPEG_8u_P3C4R, 4);
VEK_BENCH(member, vekiYCbCr422ToBGR_JPEG_8u_P3C4R, 4);
VEK_BENCH(member, vekiYCbCr411ToRGB_JPEG_8u_P3C4R, 4);
VEK_BENCH(member, vekiYCbCr411ToBGR_JPEG_8u_P3C4R, 4);
VEK_BENCH(member, vekiRGBToYCbCr422_JPEG_8u_C3P3R, 3);
VEK_BENCH(member, vekiBGRToYCbCr422_JPEG_8u_C3P3R, 3);
VEK_BENCH(member, vekiRGBToYCbCr422_JPEG_8u_C4P3R, 4);
VEK_BENCH(member, vekiBGRToYCbCr422_JPEG_8u_C4P3R, 4);
VEK_BENCH(member, vekiRGBToYCbCr411_JPEG_8u_C3P3R, 3);
VEK_BENCH(member, vekiBGRToYCbCr411_JPEG_8u_C3P3R, 3);
VEK_BENCH(member, vekiRGBToYCbCr411_JPEG_8u_C4P3R, 4);
VEK_BENCH(member, vekiBGRToYCbCr411_JPEG_8u_C4P3R, 4);
VEK_BENCH_SHARED(streamToPixels, vekiYCbCr422ToRGB_JPEG_8u_C2C3R, 3);

VEK_BENCH_PEER(forwardPeer, rgb_ycc_convert, turbo::jsimd_rgb_ycc_convert_avx2, 3);
VEK_BENCH_PEER(forwardPeer, bgr_ycc_convert, turbo::jsimd_extbgr_ycc_convert_avx2, 3);
VEK_BENCH_PEER(forwardPeer, rgbx_ycc_convert, turbo::jsimd_extrgbx_ycc_convert_avx2, 4);
VEK_BENCH_PEER(forwardPeer, bgrx_ycc_convert, turbo::jsimd_extbgrx_ycc_convert_avx2, 4);
VEK_BENCH_PEER(forwardPeer, rgb_gray_convert, turbo::jsimd_rgb_gray_convert_avx2, 3);
VEK_BENCH_PEER(forwardPeer, bgr_gray_convert, turbo::jsimd_extbgr_gray_convert_avx2, 3);
VEK_BENCH_PEER(inversePeer, ycc_rgb_convert, turbo::jsimd_ycc_rgb_convert_avx2, 3);
VEK_BENCH_PEER(inversePeer, ycc_bgr_convert, turbo::jsimd_ycc_extbgr_convert_avx2, 3);
VEK_BENCH_PEER(inversePeer, ycc_rgbx_convert, turbo::jsimd_ycc_extrgbx_convert_avx2, 4);
VEK_BENCH_PEER(inversePeer, ycc_bgrx_convert, turbo::jsimd_ycc_extbgrx_convert_avx2, 4);
VEK_BENCH_PEER(forwardSharedPeer, rgb_ycc_convert_h2v1_downsample, turbo::jsimd_rgb_ycc_convert_avx2,
               turbo::jsimd_h2v1_downsample_avx2, 3, 1);
VEK_BENCH_PEER(forwardSharedPeer, bgr_ycc_convert_h2v1_downsample, turbo::jsimd_extbgr_ycc_convert_avx2,
               turbo::jsimd_h2v1_downsample_avx2, 3, 1);
VEK_BENCH_PEER(forwardSharedPeer, rgbx_ycc_convert_h2v1_downsample, turbo::jsimd_extrgbx_ycc_convert_avx2,
               turbo::jsimd_h2v1_downsample_avx2, 4, 1);
VEK_BENCH_PEER(forwardSharedPeer, bgrx_ycc_convert_h2v1_downsample, turbo::jsimd_extbgrx_ycc_convert_avx2,
               turbo::jsimd_h2v1_downsample_avx2, 4, 1);
VEK_BENCH_PEER(forwardSharedPeer, rgb_ycc_convert_h2v2_downsample, turbo::jsimd_rgb_ycc_convert_avx2,
               turbo::jsimd_h2v2_downsample_avx2, 3, 2);
VEK_BENCH_PEER(forwardSharedPeer, bgr_ycc_convert_h2v2_downsample, turbo::jsimd_extbgr_ycc_convert_avx2,
               turbo::jsimd_h2v2_downsample_avx2, 3, 2);
VEK_BENCH_PEER(forwardSharedPeer, rgbx_ycc_convert_h2v2_downsample, turbo::jsimd_extrgbx_ycc_convert_avx2,
               turbo::jsimd_h2v2_downsample_avx2, 4, 2);
VEK_BENCH_PEER(forwardSharedPeer, bgrx_ycc_convert_h2v2_downsample, turbo::jsimd_extbgrx_ycc_convert_avx2,
               turbo::jsimd_h2v2_downsample_avx2, 4, 2);
VEK_BENCH_PEER(inverseSharedPeer, h2v1_merged_upsample_rgb, turbo::jsimd_h2v1_merged_upsample_avx2, 3, 1);
VEK_BENCH_PEER(inverseSharedPeer, h2v1_merged_upsample_bgr, turbo::jsimd_h2v1_extbgr_merged_upsample_avx2, 3, 1);
VEK_BENCH_PEER(inverseSharedPeer, h2v1_merged_upsample_rgbx, turbo::jsimd_h2v1_extrgbx_merged_upsample_avx2, 4, 1);
VEK_BENCH_PEER(inverseSharedPeer, h2v1_merged_upsample_bgrx, turbo::jsimd_h2v1_extbgrx_merged_upsample_avx2, 4, 1);
VEK_BENCH_PEER(inverseSharedPeer, h2v2_merged_upsample_rgb, turbo::jsimd_h2v2_merged_upsample_avx2, 3, 2);
VEK_BENCH_PEER(inverseSharedPeer, h2v2_merged_upsample_bgr, turbo::jsimd_h2v2_extbgr_merged_upsample_avx2, 3, 2);
VEK_BENCH_PEER(inverseSharedPeer, h2v2_merged_upsample_rgbx, turbo::jsimd_h2v2_extrgbx_merged_upsample_avx2, 4, 2);
VEK_BENCH_PEER(inverseSharedPeer, h2v2_merged_upsample_bgrx, turbo::jsimd_h2v2_extbgrx_merged_upsample_avx2, 4, 2);

}  // namespace
