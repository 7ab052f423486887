// All scans of a picture, sequential or progressive, become its coefficients.
#ifndef VEKPIX_JPEG_STORE_READER_H
#define VEKPIX_JPEG_STORE_READER_H

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "jpeg/coefficient_store.h"
#include "jpeg/picture.h"

namespace vekpix::jpeg {

// `store` is as it was made. Threads share the scans of single components: each reads those of a component in their
// order.
void readScans(std::span<const uint8_t> file, const std::vector<Scan>& scans, CoefficientStore& store, int threads);

// All scans go through the picture side by side, a row of MCUs at a time: only that row is ever held, and rows must be
// asked for from the top, each once, by one thread.
std::unique_ptr<StoredRows> readScansAbreast(const Picture& picture);

}  // namespace vekpix::jpeg

#endif
