// The bit writer of the sequential coders (ITU T.81, F.1.2.3): whole bytes go out at once, 0xFF with a stuffed zero
// behind it.
#ifndef VEK_JPEG_ENTROPY_BIT_WRITER_H
#define VEK_JPEG_ENTROPY_BIT_WRITER_H

#include "jpeg/entropy/encoder_state.h"
#include "jpeg/entropy/huffman_tables.h"

namespace q3 {

// Appends the low nBits bits of value, at most 16. vekStsJpegHuffmanTable for no bits: that is a symbol without a code.
// vekStsJpegOutOfBuffer if the bytes do not fit: those that did stay, and the state keeps the bits from before the
// call. A state that no sequential coder leaves makes senseless bytes, inside the room like any.
inline VekStatus ownjc_write_bits_jpeg(uint32_t value, int nBits, uint8_t* pDst, int dstLenBytes, int* pDstCurrPos,
                                       VekEncodeHuffmanState* pEncHuffState)
{
    if (nBits == 0)
        return vekStsJpegHuffmanTable;
    auto total = static_cast<int32_t>(static_cast<uint32_t>(pEncHuffState->numBits) + static_cast<uint32_t>(nBits));
    const uint32_t bits = value & ((1U << nBits) - 1);
    const uint32_t shift = 24 - static_cast<uint32_t>(total);
    uint32_t pending = static_cast<uint32_t>(pEncHuffState->bitBuffer) | bits << (shift & 31);
    while (total >= 8) {
        if (*pDstCurrPos >= dstLenBytes)
            return vekStsJpegOutOfBuffer;
        const uint8_t byte = static_cast<uint8_t>(pending >> 16);
        pDst[(*pDstCurrPos)++] = byte;
        if (byte == 0xFF) {
            if (*pDstCurrPos == dstLenBytes)
                return vekStsJpegOutOfBuffer;
            pDst[(*pDstCurrPos)++] = 0;
        }
        pending <<= 8;
        total -= 8;
    }
    pEncHuffState->bitBuffer = pending;
    pEncHuffState->numBits = total;
    return vekStsOk;
}

inline VekStatus ownjc_write_code_jpeg(uint32_t entry, uint8_t* pDst, int dstLenBytes, int* pDstCurrPos,
                                       VekEncodeHuffmanState* pEncHuffState)
{
    return ownjc_write_bits_jpeg(entry & 0xFFFF, static_cast<int>(entry >> 16), pDst, dstLenBytes, pDstCurrPos,
                                 pEncHuffState);
}

// Pads the pending bits with 1 bits to a byte, which is written if any bit was pending, and resets the state.
[[gnu::noinline]] inline VekStatus ownjc_flush_jpeg(uint8_t* pDst, int dstLenBytes, int* pDstCurrPos,
                                                    VekEncodeHuffmanState* pEncHuffState)
{
    const VekStatus status = ownjc_write_bits_jpeg(0x7F, 7, pDst, dstLenBytes, pDstCurrPos, pEncHuffState);
    ownjc_EncodeHuffmanStateInit(pEncHuffState);
    return status;
}

}  // namespace q3

#endif
