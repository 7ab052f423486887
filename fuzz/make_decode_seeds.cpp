// Writes the seeds of vekpix_decode_fuzz: small files of every kind that the application reads. Usage: DIRECTORY
#include <cstdio>
#include <fstream>
#include <string>

#include "apps/vekpix/jpeg_peer.h"
#include "image/depth_rows.h"
#include "image/memory_rows.h"
#include "jpeg/encoder.h"

int main(int argc, char** argv)
{
    using peer::Scene;
    using peer::Stored;
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s DIRECTORY\n", argv[0]);
        return 1;
    }
    const auto store = [&](const std::string& name, const std::vector<uint8_t>& file) {
        std::ofstream out(std::string(argv[1]) + "/" + name + ".jpg", std::ios::binary);
        out.write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
    };
    const auto save = [&](const std::string& name, const peer::Picture& picture, const peer::WriteOptions& options) {
        store(name, peer::write(picture, options));
    };
    // Kinds that the independent codec does not write.
    using vekpix::jpeg::EncodeOptions;
    const auto saveDeep = [&](const std::string& name, int channels, int bits, const auto& choose) {
        const peer::Picture soft = peer::draw(17, 9, channels, Scene::Soft);
        vekpix::Raster picture(vekpix::Shape{soft.width, soft.height, channels, bits});
        for (size_t i = 0; i < soft.pixels.size(); ++i) {
            const int value = bits == 8 ? soft.pixels[i] : soft.pixels[i] << (bits - 8) | soft.pixels[i] % 7;
            vekpix::setSample(picture.pixels.data(), i, picture.shape.sampleBytes(), value);
        }
        EncodeOptions options;
        options.quality = 40;
        choose(options);
        vekpix::MemoryRows rows(picture);
        vekpix::MemorySink sink;
        vekpix::jpeg::encode(rows, sink, options);
        store(name, sink.bytes());
    };
    const peer::Picture colour = peer::draw(35, 21, 3, Scene::Soft);
    const peer::Picture harsh = peer::draw(19, 17, 3, Scene::Harsh);
    const peer::Picture grey = peer::draw(35, 21, 1, Scene::Soft);
    const peer::Picture inks = peer::draw(17, 9, 4, Scene::Soft);
    save("grey", grey, {.quality = 40, .stored = Stored::Grey, .optimise = true});
    save("grey_restart", grey, {.quality = 40, .stored = Stored::Grey, .restartInterval = 2, .optimise = true});
    save("444", colour, {.quality = 30, .optimise = true});
    save("422", colour, {.quality = 30, .sampling = {{2, 1}, {1, 1}, {1, 1}}, .optimise = true});
    save("420", colour, {.quality = 30, .sampling = {{2, 2}, {1, 1}, {1, 1}}});
    save("420_restart", colour,
         {.quality = 30, .sampling = {{2, 2}, {1, 1}, {1, 1}}, .restartInterval = 3, .optimise = true});
    save("440", colour, {.quality = 30, .sampling = {{1, 2}, {1, 1}, {1, 1}}, .optimise = true});
    save("411", colour, {.quality = 30, .sampling = {{4, 1}, {1, 1}, {1, 1}}, .optimise = true});
    save("mixed", colour, {.quality = 30, .sampling = {{2, 2}, {2, 1}, {1, 2}}, .optimise = true});
    save("scans", colour,
         {.quality = 30, .sampling = {{2, 2}, {1, 1}, {1, 1}}, .optimise = true, .interleaved = false});
    save("scans_restart", colour, {.quality = 30, .restartInterval = 1, .optimise = true, .interleaved = false});
    save("progressive", colour, {.quality = 30, .sampling = {{2, 2}, {1, 1}, {1, 1}}, .progressive = true});
    save("progressive_restart", colour, {.quality = 40, .restartInterval = 3, .progressive = true});
    save("progressive_grey", grey, {.quality = 60, .stored = Stored::Grey, .progressive = true});
    save("progressive_bits", harsh,
         {.quality = 90,
          .scans = {{{0, 1, 2}, 0, 0, 0, 3},
                    {{0}, 1, 9, 0, 3},
                    {{0}, 1, 9, 3, 2},
                    {{0, 1, 2}, 0, 0, 3, 2},
                    {{0}, 1, 9, 2, 1},
                    {{1}, 1, 63, 0, 0},
                    {{0}, 10, 63, 0, 1},
                    {{0, 1, 2}, 0, 0, 2, 1},
                    {{0}, 1, 9, 1, 0},
                    {{0}, 10, 63, 1, 0}}});
    save("progressive_inks", inks,
         {.quality = 30, .stored = Stored::Ycck, .progressive = true, .jfif = false, .adobe = true});
    save("extended", colour, {.quality = 30, .optimise = true, .extended = true});
    save("harsh", harsh, {.quality = 90, .optimise = true});
    save("rgb", harsh, {.quality = 20, .stored = Stored::Rgb, .optimise = true, .jfif = false, .adobe = true});
    save("cmyk", inks, {.quality = 30, .stored = Stored::Cmyk, .optimise = true, .jfif = false, .adobe = true});
    save("ycck", inks,
         {.quality = 30,
          .stored = Stored::Ycck,
          .sampling = {{2, 2}, {1, 1}, {1, 1}, {2, 2}},
          .optimise = true,
          .jfif = false,
          .adobe = true});
    saveDeep("extended_12", 1, 12, [](EncodeOptions&) {});
    saveDeep("extended_12_420", 3, 12, [](EncodeOptions& options) { options.restartInterval = 2; });
    saveDeep("extended_12_inks", 4, 12, [](EncodeOptions&) {});
    saveDeep("lossless", 1, 8, [](EncodeOptions& options) { options.lossless = true; });
    saveDeep("lossless_rgb_restart", 3, 8, [](EncodeOptions& options) {
        options.lossless = true;
        options.predictor = 4;
        options.restartInterval = 3;
    });
    saveDeep("lossless_16", 1, 16, [](EncodeOptions& options) {
        options.lossless = true;
        options.predictor = 7;
    });
    saveDeep("lossless_12_point_transform", 3, 12, [](EncodeOptions& options) {
        options.lossless = true;
        options.predictor = 6;
        options.pointTransform = 4;
    });
    saveDeep("lossless_inks", 4, 8, [](EncodeOptions& options) {
        options.lossless = true;
        options.predictor = 2;
    });
    return 0;
}
