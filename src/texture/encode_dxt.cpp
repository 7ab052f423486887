#include <bit>
#include <cstdlib>
#include <utility>

#include "frame/implementations.h"
#include "texture/alpha_block.h"
#include "texture/colour_block.h"
#include "texture/image_functions.h"

namespace q3 {
namespace {

// The colours of a block of R, G, B, A: endpoints a sixteenth of the range inside the box around the pixels, truncated.
void encodeColours(const BlockPixels& block, uint8_t* out)
{
    const __m256i noAlpha = _mm256_set1_epi32(0x00FFFFFF);
    const BlockPixels colours = {_mm256_and_si256(block.evenRows, noAlpha), _mm256_and_si256(block.oddRows, noAlpha)};
    const Extremes extremes = extremesOf(colours);
    const __m128i low = _mm_cvtepu8_epi16(extremes.lowest);
    const __m128i high = _mm_cvtepu8_epi16(extremes.highest);
    const __m128i inset = _mm_srli_epi16(_mm_sub_epi16(high, low), 4);
    const auto expanded = [](__m128i v) {  // from 5, 6 and 5 bits
        const __m128i kept = _mm_and_si128(v, _mm_setr_epi16(248, 252, 248, 0, 0, 0, 0, 0));
        return _mm_or_si128(kept, _mm_mulhi_epu16(v, _mm_setr_epi16(2048, 1024, 2048, 0, 0, 0, 0, 0)));
    };
    const __m128i first = expanded(_mm_sub_epi16(high, inset));
    const __m128i second = expanded(_mm_add_epi16(low, inset));
    const auto word = [](__m128i v) {
        const auto channels = static_cast<uint64_t>(_mm_cvtsi128_si64(v));
        return word565(channels & 0xFF, channels >> 16 & 0xFF, channels >> 32 & 0xFF);
    };
    storeColourBlock(out, word(first), word(second), colourIndices(colours, first, second));
}

BlockPixels loadBlock(const uint8_t* p, int64_t step)
{
    return combineRows(loadU128(p), loadU128(rowAt(p, step, 1)), loadU128(rowAt(p, step, 2)),
                       loadU128(rowAt(p, step, 3)));
}

// The fourth bytes of all pixels.
__m128i fourthChannel(const BlockPixels& block)
{
    const __m256i words =
        _mm256_packus_epi32(_mm256_srli_epi32(block.evenRows, 24), _mm256_srli_epi32(block.oddRows, 24));
    return _mm_packus_epi16(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1));
}

void encode_block_rgba_dxt1(const uint8_t* p, int64_t step, uint8_t* out) { encodeColours(loadBlock(p, step), out); }

// Alpha keeps its high four bits.
void encode_block_rgba_dxt3(const uint8_t* p, int64_t step, uint8_t* out)
{
    const BlockPixels block = loadBlock(p, step);
    const __m128i alpha = fourthChannel(block);
    const uint64_t low = _pext_u64(static_cast<uint64_t>(_mm_cvtsi128_si64(alpha)), 0xF0F0F0F0F0F0F0F0);
    const uint64_t high = _pext_u64(static_cast<uint64_t>(_mm_extract_epi64(alpha, 1)), 0xF0F0F0F0F0F0F0F0);
    storeScalar(out, low | high << 32);
    encodeColours(block, out + 8);
}

void encode_block_rgba_dxt5(const uint8_t* p, int64_t step, uint8_t* out)
{
    const BlockPixels block = loadBlock(p, step);
    storeScalar(out, encodeInsetAlphaBlock(fourthChannel(block)));
    encodeColours(block, out + 8);
}

// Four pixels of Y, Co, Cg, each with a zero in front of Co.
__m128i loadYCoCg(const uint8_t* p)
{
    const __m128i bytes = _mm_insert_epi32(loadLow64(p), loadScalar<int32_t>(p + 8), 2);
    return _mm_shuffle_epi8(bytes, _mm_setr_epi8(1, 2, -1, 0, 4, 5, -1, 3, 7, 8, -1, 6, 10, 11, -1, 9));
}

// An endpoint's channel, moved inside the range by a sixteenth of it less 7 / 16, in wrapping 32-bit arithmetic, and
// cut to 8 - shift bits which fill up with their highest.
struct Inset {
    uint32_t low, high;  // with 4 fraction bits

    Inset(uint32_t lowest, uint32_t highest)
        : low((lowest << 4) + (highest - lowest) - 7), high((highest << 4) - (highest - lowest - 7))
    {
    }
    template <int bits>
    static uint32_t expanded(uint32_t v)
    {
        return ((v & ~((1U << (8 - bits)) - 1)) | v >> bits) & 0xFF;
    }
    template <int bits>
    uint32_t expandedLow() const
    {
        return expanded<bits>(low >> 4);
    }
    template <int bits>
    uint32_t expandedHigh() const
    {
        return expanded<bits>(std::min(high >> 4, 255U));
    }
};

// Chroma goes into red and green, scaled by up to 4 if it is weak, and luma into alpha, without an inset.
void encode_block_ycocg_dxt5(const uint8_t* p, int64_t step, uint8_t* out)
{
    // Co, Cg, zero, Y
    BlockPixels block = combineRows(loadYCoCg(p), loadYCoCg(rowAt(p, step, 1)), loadYCoCg(rowAt(p, step, 2)),
                                    loadYCoCg(rowAt(p, step, 3)));
    const Extremes extremes = extremesOf(block);
    const auto lowest = static_cast<uint32_t>(_mm_cvtsi128_si32(extremes.lowest));
    const auto highest = static_cast<uint32_t>(_mm_cvtsi128_si32(extremes.highest));
    storeScalar(out, encodeAlphaBlock(fourthChannel(block), highest >> 24, lowest >> 24));

    const auto away = [](uint32_t v) { return std::abs(static_cast<int>(v & 0xFF) - 128); };
    const int farthest =
        std::max(std::max(away(lowest), away(highest)), std::max(away(lowest >> 8), away(highest >> 8)));
    const int shift = farthest <= 31 ? 2 : farthest <= 63 ? 1 : 0;
    const auto scaled = [shift](uint32_t v) { return ((((v & 0xFF) - 128) << shift) + 128) & 0xFF; };
    const auto scaledPixels = [shift](__m256i rows) {
        const __m256i chroma = _mm256_and_si256(rows, _mm256_set1_epi32(0xFFFF));
        const __m256i centred = _mm256_sub_epi8(chroma, _mm256_set1_epi32(0x8080));
        const __m256i product = _mm256_and_si256(_mm256_sll_epi16(centred, _mm_cvtsi32_si128(shift)),
                                                 _mm256_set1_epi8(static_cast<char>(0xFF << shift)));
        return _mm256_and_si256(_mm256_add_epi8(product, _mm256_set1_epi32(0x8080)), _mm256_set1_epi32(0xFFFF));
    };
    block = {scaledPixels(block.evenRows), scaledPixels(block.oddRows)};

    const Inset co(scaled(lowest), scaled(highest));
    const Inset cg(scaled(lowest >> 8), scaled(highest >> 8));
    const uint32_t coLow = co.expandedLow<5>(), coHigh = co.expandedHigh<5>();
    uint32_t cgFirst = cg.expandedHigh<6>(), cgSecond = cg.expandedLow<6>();

    // Pixels that lie on the other diagonal of the box.
    const uint32_t middle = (coLow + coHigh + 1) >> 1 | (cgFirst + cgSecond + 1) >> 1 << 8;
    const __m256i middles = _mm256_set1_epi32(static_cast<int>(middle));
    const auto sides = [middles](__m256i rows) {
        const __m256i isAbove = _mm256_cmpeq_epi8(_mm256_max_epu8(rows, middles), rows);
        const __m256i differs = _mm256_xor_si256(isAbove, _mm256_srli_epi32(isAbove, 8));
        return std::popcount(static_cast<uint32_t>(_mm256_movemask_epi8(differs)) & 0x11111111);
    };
    if (sides(block.evenRows) + sides(block.oddRows) > 8)
        std::swap(cgFirst, cgSecond);

    const auto lanes = [](uint32_t a, uint32_t b) { return _mm_cvtsi32_si128(static_cast<int>(a | b << 16)); };
    const uint32_t code = (1U << shift) - 1;
    storeColourBlock(out + 8, word565(coHigh, cgFirst, 0) | code, word565(coLow, cgSecond, 0) | code,
                     colourIndices(block, lanes(coHigh, cgFirst), lanes(coLow, cgSecond)));
}

}  // namespace

VekStatus vekiTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(const uint8_t* pSrc, uint32_t srcStep, VekSize roiSize,
                                                       uint8_t* pDst)
{
    return encodeImage<4, 8, encode_block_rgba_dxt1>(pSrc, srcStep, roiSize, pDst);
}

VekStatus vekiTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R(const uint8_t* pSrc, uint32_t srcStep, VekSize roiSize,
                                                       uint8_t* pDst)
{
    return encodeImage<4, 16, encode_block_rgba_dxt3>(pSrc, srcStep, roiSize, pDst);
}

VekStatus vekiTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(const uint8_t* pSrc, uint32_t srcStep, VekSize roiSize,
                                                       uint8_t* pDst)
{
    return encodeImage<4, 16, encode_block_rgba_dxt5>(pSrc, srcStep, roiSize, pDst);
}

VekStatus vekiTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(const uint8_t* pSrc, uint32_t srcStep, VekSize roiSize,
                                                        uint8_t* pDst)
{
    return encodeImage<3, 16, encode_block_ycocg_dxt5>(pSrc, srcStep, roiSize, pDst);
}

}  // namespace q3
