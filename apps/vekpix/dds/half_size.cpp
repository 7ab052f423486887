#include "dds/half_size.h"

#include <algorithm>
#include <array>
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

namespace {

// The sums of one pixel of the result, over the pixels of the source in left .. right, which are `unit` wide.
template <size_t channels>
void sumPixels(const uint8_t* row, int64_t left, int64_t right, int64_t unit, uint64_t* sums)
{
    for (int64_t from = left / unit; from * unit < right; ++from) {
        const auto weight = static_cast<uint64_t>(std::min(right, (from + 1) * unit) - std::max(left, from * unit));
        const uint8_t* pixel = row + static_cast<size_t>(from) * channels;
        for (size_t c = 0; c < channels; ++c) sums[c] += weight * pixel[c];
        if constexpr (channels == 4)
            for (size_t c = 0; c < 3; ++c) sums[4 + c] += weight * pixel[3] * pixel[c];
    }
}

uint8_t mean(uint64_t sum, uint64_t weights)
{
    if (weights == 4)  // all the pixels of even sizes
        return static_cast<uint8_t>((sum + 2) / 4);
    return static_cast<uint8_t>((sum + weights / 2) / weights);
}

}  // namespace

void HalfSize::sumAcross(const uint8_t* row)
{
    constexpr std::array sumChannels = {sumPixels<1>, sumPixels<2>, sumPixels<3>, sumPixels<4>};
    auto* const sum = sumChannels[channels_ - 1];
    std::fill(row_.begin(), row_.end(), 0);
    for (int64_t x = 0; x < across_.to; ++x)
        sum(row, x * across_.span, (x + 1) * across_.span, across_.unit, row_.data() + static_cast<size_t>(x) * sums_);
}

void HalfSize::addRow(uint64_t weight)
{
    for (size_t i = 0; i < total_.size(); ++i) total_[i] += weight * row_[i];
}

void HalfSize::storeRow(uint8_t* half) const
{
    const auto area = static_cast<uint64_t>(across_.span * down_.span);
    for (const uint64_t* sums = total_.data(); sums != total_.data() + total_.size();
         sums += sums_, half += channels_) {
        for (size_t c = 0; c < channels_; ++c) half[c] = mean(sums[c], area);
        const bool opaque = channels_ == 4 && sums[3] == 255 * area;  // then colours weigh alike already
        if (channels_ == 4 && sums[3] != 0 && !opaque)
            for (size_t c = 0; c < 3; ++c) half[c] = mean(sums[4 + c], sums[3]);
    }
}

}  // namespace vekpix::dds
