// A picture becomes a JPEG file (ITU T.81, Annexes F.1 and G.1), in bands from top to bottom. Grey and YCbCr files are
// JFIF files; those of other colours tell them by Adobe's marker, and have inks inverted, as is usual.
#ifndef VEKPIX_JPEG_ENCODER_H
#define VEKPIX_JPEG_ENCODER_H

#include <functional>

#include "image/rows.h"
#include "io/byte_sink.h"
#include "jpeg/scan_script.h"

namespace vekpix::jpeg {

enum class ChromaSampling { Full444, Half422, Quarter420 };

// How chroma loses the samples that its sampling leaves out.
enum class ChromaDownsampling {
    Blocks,  // MCU by MCU from the exact chroma of its pixels
    Rows,    // rows of 8-bit chroma; halves are rounded up and down in turn, so that no shade grows brighter
};

struct EncodeOptions {
    int quality = 85;  // 1 .. 100: scales the tables of T.81, Annex K
    ChromaSampling sampling = ChromaSampling::Quarter420;
    ChromaDownsampling downsampling = ChromaDownsampling::Blocks;
    int restartInterval = 0;      // MCUs, or rows of a lossless file, between restart markers; 0: none
    bool optimizeTables = false;  // Huffman tables made for the picture, by a second pass over it
    bool progressive = false;     // in scans of its own choice if there are none in `scans`
    ScanScript scans;             // the scans to write, sequential or progressive
    bool grey = false;            // of a colour picture, code the luminance only
    bool colourTransform = true;  // YCbCr and YCCK; else RGB and CMYK, in which no component is subsampled
    int threads = 1;              // threads that may work on the picture; the file does not depend on it
    bool lossless = false;        // codes samples of 8 to 16 bits as they are; quality and sampling do not matter then
    int predictor = 1;            // of a lossless file, 1 .. 7 (T.81, Table H.1)
    int pointTransform = 0;       // low bits that a lossless file leaves out after all; fewer than the samples have
    std::function<void(int rows)> onRows;  // hears of rows done, encodePasses() times the height in all
};

// Whether all coefficients are made before the first scan is written.
inline bool storesCoefficients(const EncodeOptions& options) { return options.progressive || !options.scans.empty(); }

// The usual tables are too small for pictures of 12 bits.
inline bool makesTables(const Shape& picture, const EncodeOptions& options)
{
    return options.optimizeTables || options.lossless || picture.bits > 8;
}
inline int encodePasses(const Shape& picture, const EncodeOptions& options)
{
    return makesTables(picture, options) || storesCoefficients(options) ? 2 : 1;
}

// An Error if the options or the picture's size do not suit the format, or if its samples have neither 8 nor 12 bits
// and are not to be coded without loss.
// Memory: a few bands; if tables are made, the whole picture too if it comes from a source that cannot be rewound; with
// more scans than one, all coefficients and the coded scans.
void encode(RowReader& picture, ByteSink& file, const EncodeOptions& options);

}  // namespace vekpix::jpeg

#endif
