// The bit reader of the sequential coders (ITU T.81, F.2.2.5): removes stuffing, and stops at any marker, whose code it
// hands to the caller. It uses the low 32 bits of the state's buffer.
#ifndef VEK_JPEG_ENTROPY_BIT_READER_H
#define VEK_JPEG_ENTROPY_BIT_READER_H

#include "jpeg/entropy/constant_tables.h"
#include "jpeg/entropy/decoder_state.h"
#include "jpeg/entropy/huffman_tables.h"

namespace q3 {

// Bits `numBits - nBits` and above of the buffer, nBits of them, 1 to 16; a bit that is missing below counts as 0.
inline int bitsOf(uint32_t buffer, int numBits, int nBits)
{
    const int shift = numBits - nBits;
    if (shift >= 32 || shift <= -32)
        return 0;  // no state of this coder's own making
    const uint32_t aligned = shift >= 0 ? buffer >> shift : buffer << -shift;
    return static_cast<int>(aligned & ((1U << nBits) - 1));
}

// The value of an nBits-bit magnitude, 1 to 15 bits, with its sign (ITU T.81, EXTEND). Signs are as good as random: no
// branch on them.
constexpr int extendMagnitude(int v, int nBits)
{
    const int negative = (v >> (nBits - 1)) - 1;  // all ones if the top bit is clear, else 0
    return v + (negative & own_jc_lowest_coef[static_cast<size_t>(nBits)]);
}

// A code length's last code as it takes part in a search: -1 where there is none.
inline int lastCode(const VekDecodeHuffmanSpec& table, int length)
{
    return table.maxCode[length] == 0xFFFF ? -1 : table.maxCode[length];
}
inline int symbolOf(const VekDecodeHuffmanSpec& table, int length, int code)
{
    return table.symbols[static_cast<uint8_t>(table.valPtr[length] - table.minCode[length] + code)];
}

// Tops the buffer up to at least 25 bits as far as data and markers allow. An error tells that fewer than nBits are
// there, or that the source ends right behind a 0xFF; a marker met in this call is no error yet.
inline VekStatus ownjc_FillBitBuffer(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos, int* pMarker, int nBits,
                                     VekDecodeHuffmanState* pDecHuffState)
{
    if (*pMarker != 0)
        return nBits > pDecHuffState->numBits ? vekStsJpegMarkerShort : vekStsOk;
    while (pDecHuffState->numBits < 25) {
        if (*pSrcCurrPos >= srcLenBytes)
            return nBits > pDecHuffState->numBits ? vekStsJpegOutOfBuffer : vekStsOk;
        const uint32_t byte = pSrc[(*pSrcCurrPos)++];
        if (byte == 0xFF) {
            uint8_t code = 0xFF;
            while (code == 0xFF) {  // fill bytes
                if (*pSrcCurrPos >= srcLenBytes)
                    return vekStsJpegOutOfBuffer;
                code = pSrc[(*pSrcCurrPos)++];
            }
            if (code != 0) {
                *pMarker = code;
                return vekStsOk;
            }
        }
        pDecHuffState->bitBuffer = static_cast<uint32_t>(pDecHuffState->bitBuffer) << 8 | byte;
        pDecHuffState->numBits += 8;
    }
    return vekStsOk;
}

// nBits bits, 1 to 16, of a value. A marker met in this very call may leave it short: the missing low bits are 0 then,
// and numBits ends below 0.
inline VekStatus ownjc_ReadBits(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos, int* pMarker, int nBits,
                                int* pValue, VekDecodeHuffmanState* pDecHuffState)
{
    if (pDecHuffState->numBits < nBits) {
        const VekStatus status = ownjc_FillBitBuffer(pSrc, srcLenBytes, pSrcCurrPos, pMarker, nBits, pDecHuffState);
        if (status != vekStsOk)
            return status;
    }
    *pValue = bitsOf(static_cast<uint32_t>(pDecHuffState->bitBuffer), pDecHuffState->numBits, nBits);
    pDecHuffState->numBits -= nBits;
    return vekStsOk;
}

// The next symbol: by the next 8 bits, else bit by bit. 0 is stored if there is none.
inline VekStatus ownjc_DecodeHuffSymbol(const uint8_t* pSrc, int srcLenBytes, int* pSrcCurrPos, int* pMarker,
                                        int* pSymbol, const VekDecodeHuffmanSpec* pTable,
                                        VekDecodeHuffmanState* pDecHuffState)
{
    int length = 9;
    if (pDecHuffState->numBits < 8) {
        const VekStatus status = ownjc_FillBitBuffer(pSrc, srcLenBytes, pSrcCurrPos, pMarker, 0, pDecHuffState);
        if (status != vekStsOk)
            return status;
        if (pDecHuffState->numBits < 8)
            length = 1;
    }
    if (length == 9) {
        const int peek = bitsOf(static_cast<uint32_t>(pDecHuffState->bitBuffer), pDecHuffState->numBits, 8);
        const uint32_t entry = pTable->lookup[peek];
        if (entry >> 16 != 0) {
            pDecHuffState->numBits -= static_cast<int>(entry >> 16);
            *pSymbol = static_cast<int>(entry & 0xFFFF);
            return vekStsOk;
        }
    }
    int code = 0;
    const VekStatus status = ownjc_ReadBits(pSrc, srcLenBytes, pSrcCurrPos, pMarker, length, &code, pDecHuffState);
    if (status != vekStsOk)
        return status;
    for (; length <= 16; ++length) {
        if (pDecHuffState->numBits >= 0 && code <= lastCode(*pTable, length)) {
            *pSymbol = symbolOf(*pTable, length, code);
            return vekStsOk;
        }
        if (pDecHuffState->numBits < 1) {
            const VekStatus more = ownjc_FillBitBuffer(pSrc, srcLenBytes, pSrcCurrPos, pMarker, 1, pDecHuffState);
            if (more != vekStsOk)
                return more;
        }
        if (pDecHuffState->numBits < 1)
            break;  // a marker came in this refill
        --pDecHuffState->numBits;
        code = code << 1 | bitsOf(static_cast<uint32_t>(pDecHuffState->bitBuffer), pDecHuffState->numBits + 1, 1);
    }
    *pSymbol = 0;
    return vekStsJpegMarkerShort;
}

}  // namespace q3

#endif
