#include "tiff/strip_reader.h"

#include <algorithm>
#include <limits>

#include "error.h"
#include "vekj/tiff.h"

namespace vekpix::tiff {

namespace {

[[noreturn]] void failShort() { throw Error("damaged TIFF file: a strip ends before its rows do"); }

}  // namespace

void StripReader::read(std::span<uint8_t> bytes)
{
    if (compression_ == Compression::PackBits)
        unpack(bytes);
    else
        std::ranges::copy(take(bytes.size()), bytes.begin());
}

std::span<const uint8_t> StripReader::take(size_t count)
{
    if (count > left_.size())
        failShort();
    const std::span<const uint8_t> taken = left_.first(count);
    left_ = left_.subspan(count);
    return taken;
}

// A row should end where a packet does, and in most files it does. In others its last packet goes on in the next row.
void StripReader::unpack(std::span<uint8_t> bytes)
{
    const size_t fromRest = std::min(rest_.size(), bytes.size());
    std::copy_n(rest_.begin(), fromRest, bytes.begin());
    rest_.erase(rest_.begin(), rest_.begin() + static_cast<ptrdiff_t>(fromRest));
    bytes = bytes.subspan(fromRest);
    if (bytes.empty())
        return;
    const Packets packets = packetsFor(bytes.size());
    if (packets.unpacked == bytes.size()) {
        unpackWhole(packets, bytes);
        return;
    }
    std::vector<uint8_t> longer(packets.unpacked);
    unpackWhole(packets, longer);
    const auto end = longer.begin() + static_cast<ptrdiff_t>(bytes.size());
    std::copy(longer.begin(), end, bytes.begin());
    rest_.assign(end, longer.end());
}

// The next packets that give at least so many bytes, if the strip holds them to their ends.
StripReader::Packets StripReader::packetsFor(size_t least) const
{
    Packets packets{0, 0};
    while (packets.unpacked < least) {
        if (packets.packed >= left_.size())
            failShort();
        const auto control = static_cast<int8_t>(left_[packets.packed++]);
        if (control >= 0) {
            packets.packed += static_cast<size_t>(control) + 1;
            packets.unpacked += static_cast<size_t>(control) + 1;
        } else if (control != -128) {
            packets.packed += 1;
            packets.unpacked += static_cast<size_t>(1 - control);
        }
    }
    if (packets.packed > std::min(left_.size(), static_cast<size_t>(std::numeric_limits<int>::max())))
        failShort();
    return packets;
}

void StripReader::unpackWhole(const Packets& packets, std::span<uint8_t> bytes)
{
    int position = 0;
    if (vekiUnpackBitsRow_TIFF_8u_C1(take(packets.packed).data(), &position, static_cast<int>(packets.packed),
                                     bytes.data(), static_cast<int>(bytes.size())) != vekStsOk)
        failShort();
}

}  // namespace vekpix::tiff
