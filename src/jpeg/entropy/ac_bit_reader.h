// The bit reader of progressive AC scans. It keeps up to 64 bits in the state's buffer, the newest in bit 0, and gives
// no read-ahead back.
#ifndef VEK_JPEG_ENTROPY_AC_BIT_READER_H
#define VEK_JPEG_ENTROPY_AC_BIT_READER_H

#include "frame/checks.h"
#include "jpeg/entropy/big_endian.h"
#include "jpeg/entropy/bit_reader.h"

namespace q3 {

// A plain value, so that its parts stay in registers: what is rare takes it and gives it back.
struct AcBits {
    const uint8_t* src;
    int length;
    int position;
    int marker;
    int count;
    uint64_t bits;
};

// Goes on byte by byte to 25 bits. An error tells that fewer than `needed` are there, or that the source ends right
// behind a 0xFF.
[[gnu::noinline]] inline AcBits refillByBytes(AcBits b, int needed, VekStatus* pStatus)
{
    const auto ended = [&](VekStatus status) {
        *pStatus = needed > b.count ? status : vekStsOk;
        return b;
    };
    if (b.marker != 0)
        return ended(vekStsJpegMarkerShort);
    while (b.count < 25) {
        if (b.position >= b.length)
            return ended(vekStsJpegOutOfBuffer);
        const uint64_t byte = b.src[b.position++];
        if (byte == 0xFF) {
            uint8_t code = 0xFF;
            while (code == 0xFF) {  // fill bytes
                if (b.position >= b.length) {
                    *pStatus = vekStsJpegOutOfBuffer;
                    return b;
                }
                code = b.src[b.position++];
            }
            if (code != 0) {
                b.marker = code;
                return ended(vekStsJpegOutOfBuffer);
            }
        }
        b.bits = b.bits << 8 | byte;
        b.count += 8;
    }
    *pStatus = vekStsOk;
    return b;
}

[[gnu::always_inline]] inline VekStatus refill(AcBits& b, int needed)
{
    if (b.length - b.position >= 8 && b.marker == 0) [[likely]] {
        const uint64_t next = loadBigEndian64(b.src + b.position);
        if (!hasByteFF(next)) [[likely]] {
            const int bytes = (64 - ((b.count + 7) & ~7)) / 8;
            b.bits = bytes == 8 ? next : b.bits << (8 * bytes) | next >> (64 - 8 * bytes);
            b.count += 8 * bytes;
            b.position += bytes;
            return vekStsOk;
        }
    }
    VekStatus status = vekStsOk;
    b = refillByBytes(b, needed, &status);
    return status;
}

// `count` bits, at most 16, as an unsigned number.
[[gnu::always_inline]] inline VekStatus takeBits(AcBits& b, int count, int& value)
{
    if (b.count < count) [[unlikely]] {
        const VekStatus status = refill(b, count);
        if (status != vekStsOk)
            return status;
    }
    b.count -= count;
    value = static_cast<int>(_bzhi_u64(b.bits >> (b.count & 63), static_cast<uint32_t>(count)));
    return vekStsOk;
}

// The symbol of a code of `length` bits or more, bit by bit. Behind length 16 one bit more is taken before it fails.
[[gnu::noinline]] inline AcBits searchSymbol(AcBits b, const VekDecodeHuffmanSpec& table, int length, int* pSymbol,
                                             VekStatus* pStatus)
{
    int code = 0;
    *pStatus = takeBits(b, length, code);
    for (; *pStatus == vekStsOk && length <= 16; ++length) {
        if (code <= lastCode(table, length)) {
            *pSymbol = symbolOf(table, length, code);
            return b;
        }
        int bit = 0;
        *pStatus = takeBits(b, 1, bit);
        code = code << 1 | bit;
    }
    if (*pStatus == vekStsOk)
        *pStatus = vekStsJpegMarkerShort;
    return b;
}

// The next symbol of the table.
[[gnu::always_inline]] inline VekStatus takeSymbol(AcBits& b, const VekDecodeHuffmanSpec& table, int& symbol)
{
    int length = 9;
    if (b.count < 8) [[unlikely]] {
        const VekStatus status = refill(b, 0);
        if (status != vekStsOk)
            return status;
        if (b.count < 8)
            length = 1;
    }
    if (length == 9) [[likely]] {
        const uint32_t entry = table.lookup[static_cast<uint8_t>(b.bits >> (b.count - 8))];
        if (entry >> 16 != 0) [[likely]] {
            b.count -= static_cast<int>(entry >> 16);
            symbol = static_cast<int>(entry & 0xFFFF);
            return vekStsOk;
        }
    }
    VekStatus status = vekStsOk;
    int found = 0;
    b = searchSymbol(b, table, length, &found, &status);
    symbol = found;
    return status;
}

}  // namespace q3

#endif
