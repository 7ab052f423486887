// The marker segments of a file (ITU T.81, Annex B.2; T.871, T.872).
#ifndef VEKPIX_JPEG_MARKER_WRITER_H
#define VEKPIX_JPEG_MARKER_WRITER_H

#include <vector>

#include "io/byte_sink.h"
#include "jpeg/entropy_writer.h"
#include "jpeg/marker_reader.h"
#include "jpeg/mcu_transform.h"
#include "jpeg/standard_tables.h"

namespace vekpix::jpeg {

constexpr int dcTableClass = 0;
constexpr int acTableClass = 1;

struct ScanHeader {
    struct Component {
        int id = 0;
        int dcSlot = 0;
        int acSlot = 0;
    };
    std::vector<Component> components;
    int spectralBegin = 0;  // as in Scan
    int spectralEnd = 63;
    int high = 0;
    int low = 0;
};

// The start of the image, before all segments.
void writeStart(ByteSink& sink);
// The application marker that tells a file's colours: JFIF's for grey and YCbCr, else Adobe's.
void writeColours(ByteSink& sink, ColourModel colours);
void writeQuantTable(ByteSink& sink, int slot, const QuantizerSteps& steps);
void writeFrame(ByteSink& sink, const Frame& frame);
void writeHuffmanTable(ByteSink& sink, int tableClass, int slot, const CodeLists& lists);
void writeRestartInterval(ByteSink& sink, int mcus);
void writeScanHeader(ByteSink& sink, const ScanHeader& header);

// The frame of a picture that is cut into MCUs, for a sequential file.
Frame frameOf(const McuLayout& layout);

// From the start of the image to its quantisation tables. A file without chroma has the first table of each kind only.
void writeBeginning(ByteSink& sink, const McuLayout& layout, const std::array<QuantizerSteps, 2>& steps);

// Everything in front of the data of a file's only scan.
void writeHeaders(ByteSink& sink, const McuLayout& layout, const std::array<QuantizerSteps, 2>& steps,
                  const ScanTables& tables, int restartInterval);

// What follows the scan's data.
void writeEnd(ByteSink& sink);

}  // namespace vekpix::jpeg

#endif
