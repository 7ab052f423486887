// The passes over a picture that make its scans: each takes all MCUs from pixels to coefficients and on to a coder.
#ifndef VEKPIX_JPEG_SCAN_PASSES_H
#define VEKPIX_JPEG_SCAN_PASSES_H

#include "image/rows.h"
#include "io/byte_sink.h"
#include "jpeg/coefficient_store.h"
#include "jpeg/encoder.h"
#include "jpeg/entropy_writer.h"
#include "jpeg/mcu_transform.h"

namespace vekpix::jpeg {

SymbolStatistics countSymbols(RowReader& picture, const McuTransform& transform, const ScanLayout& scan,
                              const EncodeOptions& options);

// Fills the store of a frame made of transform's layout.
void storeCoefficients(RowReader& picture, const McuTransform& transform, const EncodeOptions& options,
                       CoefficientStore& store);

void writeScan(RowReader& picture, const McuTransform& transform, const ScanLayout& scan, const EncoderTables& tables,
               const EncodeOptions& options, ByteSink& file);

}  // namespace vekpix::jpeg

#endif
