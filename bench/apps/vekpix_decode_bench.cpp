// Files in memory become pixels in memory: the application beside the packaged JPEG library's programming interface
// with the same choices (accurate integer transform, replicated chroma). One thread unless the name tells.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <memory>
#include <tuple>
#include <vector>

#include <jpeglib.h>

#include "jpeg/decoder.h"
#include "jpeg_peer.h"

namespace {

constexpr int width = 6000;
constexpr int height = 4000;  // 24 megapixels

enum Kind : int64_t { Grey, Yuv444, Yuv422, Yuv420, Yuv440 };

std::vector<uint8_t> makeFile(int64_t kind, int quality, int restartRows, bool progressive)
{
    // One tile, repeated: detail and flat parts as a photograph has them, made quickly.
    const int channels = kind == Grey ? 1 : 3;
    const int side = 1000;
    const peer::Picture tile = peer::draw(side, side, channels, peer::Scene::Soft);
    peer::Picture picture{width, height, channels, {}};
    picture.pixels.reserve(static_cast<size_t>(width) * height * static_cast<size_t>(channels));
    const auto rowBytes = static_cast<std::ptrdiff_t>(side * channels);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; x += side) {
            const auto row = tile.pixels.begin() + y % side * rowBytes;
            picture.pixels.insert(picture.pixels.end(), row, row + rowBytes);
        }
    peer::WriteOptions options;
    options.quality = quality;
    options.progressive = progressive;
    options.stored = kind == Grey ? peer::Stored::Grey : peer::Stored::YCbCr;
    const std::pair<int, int> luma = kind == Yuv422   ? std::pair(2, 1)
                                     : kind == Yuv420 ? std::pair(2, 2)
                                     : kind == Yuv440 ? std::pair(1, 2)
                                                      : std::pair(1, 1);
    options.sampling = {luma, {1, 1}, {1, 1}};
    const int mcuWidth = 8 * luma.first;
    options.restartInterval = restartRows * ((width + mcuWidth - 1) / mcuWidth);
    return peer::write(picture, options);
}

const std::vector<uint8_t>& file(int64_t kind, int quality, int restartRows = 0, bool progressive = false)
{
    static std::map<std::tuple<int64_t, int, int, bool>, std::vector<uint8_t>> files;
    std::vector<uint8_t>& made = files[{kind, quality, restartRows, progressive}];
    if (made.empty())
        made = makeFile(kind, quality, restartRows, progressive);
    return made;
}

void countPixels(benchmark::State& state, const std::vector<uint8_t>& bytes)
{
    state.SetItemsProcessed(state.iterations() * int64_t{width} * height);
    state.counters["bits_per_pixel"] = static_cast<double>(bytes.size()) * 8 / (double{width} * height);
}

void decode(benchmark::State& state, const std::vector<uint8_t>& bytes, const vekpix::jpeg::DecodeOptions& options)
{
    const std::unique_ptr<uint8_t[]> pixels(new uint8_t[static_cast<size_t>(width) * height * 3]);
    for (auto _ : state) {
        vekpix::jpeg::Decoder decoder(bytes, options);
        const size_t step = decoder.shape().rowBytes();
        uint8_t* at = pixels.get();
        while (const int rows = decoder.readBand(at, step)) at += static_cast<size_t>(rows) * step;
        benchmark::ClobberMemory();
    }
    countPixels(state, bytes);
}

}  // namespace

static void BM_vekpix_decode(benchmark::State& state)
{
    decode(state, file(state.range(0), static_cast<int>(state.range(1))), {1, 1, vekpix::jpeg::Upsampling::Box});
}

static void BM_vekpix_decode_smooth(benchmark::State& state)
{
    decode(state, file(state.range(0), static_cast<int>(state.range(1))), {});
}

const std::vector<uint8_t>& progressiveFile(const benchmark::State& state)
{
    return file(state.range(0), static_cast<int>(state.range(1)), 0, true);
}

static void BM_vekpix_decode_progressive(benchmark::State& state)
{
    decode(state, progressiveFile(state), {1, 1, vekpix::jpeg::Upsampling::Box});
}

static void decodeByPeer(benchmark::State& state, const std::vector<uint8_t>& bytes, bool smooth)
{
    const std::unique_ptr<uint8_t[]> pixels(new uint8_t[static_cast<size_t>(width) * height * 3]);
    for (auto _ : state) {
        jpeg_error_mgr errors;
        jpeg_decompress_struct codec;
        codec.err = jpeg_std_error(&errors);
        jpeg_create_decompress(&codec);
        jpeg_mem_src(&codec, bytes.data(), static_cast<unsigned long>(bytes.size()));
        jpeg_read_header(&codec, TRUE);
        codec.dct_method = JDCT_ISLOW;
        codec.do_fancy_upsampling = smooth ? TRUE : FALSE;
        jpeg_start_decompress(&codec);
        const size_t step = static_cast<size_t>(codec.output_width) * static_cast<size_t>(codec.output_components);
        JSAMPROW rows[16];
        while (codec.output_scanline < codec.output_height) {
            for (size_t i = 0; i < 16; ++i) rows[i] = pixels.get() + (codec.output_scanline + i) * step;
            jpeg_read_scanlines(&codec, rows, 16);
        }
        jpeg_finish_decompress(&codec);
        jpeg_destroy_decompress(&codec);
        benchmark::ClobberMemory();
    }
    countPixels(state, bytes);
}

static void BM_peer_decode(benchmark::State& state)
{
    decodeByPeer(state, file(state.range(0), static_cast<int>(state.range(1))), false);
}

static void BM_peer_decode_smooth(benchmark::State& state)
{
    decodeByPeer(state, file(state.range(0), static_cast<int>(state.range(1))), true);
}

static void BM_peer_decode_progressive(benchmark::State& state) { decodeByPeer(state, progressiveFile(state), false); }

static void BM_vekpix_decode_threads(benchmark::State& state)
{
    decode(state, file(Yuv420, 90, static_cast<int>(state.range(1))), {1, static_cast<int>(state.range(0))});
}

static void BM_vekpix_decode_scale(benchmark::State& state)
{
    decode(state, file(Yuv420, 90), {static_cast<int>(state.range(0)), 1});
}

static void kindsAndQualities(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"kind", "quality"})->Unit(benchmark::kMillisecond);
    for (const int64_t kind : {Yuv420, Yuv422, Yuv444, Yuv440, Grey})
        for (const int64_t quality : {75, 90}) bench->Args({kind, quality});
}
static void subsampledKinds(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"kind", "quality"})->Unit(benchmark::kMillisecond);
    for (const int64_t kind : {Yuv420, Yuv422, Yuv440})
        for (const int64_t quality : {75, 90}) bench->Args({kind, quality});
}
BENCHMARK(BM_vekpix_decode)->Apply(kindsAndQualities);
BENCHMARK(BM_peer_decode)->Apply(kindsAndQualities);
BENCHMARK(BM_vekpix_decode_smooth)->Apply(subsampledKinds);
BENCHMARK(BM_peer_decode_smooth)->Apply(subsampledKinds);
static void progressiveKinds(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"kind", "quality"})->Unit(benchmark::kMillisecond);
    for (const int64_t kind : {Yuv420, Yuv444, Grey})
        for (const int64_t quality : {75, 90}) bench->Args({kind, quality});
}
BENCHMARK(BM_vekpix_decode_progressive)->Apply(progressiveKinds);
BENCHMARK(BM_peer_decode_progressive)->Apply(progressiveKinds);
BENCHMARK(BM_vekpix_decode_threads)
    ->ArgNames({"threads", "restart_rows"})
    ->ArgsProduct({{1, 2}, {0, 1}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BM_vekpix_decode_scale)->ArgName("scale")->Arg(2)->Arg(4)->Arg(8)->Unit(benchmark::kMillisecond);
