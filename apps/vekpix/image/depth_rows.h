// The rows of a picture with samples of another number of bits.
#ifndef VEKPIX_IMAGE_DEPTH_ROWS_H
#define VEKPIX_IMAGE_DEPTH_ROWS_H

#include <memory>
#include <vector>

#include "image/rows.h"

namespace vekpix {

// The largest value becomes the largest value; to the nearest.
class DepthRows : public RowReader {
public:
    DepthRows(std::unique_ptr<RowReader> source, int bits);

    void readRows(uint8_t* pixels, size_t step, int rows) override;
    bool rewind() override { return source_->rewind(); }

private:
    std::unique_ptr<RowReader> source_;
    std::vector<uint8_t> row_;
};

// `source` itself if it has so many bits.
std::unique_ptr<RowReader> withBits(std::unique_ptr<RowReader> source, int bits);

// The sample at an index of a row, which may lie at any address.
int sampleAt(const uint8_t* row, size_t index, size_t sampleBytes);
void setSample(uint8_t* row, size_t index, size_t sampleBytes, int value);

}  // namespace vekpix

#endif
