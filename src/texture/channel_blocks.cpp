// BC4 and BC5: images of one and of two channels.
#include "frame/implementations.h"
#include "texture/alpha_block.h"
#include "texture/image_functions.h"

namespace q3 {
namespace {

void encode_block_bc4(const uint8_t* p, int64_t step, uint8_t* out)
{
    const __m128i values =
        _mm_setr_epi32(loadScalar<int32_t>(p), loadScalar<int32_t>(rowAt(p, step, 1)),
                       loadScalar<int32_t>(rowAt(p, step, 2)), loadScalar<int32_t>(rowAt(p, step, 3)));
    storeScalar(out, encodeInsetAlphaBlock(values));
}

void encode_block_bc5(const uint8_t* p, int64_t step, uint8_t* out)
{
    const __m128i upper = _mm_unpacklo_epi64(loadLow64(p), loadLow64(rowAt(p, step, 1)));
    const __m128i lower = _mm_unpacklo_epi64(loadLow64(rowAt(p, step, 2)), loadLow64(rowAt(p, step, 3)));
    const __m128i even = _mm_set1_epi16(0xFF);
    storeScalar(out, encodeInsetAlphaBlock(_mm_packus_epi16(_mm_and_si128(upper, even), _mm_and_si128(lower, even))));
    storeScalar(out + 8, encodeInsetAlphaBlock(_mm_packus_epi16(_mm_srli_epi16(upper, 8), _mm_srli_epi16(lower, 8))));
}

void decodeBc4(const uint8_t* block, uint8_t* pDst, int64_t step)
{
    const __m128i values = decodeAlphaBlock(loadScalar<uint64_t>(block));
    storeScalar(pDst, _mm_extract_epi32(values, 0));
    storeScalar(rowAt(pDst, step, 1), _mm_extract_epi32(values, 1));
    storeScalar(rowAt(pDst, step, 2), _mm_extract_epi32(values, 2));
    storeScalar(rowAt(pDst, step, 3), _mm_extract_epi32(values, 3));
}

void decodeBc5(const uint8_t* block, uint8_t* pDst, int64_t step)
{
    const __m128i red = decodeAlphaBlock(loadScalar<uint64_t>(block));
    const __m128i green = decodeAlphaBlock(loadScalar<uint64_t>(block + 8));
    const __m128i upper = _mm_unpacklo_epi8(red, green);
    const __m128i lower = _mm_unpackhi_epi8(red, green);
    storeLow64(pDst, upper);
    storeHigh64(rowAt(pDst, step, 1), upper);
    storeLow64(rowAt(pDst, step, 2), lower);
    storeHigh64(rowAt(pDst, step, 3), lower);
}

}  // namespace

VekStatus vekiTextureEncodeBlock_BC4_8u_C1R(const uint8_t* pSrc, uint32_t srcStep, VekSize roiSize, uint8_t* pDst)
{
    return encodeImage<1, 8, encode_block_bc4>(pSrc, srcStep, roiSize, pDst);
}

VekStatus vekiTextureEncodeBlockFromRG_BC5_8u_C2C1R(const uint8_t* pSrc, uint32_t srcStep, VekSize roiSize,
                                                    uint8_t* pDst)
{
    return encodeImage<2, 16, encode_block_bc5>(pSrc, srcStep, roiSize, pDst);
}

VekStatus vekiTextureDecodeBlock_BC4_8u_C1R(const uint8_t* pSrc, uint8_t* pDst, uint32_t dstStep, VekSize roiSize)
{
    return decodeImage<1, 8, decodeBc4>(pSrc, pDst, dstStep, roiSize);
}

VekStatus vekiTextureDecodeBlockToRG_BC5_8u_C1C2R(const uint8_t* pSrc, uint8_t* pDst, uint32_t dstStep, VekSize roiSize)
{
    return decodeImage<2, 16, decodeBc5>(pSrc, pDst, dstStep, roiSize);
}

}  // namespace q3
