// Pixels in memory become files in memory: the application beside the packaged JPEG library's programming interface
// with the same choices (accurate integer transform, quality, sampling, tables). One thread unless the name tells.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <utility>

#include <jpeglib.h>

#include "image/memory_rows.h"
#include "jpeg/encoder.h"
#include "jpeg_peer.h"

namespace {

using vekpix::MemoryRows;
using vekpix::MemorySink;
using vekpix::Raster;
using vekpix::Shape;
using vekpix::jpeg::ChromaSampling;
using vekpix::jpeg::EncodeOptions;

// Of 3 : 2 sides; one tile, repeated: detail and flat parts as a photograph has them, made quickly.
const Raster& drawn(int width, int channels)
{
    static std::map<std::pair<int, int>, Raster> pictures;
    const auto known = pictures.find({width, channels});
    if (known != pictures.end())
        return known->second;
    const int side = width / 6;
    const peer::Picture tile = peer::draw(side, side, channels, peer::Scene::Soft);
    Raster picture(Shape{width, 4 * side, channels});
    const size_t tileBytes = static_cast<size_t>(side) * static_cast<size_t>(channels);
    for (int y = 0; y < picture.shape.height; ++y)
        for (size_t x = 0; x < 6; ++x)
            std::copy_n(tile.pixels.data() + tileBytes * static_cast<size_t>(y % side), tileBytes,
                        picture.row(y) + tileBytes * x);
    return pictures.emplace(std::pair(width, channels), std::move(picture)).first->second;
}

constexpr int large = 6000;  // 24 megapixels
constexpr int small = 600;   // 0.24

enum Kind : int64_t { Grey, Yuv444, Yuv422, Yuv420 };

int channelsOf(int64_t kind) { return kind == Grey ? 1 : 3; }

ChromaSampling samplingOf(int64_t kind)
{
    return kind == Yuv444   ? ChromaSampling::Full444
           : kind == Yuv422 ? ChromaSampling::Half422
                            : ChromaSampling::Quarter420;
}

void countPixels(benchmark::State& state, const Raster& picture, size_t bytes)
{
    const int64_t pixels = int64_t{picture.shape.width} * picture.shape.height;
    state.SetItemsProcessed(state.iterations() * pixels);
    state.counters["bits_per_pixel"] = static_cast<double>(bytes) * 8 / static_cast<double>(pixels);
}

// The first run is not measured: memory that the system hands out for the first time can double its time.
void encode(benchmark::State& state, const Raster& picture, const EncodeOptions& options)
{
    MemorySink sink;
    const auto run = [&] {
        MemoryRows rows(picture);
        sink.bytes().clear();
        vekpix::jpeg::encode(rows, sink, options);
        benchmark::ClobberMemory();
    };
    run();
    for (auto _ : state) run();
    countPixels(state, picture, sink.bytes().size());
}

}  // namespace

static void BM_vekpix_encode(benchmark::State& state)
{
    EncodeOptions options;
    options.sampling = samplingOf(state.range(1));
    options.quality = static_cast<int>(state.range(2));
    options.optimizeTables = state.range(3) != 0;
    encode(state, drawn(static_cast<int>(state.range(0)), channelsOf(state.range(1))), options);
}

static void encodeByPeer(benchmark::State& state, bool progressive)
{
    const int64_t kind = state.range(1);
    const Raster& picture = drawn(static_cast<int>(state.range(0)), channelsOf(kind));
    unsigned long size = 0;
    unsigned char* bytes = nullptr;
    const auto run = [&] {
        jpeg_error_mgr errors;
        jpeg_compress_struct codec;
        codec.err = jpeg_std_error(&errors);
        jpeg_create_compress(&codec);
        unsigned char* const given = bytes;
        jpeg_mem_dest(&codec, &bytes, &size);  // from the second time on, into the memory of the time before
        codec.image_width = static_cast<JDIMENSION>(picture.shape.width);
        codec.image_height = static_cast<JDIMENSION>(picture.shape.height);
        codec.input_components = picture.shape.channels;
        codec.in_color_space = picture.shape.channels == 1 ? JCS_GRAYSCALE : JCS_RGB;
        jpeg_set_defaults(&codec);
        jpeg_set_quality(&codec, static_cast<int>(state.range(2)), TRUE);
        codec.dct_method = JDCT_ISLOW;
        codec.optimize_coding = state.range(3) != 0 ? TRUE : FALSE;
        codec.comp_info[0].h_samp_factor = kind == Yuv422 || kind == Yuv420 ? 2 : 1;
        codec.comp_info[0].v_samp_factor = kind == Yuv420 ? 2 : 1;
        if (progressive)
            jpeg_simple_progression(&codec);
        jpeg_start_compress(&codec, TRUE);
        std::array<JSAMPROW, 16> rows;
        while (codec.next_scanline < codec.image_height) {
            const JDIMENSION count = std::min<JDIMENSION>(16, codec.image_height - codec.next_scanline);
            for (JDIMENSION i = 0; i < count; ++i)
                rows[i] = const_cast<JSAMPROW>(picture.row(static_cast<int>(codec.next_scanline + i)));
            jpeg_write_scanlines(&codec, rows.data(), count);
        }
        jpeg_finish_compress(&codec);
        jpeg_destroy_compress(&codec);
        if (given != bytes)
            std::free(given);
        benchmark::ClobberMemory();
    };
    run();
    for (auto _ : state) run();
    countPixels(state, picture, size);
    std::free(bytes);
}

static void BM_peer_encode(benchmark::State& state) { encodeByPeer(state, false); }

static void BM_vekpix_encode_progressive(benchmark::State& state)
{
    EncodeOptions options;
    options.sampling = samplingOf(state.range(1));
    options.quality = static_cast<int>(state.range(2));
    options.progressive = true;
    encode(state, drawn(static_cast<int>(state.range(0)), channelsOf(state.range(1))), options);
}

static void BM_peer_encode_progressive(benchmark::State& state) { encodeByPeer(state, true); }

static void BM_vekpix_encode_threads(benchmark::State& state)
{
    EncodeOptions options;
    options.threads = static_cast<int>(state.range(0));
    options.restartInterval = static_cast<int>(state.range(1));
    encode(state, drawn(large, 3), options);
}

static void sizesAndKinds(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"width", "kind", "quality", "optimize"})->Unit(benchmark::kMillisecond);
    for (const int64_t kind : {Yuv420, Yuv422, Yuv444, Grey})
        for (const int64_t quality : {75, 90}) bench->Args({large, kind, quality, 0});
    bench->Args({large, Yuv420, 75, 1})->Args({small, Yuv420, 75, 0})->Args({small, Yuv444, 90, 0});
}
BENCHMARK(BM_vekpix_encode)->Apply(sizesAndKinds);
BENCHMARK(BM_peer_encode)->Apply(sizesAndKinds);
static void progressiveKinds(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"width", "kind", "quality", "optimize"})->Unit(benchmark::kMillisecond);
    for (const int64_t kind : {Yuv420, Yuv444, Grey})
        for (const int64_t quality : {75, 90}) bench->Args({large, kind, quality, 1});
}
BENCHMARK(BM_vekpix_encode_progressive)->Apply(progressiveKinds);
BENCHMARK(BM_peer_encode_progressive)->Apply(progressiveKinds);
BENCHMARK(BM_vekpix_encode_threads)
    ->ArgNames({"threads", "restart"})
    ->ArgsProduct({{1, 2}, {0, 375}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
