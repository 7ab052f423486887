#include "image/depth_rows.h"

#include <cstring>

namespace vekpix {

int sampleAt(const uint8_t* row, size_t index, size_t sampleBytes)
{
    if (sampleBytes == 1)
        return row[index];
    uint16_t word = 0;
    std::memcpy(&word, row + 2 * index, sizeof word);
    return word;
}

void setSample(uint8_t* row, size_t index, size_t sampleBytes, int value)
{
    if (sampleBytes == 1) {
        row[index] = static_cast<uint8_t>(value);
        return;
    }
    const auto word = static_cast<uint16_t>(value);
    std::memcpy(row + 2 * index, &word, sizeof word);
}

DepthRows::DepthRows(std::unique_ptr<RowReader> source, int bits) : source_(std::move(source))
{
    shape_ = source_->shape();
    shape_.bits = bits;
    row_.resize(source_->shape().rowBytes());
}

void DepthRows::readRows(uint8_t* pixels, size_t step, int rows)
{
    const Shape& from = source_->shape();
    const uint64_t most = (1U << from.bits) - 1;
    const uint64_t largest = (1U << shape_.bits) - 1;
    for (int y = 0; y < rows; ++y, pixels += step) {
        source_->readRows(row_.data(), row_.size(), 1);
        for (size_t i = 0; i < shape_.rowSamples(); ++i) {
            const auto value = static_cast<uint64_t>(sampleAt(row_.data(), i, from.sampleBytes()));
            setSample(pixels, i, shape_.sampleBytes(), static_cast<int>((value * largest + most / 2) / most));
        }
    }
}

std::unique_ptr<RowReader> withBits(std::unique_ptr<RowReader> source, int bits)
{
    if (source->shape().bits == bits)
        return source;
    return std::make_unique<DepthRows>(std::move(source), bits);
}

}  // namespace vekpix
