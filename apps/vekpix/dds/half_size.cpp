#include "dds/half_size.h"

#include <algorithm>
#include <numeric>

namespace vekpix::dds {

HalfSize::Direction::Direction(int size) : from(size), to(std::max(1, size / 2))
{
    const int common = std::gcd(from, to);
    unit = to / common;
    span = from / common;
}

// Sums stay below 2^64: 255 * 255 by the weights of an area, the product of two spans below 2^24.
HalfSize::HalfSize(int width, int height, int channels)
    : across_(width),
      down_(height),
      channels_(static_cast<size_t>(channels)),
      sums_(channels == 4 ? 7 : channels_),
      row_(static_cast<size_t>(across_.to) * sums_),
      total_(row_.size())
{
}

bool HalfSize::takeRow(const uint8_t* row, uint8_t* half)
{
    sumAcross(row);
    const int64_t bottom = top_ + down_.unit;
    const int64_t edge = (top_ / down_.span + 1) * down_.span;
    addRow(static_cast<uint64_t>(std::min(bottom, edge) - top_));
    top_ = bottom;
    if (bottom < edge)
        return false;
    storeRow(half);
    std::fill(total_.begin(), total_.end(), 0);
    if (bottom > edge)
        addRow(static_cast<uint64_t>(bottom - edge));
    return true;
}

void HalfSize::sumAcross(const uint8_t* row)
{
    std::fill(row_.begin(), row_.end(), 0);
    for (int64_t x = 0; x < across_.to; ++x) {
        uint64_t* sums = row_.data() + static_cast<size_t>(x) * sums_;
        const int64_t left = x * across_.span;
        const int64_t right = left + across_.span;
        for (int64_t from = left / across_.unit; from * across_.unit < right; ++from) {
            const auto weight =
                static_cast<uint64_t>(std::min(right, (from + 1) * across_.unit) - std::max(left, from * across_.unit));
            const uint8_t* pixel = row + static_cast<size_t>(from) * channels_;
            for (size_t c = 0; c < channels_; ++c) sums[c] += weight * pixel[c];
            if (channels_ == 4)
                for (size_t c = 0; c < 3; ++c) sums[4 + c] += weight * pixel[3] * pixel[c];
        }
    }
}

void HalfSize::addRow(uint64_t weight)
{
    for (size_t i = 0; i < total_.size(); ++i) total_[i] += weight * row_[i];
}

void HalfSize::storeRow(uint8_t* half) const
{
    const auto mean = [](uint64_t sum, uint64_t weights) {
        return static_cast<uint8_t>((sum + weights / 2) / weights);
    };
    const auto area = static_cast<uint64_t>(across_.span * down_.span);
    for (const uint64_t* sums = total_.data(); sums != total_.data() + total_.size();
         sums += sums_, half += channels_) {
        for (size_t c = 0; c < channels_; ++c) half[c] = mean(sums[c], area);
        if (channels_ == 4 && sums[3] != 0)
            for (size_t c = 0; c < 3; ++c) half[c] = mean(sums[4 + c], sums[3]);
    }
}

}  // namespace vekpix::dds
