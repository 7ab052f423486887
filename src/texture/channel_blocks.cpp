// BC4 and BC5: images of one and of two channels.
#include "frame/implementations.h"
#include "texture/alpha_block.h"
#include "texture/channel_group.h"
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

void storeGroup(const GroupRows& rows, uint8_t* pDst, int64_t step)
{
    const auto store = [&](int y, __m256i v) {
        const __m256i inOrder = _mm256_permute4x64_epi64(v, 0xD8);
        storeU128(rowAt(pDst, step, y), _mm256_castsi256_si128(inOrder));
        storeU128(rowAt(pDst, step, y + 1), _mm256_extracti128_si256(inOrder, 1));
    };
    store(0, rows.upper);
    store(2, rows.lower);
}

// Rows of 16 bytes of four blocks of BC4.
void decodeGroupBc4(const uint8_t* blocks, uint8_t* pDst, int64_t step) { storeGroup(decodeGroup(blocks), pDst, step); }

// Rows of 16 bytes of two blocks of BC5.
void decodeGroupBc5(const uint8_t* blocks, uint8_t* pDst, int64_t step)
{
    const __m256i pairs =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 4, 1, 5, 2, 6, 3, 7, 8, 12, 9, 13, 10, 14, 11, 15));
    const GroupRows rows = decodeGroup(blocks);
    storeGroup({_mm256_shuffle_epi8(rows.upper, pairs), _mm256_shuffle_epi8(rows.lower, pairs)}, pDst, step);
}

// Groups of blocks that give rows of 16 bytes, while such rows lie in the image; the other blocks one by one.
template <int pixelBytes, int blockBytes, DecodeBlock decode, DecodeBlock decodeWholeGroup>
VekStatus decodeInGroups(const uint8_t* pSrc, uint8_t* pDst, int64_t dstStep, VekSize roiSize)
{
    VEK_CHECK_IMAGE(pSrc, pDst, dstStep, roiSize);
    constexpr int columns = 16 / pixelBytes;
    const int rest = roiSize.width % columns;
    const auto decodeSingly = [&](int x, int y, VekSize size) {
        decodeBlocks<pixelBytes, blockBytes>(
            pSrc, rowAt(pDst, dstStep, y) + pixelBytes * ptrdiff_t{x}, dstStep, size,
            [](const uint8_t* block, uint8_t* p, int64_t step) { decode(block, p, step); });
        pSrc += (size.width + 3) / 4 * ptrdiff_t{blockBytes};
    };
    int y = 0;
    for (; y <= roiSize.height - 4; y += 4) {
        uint8_t* p = rowAt(pDst, dstStep, y);
        for (int i = 0; i < roiSize.width / columns; ++i, p += 16, pSrc += groupBytes)
            decodeWholeGroup(pSrc, p, dstStep);
        if (rest > 0)
            decodeSingly(roiSize.width - rest, y, {rest, 4});
    }
    if (y < roiSize.height)
        decodeSingly(0, y, {roiSize.width, roiSize.height - y});
    return vekStsOk;
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
    return decodeInGroups<1, 8, decodeBc4, decodeGroupBc4>(pSrc, pDst, dstStep, roiSize);
}

VekStatus vekiTextureDecodeBlockToRG_BC5_8u_C1C2R(const uint8_t* pSrc, uint8_t* pDst, uint32_t dstStep, VekSize roiSize)
{
    return decodeInGroups<2, 16, decodeBc5, decodeGroupBc5>(pSrc, pDst, dstStep, roiSize);
}

}  // namespace q3
