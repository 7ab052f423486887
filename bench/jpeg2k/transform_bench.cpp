// The JPEG 2000 transforms: of components over planes in both inner caches and beyond them, whole tiles by all levels,
// and rows, columns and lifting steps beside memcpy. All samples are 0, and stay so in place however often they are
// transformed: no kernel looks at them, but floating-point numbers that grow or fade would slow down.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "peers/openjpeg_transforms.h"
#include "support/plane.h"
#include "vekj.h"

namespace {

using support::AlignedArray;
using support::Plane;

template <typename T>
void clear(T* data, size_t count)
{
    std::memset(data, 0, count * sizeof(T));
}

// Three planes, and as many pixels.
template <typename T>
struct Components {
    explicit Components(const benchmark::State& state)
        : count(static_cast<size_t>(state.range(0)) * static_cast<size_t>(state.range(1))),
          roi{static_cast<int>(state.range(0)), static_cast<int>(state.range(1))},
          step(roi.width * static_cast<int>(sizeof(T))),
          pixels(3 * count),
          planes{AlignedArray<T>(count), AlignedArray<T>(count), AlignedArray<T>(count)}
    {
        clear(pixels.data(), 3 * count);
        for (size_t c = 0; c < 3; ++c) {
            clear(planes[c].data(), count);
            pointers[c] = planes[c].data();
        }
    }
    size_t count;
    VekSize roi;
    int step;
    AlignedArray<T> pixels;
    AlignedArray<T> planes[3];
    T* pointers[3];
};

template <typename T, typename Call>
void overComponents(benchmark::State& state, const Call& call)
{
    Components<T> images(state);
    for (auto _ : state) {
        call(images);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(images.count * 6 * sizeof(T)));
}
void componentSizes(benchmark::internal::Benchmark* b)
{
    b->ArgNames({"w", "h"})->Args({64, 16})->Args({128, 64})->Args({4096, 4096});
}

#define BENCH_COMPONENTS(name, T, ...)                                   \
    void BM_##name(benchmark::State& state)                              \
    {                                                                    \
        overComponents<T>(state, [](Components<T>& i) { __VA_ARGS__; }); \
    }                                                                    \
    BENCHMARK(BM_##name)->Apply(componentSizes)
#define BENCH_IN_PLACE(name, T) BENCH_COMPONENTS(name, T, name(i.pointers, i.step, i.roi))
#define BENCH_TO_PLANES(name, T) BENCH_COMPONENTS(name, T, name(i.pixels.data(), 3 * i.step, i.pointers, i.step, i.roi))
#define BENCH_FROM_PLANES(name, T) \
    BENCH_COMPONENTS(name, T, name(i.pointers, i.step, i.pixels.data(), 3 * i.step, i.roi))

BENCH_IN_PLACE(vekiRCTFwd_JPEG2K_32s_P3IR, int32_t);
BENCH_COMPONENTS(peer_mct_encode, int32_t,
                 openjpeg::opj_mct_encode(i.pointers[0], i.pointers[1], i.pointers[2], i.count));
BENCH_IN_PLACE(vekiRCTInv_JPEG2K_32s_P3IR, int32_t);
BENCH_COMPONENTS(peer_mct_decode, int32_t,
                 openjpeg::opj_mct_decode(i.pointers[0], i.pointers[1], i.pointers[2], i.count));
BENCH_IN_PLACE(vekiICTFwd_JPEG2K_32f_P3IR, float);
BENCH_COMPONENTS(peer_mct_encode_real, float,
                 openjpeg::opj_mct_encode_real(i.pointers[0], i.pointers[1], i.pointers[2], i.count));
BENCH_IN_PLACE(vekiICTInv_JPEG2K_32f_P3IR, float);
BENCH_COMPONENTS(peer_mct_decode_real, float,
                 openjpeg::opj_mct_decode_real(i.pointers[0], i.pointers[1], i.pointers[2], i.count));
BENCH_IN_PLACE(vekiRCTFwd_JPEG2K_16s_P3IR, int16_t);
BENCH_IN_PLACE(vekiRCTInv_JPEG2K_16s_P3IR, int16_t);
BENCH_IN_PLACE(vekiICTFwd_JPEG2K_16s_P3IR, int16_t);
BENCH_IN_PLACE(vekiICTInv_JPEG2K_16s_P3IR, int16_t);
BENCH_IN_PLACE(vekiICTFwd_JPEG2K_32s_P3IR, int32_t);
BENCH_IN_PLACE(vekiICTInv_JPEG2K_32s_P3IR, int32_t);
BENCH_TO_PLANES(vekiRCTFwd_JPEG2K_16s_C3P3R, int16_t);
BENCH_TO_PLANES(vekiRCTFwd_JPEG2K_32s_C3P3R, int32_t);
BENCH_TO_PLANES(vekiICTFwd_JPEG2K_32f_C3P3R, float);
BENCH_FROM_PLANES(vekiRCTInv_JPEG2K_16s_P3C3R, int16_t);
BENCH_FROM_PLANES(vekiRCTInv_JPEG2K_32s_P3C3R, int32_t);
BENCH_FROM_PLANES(vekiICTInv_JPEG2K_32f_P3C3R, float);

// A square tile, by all five levels.
constexpr int levels = 5;

template <typename T, typename Call>
void overTile(benchmark::State& state, const Call& call)
{
    const int side = static_cast<int>(state.range(0));
    const auto count = static_cast<size_t>(side) * static_cast<size_t>(side);
    AlignedArray<T> data(count);
    clear(data.data(), count);
    for (auto _ : state) {
        call(data.data(), side);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(count));
}

template <typename T>
void forwardLevels(VekStatus (*transform)(T*, int, const VekRect*, uint8_t*), T* data, int side, uint8_t* scratch)
{
    for (int level = 0; level < levels; ++level) {
        const VekRect tile = {0, 0, side >> level, side >> level};
        transform(data, side * static_cast<int>(sizeof(T)), &tile, scratch);
    }
}
template <typename T>
void inverseLevels(VekStatus (*transform)(T*, int, const VekRect*, uint8_t*), T* data, int side, uint8_t* scratch)
{
    for (int level = levels - 1; level >= 0; --level) {
        const VekRect tile = {0, 0, side >> level, side >> level};
        transform(data, side * static_cast<int>(sizeof(T)), &tile, scratch);
    }
}

void tileSizes(benchmark::internal::Benchmark* b) { b->ArgName("side")->Arg(1024)->Arg(4096); }

#define BENCH_TILE(name, T, direction)                                                                          \
    void BM_##name(benchmark::State& state)                                                                     \
    {                                                                                                           \
        AlignedArray<uint8_t> scratch(1 << 16);                                                                 \
        overTile<T>(state, [&](T* data, int side) { direction##Levels<T>(name, data, side, scratch.data()); }); \
    }                                                                                                           \
    BENCHMARK(BM_##name)->Apply(tileSizes)
#define BENCH_PEER_TILE(name, call)                            \
    void BM_##name(benchmark::State& state)                    \
    {                                                          \
        overTile<int32_t>(state, [](int32_t* data, int side) { \
            openjpeg::Tile tile(data, side, levels);           \
            tile.call();                                       \
        });                                                    \
    }                                                          \
    BENCHMARK(BM_##name)->Apply(tileSizes)

BENCH_TILE(vekiWTFwd_B53_JPEG2K_32s_C1IR, int32_t, forward);
BENCH_PEER_TILE(peer_dwt_encode, encode);
BENCH_TILE(vekiWTInv_B53_JPEG2K_32s_C1IR, int32_t, inverse);
BENCH_PEER_TILE(peer_dwt_decode, decode);
BENCH_TILE(vekiWTFwd_D97_JPEG2K_32s_C1IR, int32_t, forward);
BENCH_PEER_TILE(peer_dwt_encode_real, encodeReal);
BENCH_TILE(vekiWTInv_D97_JPEG2K_32s_C1IR, int32_t, inverse);
BENCH_PEER_TILE(peer_dwt_decode_real, decodeReal);
BENCH_TILE(vekiWTFwd_B53_JPEG2K_16s_C1IR, int16_t, forward);
BENCH_TILE(vekiWTInv_B53_JPEG2K_16s_C1IR, int16_t, inverse);
BENCH_TILE(vekiWTFwd_D97_JPEG2K_16s_C1IR, int16_t, forward);
BENCH_TILE(vekiWTInv_D97_JPEG2K_16s_C1IR, int16_t, inverse);

// Rows and columns of 8 megabytes and more: as many bytes are read as written.
constexpr int margin = 8;  // samples, or rows, around the region for the extension of lines

template <typename T>
struct Bands {
    explicit Bands(const benchmark::State& state)
        : side(static_cast<int>(state.range(0))),
          natural(side + 2 * margin, side + 2 * margin),
          low(side + 2 * margin, side + 2 * margin),
          high(side + 2 * margin, side + 2 * margin)
    {
        const auto count = static_cast<size_t>(natural.step()) / sizeof(T) * static_cast<size_t>(side + 2 * margin);
        for (Plane<T>* plane : {&natural, &low, &high}) clear(plane->data(), count);
    }
    T* at(Plane<T>& plane) const
    {
        return plane.data() + static_cast<size_t>(plane.step()) / sizeof(T) * margin + margin;
    }

    int side;
    Plane<T> natural, low, high;
};
void lineSizes(benchmark::internal::Benchmark* b) { b->ArgName("side")->Arg(4096); }

template <typename T, typename Call>
void overBands(benchmark::State& state, const Call& call)
{
    Bands<T> bands(state);
    for (auto _ : state) {
        call(bands);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * int64_t{bands.side} * bands.side * 2 *
                            static_cast<int64_t>(sizeof(T)));
}

#define BENCH_BANDS(name, T, ...)                              \
    void BM_##name(benchmark::State& state)                    \
    {                                                          \
        overBands<T>(state, [](Bands<T>& b) { __VA_ARGS__; }); \
    }                                                          \
    BENCHMARK(BM_##name)->Apply(lineSizes)
#define BENCH_FORWARD(name, T, w, h)                                                                            \
    BENCH_BANDS(name, T,                                                                                        \
                name(b.at(b.natural), b.natural.step(), b.at(b.low), b.low.step(), b.at(b.high), b.high.step(), \
                     VekSize{w, h}, 0))
#define BENCH_INVERSE(name, T, w, h)                                                                         \
    BENCH_BANDS(name, T,                                                                                     \
                name(b.at(b.low), b.low.step(), b.at(b.high), b.high.step(), VekSize{w, h}, b.at(b.natural), \
                     b.natural.step(), 0))
#define BENCH_ROWS(filter, type, T)                                                    \
    BENCH_FORWARD(vekiWTFwdRow_##filter##_JPEG2K_##type##_C1R, T, b.side / 2, b.side); \
    BENCH_INVERSE(vekiWTInvRow_##filter##_JPEG2K_##type##_C1R, T, b.side / 2, b.side)
#define BENCH_COLUMNS(filter, type, T)                                                 \
    BENCH_FORWARD(vekiWTFwdCol_##filter##_JPEG2K_##type##_C1R, T, b.side, b.side / 2); \
    BENCH_INVERSE(vekiWTInvCol_##filter##_JPEG2K_##type##_C1R, T, b.side, b.side / 2)

BENCH_ROWS(B53, 16s, int16_t);
BENCH_ROWS(B53, 32s, int32_t);
BENCH_ROWS(D97, 16s, int16_t);
BENCH_ROWS(D97, 32s, int32_t);
BENCH_ROWS(D97, 32f, float);
BENCH_COLUMNS(B53, 16s, int16_t);
BENCH_COLUMNS(B53, 32s, int32_t);
BENCH_COLUMNS(D97, 32f, float);

// A column form fed with row pairs, each row of a block once.
template <typename T>
T* rowOf(Bands<T>& b, Plane<T>& plane, int y)
{
    return b.at(plane) + static_cast<size_t>(plane.step()) / sizeof(T) * static_cast<size_t>(y);
}
#define BENCH_LIFTS(type, T)                                                                                          \
    BENCH_BANDS(vekiWTFwdColLift_B53_JPEG2K_##type##_C1, T,                                                           \
                for (int k = 1; k < b.side / 2; ++k) vekiWTFwdColLift_B53_JPEG2K_##type##_C1(                         \
                    rowOf(b, b.natural, 2 * k), rowOf(b, b.natural, 2 * k + 1), rowOf(b, b.natural, 2 * k + 2),       \
                    rowOf(b, b.low, k), rowOf(b, b.high, k - 1), rowOf(b, b.high, k), b.side));                       \
    BENCH_BANDS(vekiWTInvColLift_B53_JPEG2K_##type##_C1, T,                                                           \
                for (int k = 1; k < b.side / 2; ++k) vekiWTInvColLift_B53_JPEG2K_##type##_C1(                         \
                    rowOf(b, b.low, k), rowOf(b, b.high, k - 1), rowOf(b, b.high, k), rowOf(b, b.natural, 2 * k - 2), \
                    rowOf(b, b.natural, 2 * k - 1), rowOf(b, b.natural, 2 * k), b.side))
#define BENCH_LIFTS97(type, T)                                                                                        \
    BENCH_BANDS(vekiWTFwdColLift_D97_JPEG2K_##type##_C1, T,                                                           \
                for (int k = 2; k < b.side / 2; ++k) vekiWTFwdColLift_D97_JPEG2K_##type##_C1(                         \
                    rowOf(b, b.natural, 2 * k), rowOf(b, b.natural, 2 * k + 1), rowOf(b, b.natural, 2 * k + 2),       \
                    rowOf(b, b.low, k - 1), rowOf(b, b.low, k), rowOf(b, b.high, k - 2), rowOf(b, b.high, k - 1),     \
                    rowOf(b, b.high, k), b.side));                                                                    \
    BENCH_BANDS(vekiWTInvColLift_D97_JPEG2K_##type##_C1, T,                                                           \
                for (int k = 2; k < b.side / 2; ++k) vekiWTInvColLift_D97_JPEG2K_##type##_C1(                         \
                    rowOf(b, b.low, k), rowOf(b, b.high, k - 1), rowOf(b, b.high, k), rowOf(b, b.natural, 2 * k - 4), \
                    rowOf(b, b.natural, 2 * k - 3), rowOf(b, b.natural, 2 * k - 2), rowOf(b, b.natural, 2 * k - 1),   \
                    rowOf(b, b.natural, 2 * k), b.side))
BENCH_LIFTS(16s, int16_t);
BENCH_LIFTS(32s, int32_t);
BENCH_LIFTS97(16s, int16_t);
BENCH_LIFTS97(32s, int32_t);
BENCH_LIFTS97(32f, float);

template <typename T>
void memcpyOfBands(benchmark::State& state)
{
    const auto count = static_cast<size_t>(state.range(0)) * static_cast<size_t>(state.range(0));
    AlignedArray<T> src(count), dst(count);
    for (auto _ : state) {
        std::memcpy(dst.data(), src.data(), count * sizeof(T));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(2 * count * sizeof(T)));
}
void BM_peer_memcpy_of_2_byte_bands(benchmark::State& state) { memcpyOfBands<int16_t>(state); }
BENCHMARK(BM_peer_memcpy_of_2_byte_bands)->Apply(lineSizes);
void BM_peer_memcpy_of_4_byte_bands(benchmark::State& state) { memcpyOfBands<int32_t>(state); }
BENCHMARK(BM_peer_memcpy_of_4_byte_bands)->Apply(lineSizes);

}  // namespace
