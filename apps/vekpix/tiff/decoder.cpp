#include "tiff/decoder.h"

#include <algorithm>

#include "image/depth_rows.h"

namespace vekpix::tiff {

namespace {

constexpr size_t bandBytes = 128 << 10;  // unless a row has more

}  // namespace

Decoder::Decoder(std::span<const uint8_t> file) : file_(file), layout_(layoutOf(Directory(file), file))
{
    shape_ = layout_.shape;
    bandRows_ = static_cast<int>(std::clamp(bandBytes / shape_.rowBytes(), size_t{1}, static_cast<size_t>(height())));
    strips_.resize(static_cast<size_t>(layout_.planes));
    if (layout_.planes > 1)
        planeRow_.resize(layout_.planeRowBytes());
}

int Decoder::readBand(uint8_t* pixels, size_t step)
{
    const int rows = std::min(bandRows_, height() - next_);
    readRows(pixels, step, rows);
    return rows;
}

void Decoder::readRows(uint8_t* pixels, size_t step, int rows)
{
    for (int y = 0; y < rows; ++y, ++next_) {
        if (next_ % layout_.rowsPerStrip == 0)
            startStrip(next_ / layout_.rowsPerStrip);
        readRow(pixels + step * static_cast<size_t>(y));
    }
}

void Decoder::startStrip(int index)
{
    for (int plane = 0; plane < layout_.planes; ++plane)
        strips_[static_cast<size_t>(plane)] = StripReader(layout_.strip(file_, plane, index), layout_.compression);
}

void Decoder::readRow(uint8_t* row)
{
    const size_t planes = strips_.size();
    const size_t sampleBytes = shape_.sampleBytes();
    if (planes == 1)
        strips_[0].read({row, shape_.rowBytes()});
    for (size_t plane = 0; planes > 1 && plane < planes; ++plane) {
        strips_[plane].read(planeRow_);
        for (size_t x = 0; x < static_cast<size_t>(shape_.width); ++x)
            setSample(row, x * planes + plane, sampleBytes, sampleAt(planeRow_.data(), x, sampleBytes));
    }
    if (sampleBytes == 2)
        reorderWords(row, shape_.rowSamples(), layout_.order);
    if (layout_.whiteIsZero)
        for (size_t i = 0; i < shape_.rowBytes(); ++i) row[i] = static_cast<uint8_t>(~row[i]);
}

}  // namespace vekpix::tiff
