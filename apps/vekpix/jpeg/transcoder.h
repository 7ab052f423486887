// A JPEG file becomes another one of the same coefficients: progressive or sequential, with other tables.
#ifndef VEKPIX_JPEG_TRANSCODER_H
#define VEKPIX_JPEG_TRANSCODER_H

#include <cstdint>
#include <functional>
#include <span>

#include "io/byte_sink.h"
#include "jpeg/scan_script.h"

namespace vekpix::jpeg {

struct TranscodeOptions {
    bool progressive = true;               // else sequential
    ScanScript scans;                      // of that process; empty: the usual ones
    bool optimizeTables = false;           // of a sequential file; a progressive one has its own in any case
    int restartInterval = 0;               // MCUs between restart markers; 0: none
    int threads = 1;                       // threads that may work on the file; the outcome does not depend on it
    std::function<void(int rows)> onRows;  // hears of rows done, the height in all
};

// The number of rows of the picture in a file.
int heightOf(std::span<const uint8_t> file);

// Quantisation tables, application segments and comments go along. An Error if the file is damaged, or if the scans do
// not suit it or leave coefficients out. Memory: the coefficients of the whole picture, and the new file.
void transcode(std::span<const uint8_t> file, ByteSink& output, const TranscodeOptions& options);

}  // namespace vekpix::jpeg

#endif
