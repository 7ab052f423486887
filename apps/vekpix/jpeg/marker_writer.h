// The marker segments of a file (ITU T.81, Annex B.2; T.871, T.872).
#ifndef VEKPIX_JPEG_MARKER_WRITER_H
#define VEKPIX_JPEG_MARKER_WRITER_H

#include "io/byte_sink.h"
#include "jpeg/entropy_writer.h"
#include "jpeg/mcu_transform.h"
#include "jpeg/standard_tables.h"

namespace vekpix::jpeg {

// Everything in front of the scan's data: from the start of the image to the scan's header. A file without
// chroma has the first table of each kind only.
void writeHeaders(ByteSink& sink, const McuLayout& layout, const std::array<QuantizerSteps, 2>& steps,
                  const ScanTables& tables, int restartInterval);

// What follows the scan's data.
void writeEnd(ByteSink& sink);

}  // namespace vekpix::jpeg

#endif
