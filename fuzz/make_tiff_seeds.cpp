// Writes the seeds of tiff_decode_fuzz: small files of every kind that the application reads. Usage: DIRECTORY
#include <cstdio>
#include <fstream>
#include <string>

#include "tiff_files.h"

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s DIRECTORY\n", argv[0]);
        return 1;
    }
    for (int choice = 0; choice < 32; ++choice) {
        const support::TiffKind kind = {.bigEndian = (choice & 1) != 0,
                                        .packed = (choice & 2) != 0,
                                        .packedAcrossRows = choice % 8 == 7,
                                        .separate = (choice & 12) == 12,
                                        .whiteIsZero = (choice & 12) == 8,
                                        .rowsPerStrip = 1 + choice % 5 * 3};
        const vekpix::Raster picture =
            support::drawnRaster(5 + choice, 9, (choice & 4) != 0 ? 3 : 1, (choice & 16) != 0 ? 16 : 8);
        const support::Bytes file = support::TiffFile(picture, kind).bytes();
        std::ofstream out(std::string(argv[1]) + "/kind_" + std::to_string(choice) + ".tif", std::ios::binary);
        out.write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
    }
    return 0;
}
