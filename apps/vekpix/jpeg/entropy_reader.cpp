#include "jpeg/entropy_reader.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

#include "error.h"
#include "jpeg/markers.h"

namespace vekpix::jpeg {

namespace {

// A 0xFF that ends the file begins nothing: the data end before it.
std::span<const uint8_t> withoutHalfMarker(std::span<const uint8_t> data)
{
    while (!data.empty() && data.back() == 0xFF) data = data.first(data.size() - 1);
    return data;
}

bool isRestart(int marker) { return marker >= RST0 && marker <= RST7; }

// Moves `position` behind the next marker and returns it; 0 at the end. Stuffed bytes are data.
int nextMarker(std::span<const uint8_t> data, size_t& position)
{
    while (position < data.size()) {
        const void* found = std::memchr(data.data() + position, 0xFF, data.size() - position);
        if (found == nullptr)
            break;
        size_t code = static_cast<size_t>(static_cast<const uint8_t*>(found) - data.data()) + 1;
        while (code < data.size() && data[code] == 0xFF) ++code;
        if (code == data.size())
            break;
        position = code + 1;
        if (data[code] != 0)
            return data[code];
    }
    position = data.size();
    return 0;
}

}  // namespace

EntropyReader::EntropyReader(std::span<const uint8_t> file, size_t begin, int restartInterval, size_t interval)
    : data_(withoutHalfMarker(file.subspan(begin))),
      restartInterval_(restartInterval),
      mcusLeft_(restartInterval),
      interval_(interval)
{
    VekDecodeHuffmanState* state = nullptr;
    if (vekiDecodeHuffmanStateInitAlloc_JPEG_8u(&state) != vekStsOk)
        throw std::bad_alloc();
    state_.reset(state);
    setBase(0);
}

void EntropyReader::setBase(size_t offset)
{
    base_ = data_.data() + offset;
    length_ = static_cast<int>(std::min<size_t>(data_.size() - offset, INT_MAX));
    position_ = 0;
}

void EntropyReader::rebase() { setBase(static_cast<size_t>(base_ - data_.data()) + static_cast<size_t>(position_)); }

void EntropyReader::passRestartMarker()
{
    if (marker_ == 0) {  // the reader has not come to it yet; nothing but the marker may follow
        const uint8_t* at = base_ + position_;
        const uint8_t* end = base_ + length_;
        if (at == end)
            throw Error("truncated JPEG file: it ends after " + std::to_string(interval_ + 1) + " restart intervals");
        const uint8_t* code = std::find_if(at, end, [](uint8_t byte) { return byte != 0xFF; });
        if (code == at || code == end || *code == 0)
            throw Error("damaged JPEG file: too many data in restart interval " + std::to_string(interval_));
        marker_ = *code;
        position_ += static_cast<int>(code - at) + 1;
    }
    if (marker_ != RST0 + static_cast<int>(interval_ % 8))
        throw Error("damaged JPEG file: " + markerName(marker_) + " stands behind restart interval " +
                    std::to_string(interval_));
    ++interval_;
    marker_ = 0;
    lastDc_.fill(0);
    mcusLeft_ = restartInterval_ - 1;
    vekiDecodeHuffmanStateInit_JPEG_8u(state_.get());
}

std::optional<int> EntropyReader::markerBehind() const
{
    if (marker_ != 0)
        return marker_;
    size_t position = static_cast<size_t>(base_ - data_.data()) + static_cast<size_t>(position_);
    const int marker = nextMarker(data_, position);
    return marker == 0 ? std::nullopt : std::optional(marker);
}

void EntropyReader::fail(VekStatus status) const
{
    if (status == vekStsJpegOutOfBuffer || length_ == 0)
        throw Error("truncated JPEG file: the picture's data are not complete");
    if (status == vekStsJpegMarkerShort && marker_ != 0)
        throw Error("damaged JPEG file: " + markerName(marker_) + " stands within the picture's data");
    throw Error("damaged JPEG file: impossible Huffman code");
}

std::optional<std::vector<size_t>> findIntervals(std::span<const uint8_t> file, size_t begin, size_t count,
                                                 size_t stride)
{
    std::vector<size_t> starts;
    size_t position = begin;
    for (size_t interval = 1; interval < count; ++interval) {
        const int marker = nextMarker(file, position);
        if (!isRestart(marker) || marker != RST0 + static_cast<int>((interval - 1) % 8))
            return std::nullopt;
        if (interval % stride == 0)
            starts.push_back(position);
    }
    return starts;
}

}  // namespace vekpix::jpeg
