#include <utility>

#include "frame/implementations.h"
#include "texture/bc6h_modes.h"
#include "texture/block_bits.h"
#include "texture/image_functions.h"
#include "texture/partitions.h"

namespace q3 {
namespace {

// Values of a channel: the endpoints of the first subset, then those of the second.
using Endpoints = std::array<int32_t, 4>;

constexpr int32_t signExtended(int32_t v, int bits) { return v << (32 - bits) >> (32 - bits); }

template <size_t mode>
std::array<Endpoints, 3> fieldsOf(const BlockBits& block)
{
    static constexpr Bc6hLayout layout = bc6hLayoutOf(bc6hModes[mode]);
    std::array<Endpoints, 3> fields{};
    const auto take = [&]<size_t i>() {
        constexpr Bc6hRun run = layout.runs[i];
        fields[run.channel][run.endpoint] |= static_cast<int32_t>(block.field<run.from, run.count>() << run.to);
    };
    [&]<size_t... i>(std::index_sequence<i...>) { (take.template operator()<i>(), ...); }
    (std::make_index_sequence<layout.size>());
    return fields;
}

// The endpoints of a channel. Sums of a base and a difference wrap only where they are not negative.
template <size_t mode, bool isSigned>
Endpoints endpointsOf(Endpoints e, size_t channel)
{
    constexpr const Bc6hMode& m = bc6hModes[mode];
    if (isSigned)
        e[0] = signExtended(e[0], m.basePrecision);
    for (size_t i = 1; i < e.size(); ++i) {
        if (isSigned || m.isTransformed)
            e[i] = signExtended(e[i], m.otherPrecision[channel]);
        if (m.isTransformed) {
            const int32_t sum = e[0] + e[i];
            e[i] = sum < 0 ? sum : sum & ((1 << m.basePrecision) - 1);
        }
    }
    return e;
}

int32_t unquantize_16u(int32_t x, int bits)
{
    if (bits >= 15 || x == 0)
        return x;
    if (x == (1 << bits) - 1)
        return 65535;
    return static_cast<int32_t>((static_cast<uint32_t>(x) << 16) + 32768) >> bits;
}

int32_t unquantize_16s(int32_t x, int bits)
{
    if (bits >= 16 || x == 0)
        return x;
    const int32_t magnitude = x < 0 ? -x : x;
    const int32_t v = magnitude == (1 << (bits - 1)) - 1 ? 32767 : ((magnitude << 15) + 16384) >> (bits - 1);
    return x < 0 ? -v : v;
}

// Eight of the entries between two endpoints, by their weights: bit patterns of half-precision numbers.
template <bool isSigned>
__m256i entriesBetween(int32_t a, int32_t b, __m256i weights)
{
    const __m256i first = _mm256_set1_epi32(static_cast<int32_t>(static_cast<uint32_t>(a) * 64 + 32));
    const __m256i difference =
        _mm256_set1_epi32(static_cast<int32_t>(static_cast<uint32_t>(b) - static_cast<uint32_t>(a)));
    const __m256i t = _mm256_add_epi32(_mm256_mullo_epi32(difference, weights), first);
    if constexpr (isSigned) {
        const __m256i v = _mm256_srai_epi32(t, 6);
        const __m256i c = _mm256_srli_epi32(_mm256_mullo_epi32(_mm256_abs_epi32(v), _mm256_set1_epi32(31)), 5);
        const __m256i isNegative =
            _mm256_andnot_si256(_mm256_cmpeq_epi32(c, _mm256_setzero_si256()), _mm256_srai_epi32(v, 31));
        return _mm256_or_si256(c, _mm256_and_si256(isNegative, _mm256_set1_epi32(0x8000)));
    } else {
        return _mm256_srli_epi32(_mm256_mullo_epi32(_mm256_srli_epi32(t, 6), _mm256_set1_epi32(31)), 6);
    }
}

// The entries of one subset that sixteen pixels take.
struct Channel {
    __m256i upper, lower;  // eight pixels each
};

template <int indexBits, bool isSigned>
Channel interpolate(int32_t a, int32_t b, const Channel& indices)
{
    const auto weights = [](const uint8_t* p) { return _mm256_cvtepu8_epi32(loadLow64(p)); };
    if constexpr (indexBits == 3) {
        const __m256i entries = entriesBetween<isSigned>(a, b, weights(interW3.data()));
        return {_mm256_permutevar8x32_epi32(entries, indices.upper),
                _mm256_permutevar8x32_epi32(entries, indices.lower)};
    } else {
        const __m256i low = entriesBetween<isSigned>(a, b, weights(interW4.data()));
        const __m256i high = entriesBetween<isSigned>(a, b, weights(interW4.data() + 8));
        const auto pick = [&](__m256i i) {
            return _mm256_blendv_epi8(_mm256_permutevar8x32_epi32(low, i), _mm256_permutevar8x32_epi32(high, i),
                                      _mm256_cmpgt_epi32(i, _mm256_set1_epi32(7)));
        };
        return {pick(indices.upper), pick(indices.lower)};
    }
}

Channel blend(const Channel& a, const Channel& b, const Channel& takesB)
{
    return {_mm256_blendv_epi8(a.upper, b.upper, takesB.upper), _mm256_blendv_epi8(a.lower, b.lower, takesB.lower)};
}

template <size_t mode, bool isSigned>
void decodeMode(const BlockBits& block, uint16_t* pDst, int64_t step)
{
    constexpr const Bc6hMode& m = bc6hModes[mode];
    constexpr int subsets = mode < twoSubsetModes ? 2 : 1;
    constexpr int indexBits = subsets == 2 ? 3 : 4;
    constexpr int indexSize = 16 * indexBits - subsets;
    const auto partition = static_cast<size_t>(subsets == 2 ? block.field<77, 5>() : 0);
    const uint64_t packed =
        _pdep_u64(block.field<128 - indexSize, indexSize>(), indexMasks<subsets, indexBits>[partition]);
    constexpr uint64_t everyIndex = 0x0101010101010101 * ((1 << indexBits) - 1);
    const auto indicesOf = [&](int shift) {
        const auto bytes = static_cast<int64_t>(_pdep_u64(packed >> shift, everyIndex));
        return _mm256_cvtepu8_epi32(_mm_cvtsi64_si128(bytes));
    };
    const Channel indices = {indicesOf(0), indicesOf(8 * indexBits)};

    const std::array<Endpoints, 3> fields = fieldsOf<mode>(block);
    Channel channels[3];
    for (size_t c = 0; c < 3; ++c) {
        Endpoints e = endpointsOf<mode, isSigned>(fields[c], c);
        for (int32_t& x : e) x = isSigned ? unquantize_16s(x, m.basePrecision) : unquantize_16u(x, m.basePrecision);
        channels[c] = interpolate<indexBits, isSigned>(e[0], e[1], indices);
        if constexpr (subsets == 2) {
            const Partition& subset = subset_index_two_subsets[partition];
            const auto isSecond = [&](const uint8_t* p) {
                return _mm256_cmpgt_epi32(_mm256_cvtepu8_epi32(loadLow64(p)), _mm256_setzero_si256());
            };
            const Channel second = interpolate<indexBits, isSigned>(e[2], e[3], indices);
            channels[c] = blend(channels[c], second, {isSecond(subset.data()), isSecond(subset.data() + 8)});
        }
    }

    alignas(32) std::array<std::array<int32_t, 16>, 3> values;
    for (size_t c = 0; c < 3; ++c) {
        storeU(values[c].data(), channels[c].upper);
        storeU(values[c].data() + 8, channels[c].lower);
    }
    for (size_t i = 0; i < 16; ++i) {
        uint16_t* const pixel = rowAt(pDst, step, static_cast<int>(i / 4)) + 3 * (i % 4);
        for (size_t c = 0; c < 3; ++c) storeScalar(pixel + c, static_cast<uint16_t>(values[c][i]));
    }
}

template <bool isSigned>
void decode_block_bc6_rgb(const uint8_t* block, uint16_t* pDst, int64_t step)
{
    constexpr auto decoders = []<size_t... mode>(std::index_sequence<mode...>)
    {
        return std::array<void (*)(const BlockBits&, uint16_t*, int64_t), sizeof...(mode)>{
            decodeMode<mode, isSigned>...};
    }
    (std::make_index_sequence<bc6hModes.size()>());
    const size_t mode = modeMap[block[0]];
    if (mode < decoders.size())
        return decoders[mode](BlockBits::load(block), pDst, step);
    for (int y = 0; y < 4; ++y) std::memset(rowAt(pDst, step, y), 0, 24);
}

// A block that sticks out goes by way of a scratch whose rows of 24 bytes lie 16 bytes apart, so that each overwrites
// the end of the one before; its pixels are taken from there with gaps of 8 bytes. Behind the last row there are zeros.
template <bool isSigned>
void decodeEdge(const uint8_t* block, uint8_t* pDst, int64_t step, int columns, int rows)
{
    uint8_t scratch[128] = {};
    decode_block_bc6_rgb<isSigned>(block, reinterpret_cast<uint16_t*>(scratch), 16);
    const int bytes = 6 * columns;
    for (int y = 0; y < rows; ++y)
        std::memcpy(rowAt(pDst, step, y), scratch + y * (bytes + 8), static_cast<size_t>(bytes));
}

template <bool isSigned>
VekStatus decodeImage(const uint8_t* pSrc, void* pDst, int dstStep, VekSize roiSize)
{
    VEK_CHECK_IMAGE(pSrc, pDst, dstStep, roiSize);
    forEachBlock(roiSize, [&](int x, int y, int columns, int rows) {
        uint8_t* const p = rowAt(static_cast<uint8_t*>(pDst), dstStep, y) + 6 * ptrdiff_t{x};
        if (columns == 4 && rows == 4)
            decode_block_bc6_rgb<isSigned>(pSrc, reinterpret_cast<uint16_t*>(p), dstStep);
        else
            decodeEdge<isSigned>(pSrc, p, dstStep, columns, rows);
        pSrc += 16;
    });
    return vekStsOk;
}

}  // namespace

VekStatus vekiTextureDecodeBlockToRGB_BC6_16u_C1C3R(const uint8_t* pSrc, uint16_t* pDst, int dstStep, VekSize roiSize)
{
    return decodeImage<false>(pSrc, pDst, dstStep, roiSize);
}

VekStatus vekiTextureDecodeBlockToRGB_BC6_16s_C1C3R(const uint8_t* pSrc, int16_t* pDst, int dstStep, VekSize roiSize)
{
    return decodeImage<true>(pSrc, pDst, dstStep, roiSize);
}

}  // namespace q3
