#include "image/over_white_rows.h"

#include <vector>

#include "image/depth_rows.h"

namespace vekpix {

namespace {

class OverWhiteRows : public RowReader {
public:
    explicit OverWhiteRows(std::unique_ptr<RowReader> source) : source_(std::move(source))
    {
        shape_ = source_->shape();
        shape_.channels = shape_.colours();
        shape_.alpha = false;
        row_.resize(source_->shape().rowBytes());
    }

    void readRows(uint8_t* pixels, size_t step, int rows) override
    {
        for (int y = 0; y < rows; ++y, pixels += step) {
            source_->readRows(row_.data(), row_.size(), 1);
            compose(pixels);
        }
    }
    bool rewind() override { return source_->rewind(); }

private:
    void compose(uint8_t* to) const
    {
        const size_t bytes = shape_.sampleBytes();
        const uint32_t white = (1U << shape_.bits) - 1;
        const auto colours = static_cast<size_t>(shape_.channels);
        for (size_t x = 0; x < static_cast<size_t>(width()); ++x) {
            const size_t pixel = x * (colours + 1);
            const auto alpha = static_cast<uint32_t>(sampleAt(row_.data(), pixel + colours, bytes));
            for (size_t c = 0; c < colours; ++c) {
                const auto colour = static_cast<uint32_t>(sampleAt(row_.data(), pixel + c, bytes));
                const uint32_t light = (colour * alpha + white * (white - alpha) + white / 2) / white;
                setSample(to, x * colours + c, bytes, static_cast<int>(light));
            }
        }
    }

    std::unique_ptr<RowReader> source_;
    std::vector<uint8_t> row_;
};

}  // namespace

std::unique_ptr<RowReader> overWhite(std::unique_ptr<RowReader> source)
{
    if (!source->shape().alpha)
        return source;
    return std::make_unique<OverWhiteRows>(std::move(source));
}

}  // namespace vekpix
