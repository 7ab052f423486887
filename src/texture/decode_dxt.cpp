#include "frame/implementations.h"
#include "texture/alpha_block.h"
#include "texture/colour_block.h"
#include "texture/image_functions.h"

namespace q3 {
namespace {

// Four pixels of R, G, B, A: the endpoints of a colour block, and two colours between them. Of a block of three
// colours, whose first word is not above its second, the third is their mean and the fourth opaque white.
template <bool hasThreeColours>
__m128i paletteOf(uint32_t words)
{
    const auto expanded = [](uint32_t c) {
        const uint32_t r = c >> 11, g = c >> 5 & 63, b = c & 31;
        return uint64_t{r << 3 | r >> 2} | uint64_t{g << 2 | g >> 4} << 16 | uint64_t{b << 3 | b >> 2} << 32 |
               uint64_t{255} << 48;
    };
    const uint32_t word0 = words & 0xFFFF, word1 = words >> 16;
    const uint64_t c0 = expanded(word0), c1 = expanded(word1);
    const __m128i ends = _mm_set_epi64x(static_cast<int64_t>(c1), static_cast<int64_t>(c0));
    const __m128i swapped = _mm_shuffle_epi32(ends, 0x4E);
    if (hasThreeColours && word0 <= word1) {
        const __m128i mean = _mm_srli_epi16(_mm_add_epi16(ends, swapped), 1);
        return _mm_packus_epi16(ends, _mm_unpacklo_epi64(mean, _mm_set1_epi16(255)));
    }
    return _mm_packus_epi16(ends, betweenColours(ends, swapped));
}

// Calls store(y, four pixels) for every row of a block.
template <class Store>
void forEachRowOfColours(const uint8_t* block, __m128i palette, const Store& store)
{
    const __m256i colours = _mm256_broadcastsi128_si256(palette);
    const __m256i indices = _mm256_set1_epi32(loadScalar<int32_t>(block + 4));
    for (int y = 0; y < 4; y += 2) {
        const __m256i shifts = _mm256_add_epi32(_mm256_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14), _mm256_set1_epi32(8 * y));
        const __m256i rows =
            _mm256_castps_si256(_mm256_permutevar_ps(_mm256_castsi256_ps(colours), _mm256_srlv_epi32(indices, shifts)));
        store(y, _mm256_castsi256_si128(rows));
        store(y + 1, _mm256_extracti128_si256(rows, 1));
    }
}

// Colours of four with the alpha values given.
void storeWithAlpha(const uint8_t* colourBlock, __m128i alpha, uint8_t* pDst, int64_t step)
{
    const __m128i opaque = _mm_set1_epi32(0x00FFFFFF);
    const auto store = [&](int y, __m128i colours) {
        const __m128i row = _mm_slli_epi32(_mm_cvtepu8_epi32(alpha), 24);
        storeU128(rowAt(pDst, step, y), _mm_or_si128(_mm_and_si128(colours, opaque), row));
        alpha = _mm_srli_si128(alpha, 4);
    };
    forEachRowOfColours(colourBlock, paletteOf<false>(loadScalar<uint32_t>(colourBlock)), store);
}

void decodeDxt1(const uint8_t* block, uint8_t* pDst, int64_t step)
{
    forEachRowOfColours(block, paletteOf<true>(loadScalar<uint32_t>(block)),
                        [&](int y, __m128i row) { storeU128(rowAt(pDst, step, y), row); });
}

// Alpha has four bits, which become the high ones of eight.
void decodeDxt3(const uint8_t* block, uint8_t* pDst, int64_t step)
{
    const auto nibbles = loadScalar<uint64_t>(block);
    const uint64_t low = _pdep_u64(nibbles, 0xF0F0F0F0F0F0F0F0);
    const uint64_t high = _pdep_u64(nibbles >> 32, 0xF0F0F0F0F0F0F0F0);
    storeWithAlpha(block + 8, _mm_set_epi64x(static_cast<int64_t>(high), static_cast<int64_t>(low)), pDst, step);
}

void decodeDxt5(const uint8_t* block, uint8_t* pDst, int64_t step)
{
    storeWithAlpha(block + 8, decodeAlphaBlock(loadScalar<uint64_t>(block)), pDst, step);
}

}  // namespace

VekStatus vekiTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst, uint32_t dstStep,
                                                     VekSize roiSize)
{
    return decodeImage<4, 8, decodeDxt1>(pSrc, pDst, dstStep, roiSize);
}

VekStatus vekiTextureDecodeBlockToRGBA_DXT3_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst, uint32_t dstStep,
                                                     VekSize roiSize)
{
    return decodeImage<4, 16, decodeDxt3>(pSrc, pDst, dstStep, roiSize);
}

VekStatus vekiTextureDecodeBlockToRGBA_DXT5_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst, uint32_t dstStep,
                                                     VekSize roiSize)
{
    return decodeImage<4, 16, decodeDxt5>(pSrc, pDst, dstStep, roiSize);
}

}  // namespace q3
