// A drawn picture as a JPEG file of the packaged library.
#ifndef VEK_BENCH_JPEG_DRAWN_FILE_H
#define VEK_BENCH_JPEG_DRAWN_FILE_H

#include <stdio.h>  // jpeglib.h wants FILE

#include <jpeglib.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

namespace drawn {

constexpr int blocksPerRow = 64;
constexpr int blockRows = 64;
constexpr int blockCount = blocksPerRow * blockRows;
constexpr int pictureWidth = 8 * blocksPerRow;
constexpr int pictureHeight = 8 * blockRows;

// Grey, with smooth shades, edges and some noise; sequential, or progressive in the given scans.
inline std::vector<uint8_t> greyFile(int quality, const std::vector<jpeg_scan_info>& scans = {})
{
    std::vector<uint8_t> pixels(static_cast<size_t>(pictureWidth) * pictureHeight);
    std::mt19937 engine(1);
    for (int y = 0; y < pictureHeight; ++y)
        for (int x = 0; x < pictureWidth; ++x) {
            const double shade =
                110 + 60 * std::sin(x / 37.0) * std::cos(y / 23.0) + ((x / 48 + y / 40) % 3 == 0 ? 40 : 0);
            pixels[static_cast<size_t>(y * pictureWidth + x)] =
                static_cast<uint8_t>(shade + static_cast<int>(engine() % 13));
        }
    jpeg_compress_struct c;
    jpeg_error_mgr errors;
    c.err = jpeg_std_error(&errors);
    jpeg_create_compress(&c);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&c, &bytes, &size);
    c.image_width = pictureWidth;
    c.image_height = pictureHeight;
    c.input_components = 1;
    c.in_color_space = JCS_GRAYSCALE;
    jpeg_set_defaults(&c);
    jpeg_set_quality(&c, quality, TRUE);
    if (!scans.empty()) {
        c.scan_info = scans.data();
        c.num_scans = static_cast<int>(scans.size());
    }
    jpeg_start_compress(&c, TRUE);
    while (c.next_scanline < c.image_height) {
        JSAMPROW row = pixels.data() + static_cast<size_t>(c.next_scanline) * pictureWidth;
        jpeg_write_scanlines(&c, &row, 1);
    }
    jpeg_finish_compress(&c);
    std::vector<uint8_t> file(bytes, bytes + size);
    jpeg_destroy_compress(&c);
    free(bytes);
    return file;
}

}  // namespace drawn

#endif
