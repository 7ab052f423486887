#include "reference/tiff/pack_bits.h"

namespace model {

std::vector<std::vector<uint8_t>> packetsOf(const std::vector<uint8_t>& row)
{
    std::vector<std::vector<uint8_t>> packets;
    const size_t size = row.size();
    size_t i = 0;
    while (i < size) {
        std::vector<uint8_t> packet;
        if (i + 1 < size && row[i] == row[i + 1]) {
            size_t n = 0;
            while (i + n < size && row[i + n] == row[i] && n < 128) ++n;
            packet = {static_cast<uint8_t>(1 - static_cast<int>(n)), row[i]};
            i += n;
        } else {
            packet.push_back(0);
            while (i < size && packet.size() < 129) {
                const bool beginsThree = i + 2 < size && row[i] == row[i + 1] && row[i] == row[i + 2];
                if (beginsThree)
                    break;
                packet.push_back(row[i++]);
            }
            packet[0] = static_cast<uint8_t>(packet.size() - 2);
        }
        packets.push_back(packet);
    }
    return packets;
}

Unpacked unpack(const std::vector<uint8_t>& packed, int position, int length, uint8_t behind)
{
    Unpacked u = {vekStsOk, position, {}};
    const auto end = static_cast<int>(packed.size());
    const auto stored = [&u] { return static_cast<int>(u.bytes.size()); };
    do {
        if (u.position >= end) {
            u.status = vekStsTiffRowFormat;
            return u;
        }
        const int n = static_cast<int8_t>(packed[static_cast<size_t>(u.position++)]);
        if (n >= 0) {
            if (u.position + n + 1 > end || stored() + n + 1 > length) {
                u.status = vekStsTiffRowFormat;
                return u;
            }
            for (int i = 0; i <= n; ++i) u.bytes.push_back(packed[static_cast<size_t>(u.position++)]);
        } else if (n != -128) {
            if (u.position > end || stored() + 1 - n > length) {
                u.status = vekStsTiffRowFormat;
                return u;
            }
            const uint8_t byte = u.position == end ? behind : packed[static_cast<size_t>(u.position)];
            ++u.position;
            for (int i = 0; i < 1 - n; ++i) u.bytes.push_back(byte);
        }
    } while (stored() != length);
    return u;
}

}  // namespace model
