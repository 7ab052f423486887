#include "jpeg_peer.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

#include <jpeglib.h>

#include "support/generators.h"

namespace peer {

namespace {

[[noreturn]] void throwMessage(j_common_ptr codec)
{
    char message[JMSG_LENGTH_MAX];
    codec->err->format_message(codec, message);
    throw std::runtime_error(message);
}

void ignoreMessage(j_common_ptr) {}

// The peer's error handler throws instead of ending the program.
jpeg_error_mgr* throwingErrors(jpeg_error_mgr& errors)
{
    jpeg_std_error(&errors);
    errors.error_exit = throwMessage;
    errors.output_message = ignoreMessage;
    return &errors;
}

struct Decompressor {
    explicit Decompressor(std::span<const uint8_t> file)
    {
        codec.err = throwingErrors(errors);
        jpeg_create_decompress(&codec);
        jpeg_mem_src(&codec, file.data(), static_cast<unsigned long>(file.size()));
        jpeg_read_header(&codec, TRUE);
    }
    ~Decompressor() { jpeg_destroy_decompress(&codec); }

    jpeg_error_mgr errors{};
    jpeg_decompress_struct codec{};
};

J_COLOR_SPACE storedSpace(Stored stored)
{
    switch (stored) {
        case Stored::Grey:
            return JCS_GRAYSCALE;
        case Stored::Rgb:
            return JCS_RGB;
        case Stored::Cmyk:
            return JCS_CMYK;
        case Stored::Ycck:
            return JCS_YCCK;
        default:
            return JCS_YCbCr;
    }
}

J_COLOR_SPACE inputSpace(int channels) { return channels == 1 ? JCS_GRAYSCALE : channels == 3 ? JCS_RGB : JCS_CMYK; }

std::vector<jpeg_scan_info> scanInfo(const std::vector<Scan>& scans)
{
    std::vector<jpeg_scan_info> result;
    for (const Scan& scan : scans) {
        jpeg_scan_info info{};
        info.comps_in_scan = static_cast<int>(scan.components.size());
        std::ranges::copy(scan.components, info.component_index);
        info.Ss = scan.begin;
        info.Se = scan.end;
        info.Ah = scan.high;
        info.Al = scan.low;
        result.push_back(info);
    }
    return result;
}

}  // namespace

Picture draw(int width, int height, int channels, Scene scene, uint64_t seed)
{
    Picture picture{width, height, channels, {}};
    picture.pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * static_cast<size_t>(channels));
    support::Random random(seed);
    size_t i = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double wave = std::sin(x * 0.11 + static_cast<double>(seed)) * std::cos(y * 0.07);
            const bool inDisc = (x % 40 - 20) * (x % 40 - 20) + (y % 40 - 20) * (y % 40 - 20) < 150;
            for (int c = 0; c < channels; ++c) {
                double value = 128 + 50 * wave * (c - 1) + 30 * std::sin((x + 2 * y) * 0.05 * (c + 1));
                value += inDisc ? 25 : 0;
                value += random.in(-6, 6);
                if (scene == Scene::Harsh) {
                    const int square = (x / 5 + y / 3 + c) % 2 != 0 ? 255 : 0;
                    value = (x / 16 + y / 16) % 3 == 0 ? random.in(0, 255) : square;
                }
                picture.pixels[i++] = static_cast<uint8_t>(std::clamp(value, 0.0, 255.0));
            }
        }
    }
    return picture;
}

std::vector<uint8_t> write(const Picture& picture, const WriteOptions& options)
{
    jpeg_error_mgr errors{};
    jpeg_compress_struct codec{};
    codec.err = throwingErrors(errors);
    jpeg_create_compress(&codec);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&codec, &bytes, &size);
    codec.image_width = static_cast<JDIMENSION>(picture.width);
    codec.image_height = static_cast<JDIMENSION>(picture.height);
    codec.input_components = picture.channels;
    codec.in_color_space = inputSpace(picture.channels);
    jpeg_set_defaults(&codec);
    jpeg_set_colorspace(&codec, storedSpace(options.stored));
    jpeg_set_quality(&codec, options.quality, TRUE);
    codec.dct_method = JDCT_ISLOW;
    codec.optimize_coding = options.optimise ? TRUE : FALSE;
    codec.restart_interval = static_cast<unsigned>(options.restartInterval);
    codec.write_JFIF_header = options.jfif ? TRUE : FALSE;
    codec.write_Adobe_marker = options.adobe ? TRUE : FALSE;
    for (int i = 0; i < codec.num_components; ++i) {
        const auto [h, v] = options.sampling.empty() ? std::pair(1, 1) : options.sampling[static_cast<size_t>(i)];
        codec.comp_info[i].h_samp_factor = h;
        codec.comp_info[i].v_samp_factor = v;
        if (options.extended) {
            codec.comp_info[i].dc_tbl_no = i;
            codec.comp_info[i].ac_tbl_no = i;
        }
    }
    if (options.extended) {  // table numbers above 1 make the peer write SOF1
        for (int i = 2; i < codec.num_components; ++i) {
            codec.dc_huff_tbl_ptrs[i] = jpeg_alloc_huff_table(reinterpret_cast<j_common_ptr>(&codec));
            codec.ac_huff_tbl_ptrs[i] = jpeg_alloc_huff_table(reinterpret_cast<j_common_ptr>(&codec));
            *codec.dc_huff_tbl_ptrs[i] = *codec.dc_huff_tbl_ptrs[1];
            *codec.ac_huff_tbl_ptrs[i] = *codec.ac_huff_tbl_ptrs[1];
        }
    }
    if (options.progressive)
        jpeg_simple_progression(&codec);
    std::vector<jpeg_scan_info> scans = scanInfo(options.scans);
    if (!scans.empty()) {
        codec.scan_info = scans.data();
        codec.num_scans = static_cast<int>(scans.size());
    }
    if (!options.interleaved) {
        scans.resize(static_cast<size_t>(codec.num_components));
        for (int i = 0; i < codec.num_components; ++i) {
            scans[static_cast<size_t>(i)].comps_in_scan = 1;
            scans[static_cast<size_t>(i)].component_index[0] = i;
            scans[static_cast<size_t>(i)].Se = 63;
        }
        codec.scan_info = scans.data();
        codec.num_scans = codec.num_components;
    }
    std::vector<uint8_t> file;
    try {
        jpeg_start_compress(&codec, TRUE);
        while (codec.next_scanline < codec.image_height) {
            JSAMPROW row = const_cast<JSAMPROW>(picture.pixels.data()) + static_cast<size_t>(codec.next_scanline) *
                                                                             static_cast<size_t>(picture.width) *
                                                                             static_cast<size_t>(picture.channels);
            jpeg_write_scanlines(&codec, &row, 1);
        }
        jpeg_finish_compress(&codec);
        file.assign(bytes, bytes + size);
    } catch (...) {
        jpeg_destroy_compress(&codec);
        std::free(bytes);
        throw;
    }
    jpeg_destroy_compress(&codec);
    std::free(bytes);
    return file;
}

Picture read(std::span<const uint8_t> file, int scale, Chroma chroma)
{
    Decompressor reader(file);
    jpeg_decompress_struct& codec = reader.codec;
    codec.dct_method = JDCT_ISLOW;
    codec.do_fancy_upsampling = chroma == Chroma::Smooth ? TRUE : FALSE;
    codec.scale_num = 1;
    codec.scale_denom = static_cast<unsigned>(scale);
    codec.out_color_space = inputSpace(codec.num_components);
    jpeg_start_decompress(&codec);
    Picture picture{
        static_cast<int>(codec.output_width), static_cast<int>(codec.output_height), codec.output_components, {}};
    const size_t step = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.channels);
    picture.pixels.resize(step * static_cast<size_t>(picture.height));
    while (codec.output_scanline < codec.output_height) {
        JSAMPROW row = picture.pixels.data() + codec.output_scanline * step;
        jpeg_read_scanlines(&codec, &row, 1);
    }
    jpeg_finish_decompress(&codec);
    return picture;
}

Coefficients readCoefficients(std::span<const uint8_t> file)
{
    Decompressor reader(file);
    jpeg_decompress_struct& codec = reader.codec;
    jvirt_barray_ptr* arrays = jpeg_read_coefficients(&codec);
    Coefficients coefficients;
    for (int c = 0; c < codec.num_components; ++c) {
        const jpeg_component_info& info = codec.comp_info[c];
        Coefficients::Component component;
        component.blocksWide = static_cast<int>(info.width_in_blocks);
        component.blocksHigh = static_cast<int>(info.height_in_blocks);
        for (JDIMENSION y = 0; y < info.height_in_blocks; ++y) {
            JBLOCKARRAY rows =
                codec.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&codec), arrays[c], y, 1, FALSE);
            for (JDIMENSION x = 0; x < info.width_in_blocks; ++x) {
                std::array<int16_t, 64> block;
                std::memcpy(block.data(), rows[0][x], sizeof block);
                component.blocks.push_back(block);
            }
        }
        coefficients.components.push_back(std::move(component));
    }
    jpeg_finish_decompress(&codec);
    return coefficients;
}

}  // namespace peer
