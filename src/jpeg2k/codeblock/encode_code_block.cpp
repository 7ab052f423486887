#include <algorithm>
#include <bit>

#include "frame/allocation.h"
#include "frame/checks.h"
#include "frame/implementations.h"
#include "frame/memory_kernels.h"
#include "frame/vec.h"
#include "jpeg2k/codeblock/code_block_style.h"
#include "jpeg2k/codeblock/coding_passes.h"
#include "jpeg2k/codeblock/context_tables.h"
#include "jpeg2k/codeblock/distortion.h"
#include "jpeg2k/codeblock/encoder_state.h"

namespace q3 {
namespace {

using State = VekEncodeState_JPEG2K;

// Writes the symbols of a pass over one plane. Raw passes have no contexts.
template <bool isRaw>
class SymbolCoder {
public:
    SymbolCoder(const uint32_t* pSamples, int width, int plane, bool isLossless, const ZeroCodingTable& zeroCoding,
                uint8_t* pSymbols)
        : symbols_(pSymbols),
          samples_(pSamples),
          width_(width),
          plane_(plane),
          zeroContexts_(zeroCoding.data()),
          distortion_(plane, isLossless)
    {
    }

    void stripe(int y) { stripe_ = samples_ + ptrdiff_t{y} * width_; }
    [[gnu::always_inline]] bool zero(uint32_t flags, int x, int r)
    {
        const uint32_t bit = at(x, r) >> plane_ & 1;
        put(bit, isRaw ? 0 : zeroContexts_[static_cast<uint8_t>(flags)]);
        return bit != 0;
    }
    [[gnu::always_inline]] bool sign(uint32_t flags, int x, int r)
    {
        const uint32_t sample = at(x, r);
        const uint32_t entry = isRaw ? 0 : SignCodingLUT[flags >> 4 & 0x1FF];
        put(sample >> 31 ^ entry >> 7, entry & 0x7F);
        distortion_.becomesSignificant(sample);
        return sample >> 31 != 0;
    }
    [[gnu::always_inline]] void refine(uint32_t flags, int x, int r)
    {
        const uint32_t sample = at(x, r);
        put(sample >> plane_ & 1, isRaw ? 0 : MagnRefineLUT[flags & 0x1FF]);
        distortion_.isRefined(sample);
    }
    [[gnu::always_inline]] int runLength(int x)
    {
        const __m128i bits = _mm_sll_epi32(loadU128(stripe_ + 4 * ptrdiff_t{x}), _mm_cvtsi32_si128(31 - plane_));
        const auto mask = static_cast<uint32_t>(_mm_movemask_ps(_mm_castsi128_ps(bits)));
        put(mask != 0 ? 1 : 0, runLengthContext);
        if (mask == 0)
            return 4;
        const auto r = static_cast<uint32_t>(std::countr_zero(mask));
        put(r >> 1, uniformContext);
        put(r & 1, uniformContext);
        return static_cast<int>(r);
    }
    void segmentationSymbol()
    {
        for (const uint32_t bit : {1U, 0U, 1U, 0U}) put(bit, uniformContext);
    }

    uint8_t* symbols() const { return symbols_; }
    int32_t distortion() const { return distortion_.sum(); }

private:
    uint32_t at(int x, int r) const { return stripe_[4 * ptrdiff_t{x} + r]; }
    void put(uint32_t decision, uint32_t context) { *symbols_++ = mqSymbol(decision, context); }

    uint8_t* symbols_;
    const uint32_t* samples_;
    const uint32_t* stripe_ = nullptr;
    int width_;
    int plane_;
    const uint8_t* zeroContexts_;
    PassDistortion distortion_;
};

// The passes of one block.
class BlockCoder {
public:
    BlockCoder(State* pState, const FlagView& flags, const ZeroCodingTable& zeroCoding, uint32_t style)
        : state_(pState), flags_(flags), zeroCoding_(zeroCoding), style_(style), symbols_(pState->pSymbols)
    {
    }

    // All passes from plane `top` down to `lowest`.
    void code(int top, int lowest)
    {
        const int bypassFrom = top - 3;
        int exponent = 2 * (top - lowest) - 13;
        for (int plane = top; plane >= lowest; --plane, exponent -= 2) {
            const bool isLossless = (style_ & styleLosslessDistortion) != 0 && plane == lowest;
            if (plane != top) {
                if ((style_ & styleBypass) == 0 || plane >= bypassFrom) {
                    significance<false>(plane, exponent, isLossless);
                    refinement<false>(plane, exponent, isLossless);
                } else {
                    significance<true>(plane, exponent, isLossless);
                    refinement<true>(plane, exponent, isLossless);
                }
            }
            cleanup(plane, exponent, isLossless);
        }
    }

private:
    template <bool isRaw, class Pass>
    [[gnu::always_inline]] void run(int plane, int exponent, bool isLossless, const Pass& pass)
    {
        SymbolCoder<isRaw> coder(state_->pSamples, flags_.width, plane, isLossless, zeroCoding_, symbols_);
        pass(coder);
        CodingPass& done = state_->passes[static_cast<size_t>(state_->passCount++)];
        done = {.symbols = static_cast<int32_t>(coder.symbols() - symbols_),
                .distortion = coder.distortion(),
                .exponent = exponent,
                .isRaw = isRaw,
                .length = 0,
                .rate = 0};
        symbols_ = coder.symbols();
    }

    template <bool isRaw>
    void significance(int plane, int exponent, bool isLossless)
    {
        run<isRaw>(plane, exponent, isLossless, [this](SymbolCoder<isRaw>& coder) {
            if ((style_ & styleCausal) != 0)
                significancePass<true>(flags_, coder);
            else
                significancePass<false>(flags_, coder);
        });
    }
    template <bool isRaw>
    void refinement(int plane, int exponent, bool isLossless)
    {
        run<isRaw>(plane, exponent, isLossless,
                   [this](SymbolCoder<isRaw>& coder) { refinementPass<!isRaw>(flags_, coder); });
    }
    void cleanup(int plane, int exponent, bool isLossless)
    {
        run<false>(plane, exponent, isLossless, [this](SymbolCoder<false>& coder) {
            if ((style_ & styleCausal) != 0)
                cleanupPass<true>(flags_, coder);
            else
                cleanupPass<false>(flags_, coder);
            if ((style_ & styleSegmentation) != 0)
                coder.segmentationSymbol();
        });
    }

    State* state_;
    FlagView flags_;
    const ZeroCodingTable& zeroCoding_;
    uint32_t style_;
    uint8_t* symbols_;
};

// Gathers the columns of stripes; rows below the block are zero. Returns all magnitudes or-ed.
uint32_t gather(const int32_t* pSrc, int srcStep, VekSize size, uint32_t* pSamples)
{
    __m128i all = _mm_setzero_si128();
    for (int y = 0; y < size.height; y += 4) {
        const int rows = std::min(size.height - y, 4);
        const int32_t* row[4];
        for (int r = 0; r < 4; ++r) row[r] = rowAt(pSrc, srcStep, y + std::min(r, rows - 1));
        const __m128i below = _mm_cmpgt_epi32(_mm_set1_epi32(rows), _mm_setr_epi32(0, 1, 2, 3));
        int x = 0;
        for (; x + 4 <= size.width; x += 4, pSamples += 16) {
            const __m128i a = loadU128(row[0] + x), b = loadU128(row[1] + x);
            const __m128i c = loadU128(row[2] + x), d = loadU128(row[3] + x);
            const __m128i ab = _mm_unpacklo_epi32(a, b), cd = _mm_unpacklo_epi32(c, d);
            const __m128i abHigh = _mm_unpackhi_epi32(a, b), cdHigh = _mm_unpackhi_epi32(c, d);
            const __m128i columns[4] = {_mm_unpacklo_epi64(ab, cd), _mm_unpackhi_epi64(ab, cd),
                                        _mm_unpacklo_epi64(abHigh, cdHigh), _mm_unpackhi_epi64(abHigh, cdHigh)};
            for (int i = 0; i < 4; ++i) {
                const __m128i column = _mm_and_si128(columns[i], below);
                all = _mm_or_si128(all, column);
                storeU128(pSamples + 4 * i, column);
            }
        }
        for (; x < size.width; ++x, pSamples += 4) {
            const __m128i column =
                _mm_and_si128(_mm_setr_epi32(loadScalar<int32_t>(row[0] + x), loadScalar<int32_t>(row[1] + x),
                                             loadScalar<int32_t>(row[2] + x), loadScalar<int32_t>(row[3] + x)),
                              below);
            all = _mm_or_si128(all, column);
            storeU128(pSamples, column);
        }
    }
    all = _mm_or_si128(all, _mm_unpackhi_epi64(all, all));
    all = _mm_or_si128(all, _mm_shuffle_epi32(all, 1));
    return static_cast<uint32_t>(_mm_cvtsi128_si32(all)) & 0x7FFFFFFF;
}

int segmentsOf(const State* pState)
{
    int segments = pState->terminatesEachPass ? 0 : 1;
    const int ends = pState->terminatesEachPass ? pState->passCount : pState->passCount - 1;
    for (int i = 0; i < ends; ++i) segments += isLastOfSegment(pState, i) ? 1 : 0;
    return segments;
}

// Null for more than an allocation can have.
template <typename T>
T* allocate(int64_t bytes)
{
    return bytes > INT32_MAX ? nullptr : reinterpret_cast<T*>(veksMalloc_8u(static_cast<int32_t>(bytes)));
}

void release(State* pState)
{
    for (void* p : {static_cast<void*>(pState->pSymbols), static_cast<void*>(pState->pFlags),
                    static_cast<void*>(pState->pSamples)}) {
        if (p != nullptr)
            veksFree(p);
    }
    veksFree(pState);
}

}  // namespace

VekStatus vekiEncodeInitAlloc_JPEG2K(VekEncodeState_JPEG2K** ppState, VekSize codeBlockMaxSize)
{
    VEK_CHECK_POINTER(ppState);
    VEK_CHECK_SIZE(codeBlockMaxSize);
    const auto [width, height] = codeBlockMaxSize;
    const int64_t columns = int64_t{width} * ((int64_t{height} + 3) / 4);
    *ppState = nullptr;
    auto* const state = allocate<State>(sizeof(State));
    VEK_CHECK(state != nullptr, vekStsNoMemory);
    *state = {};
    state->pSymbols = allocate<uint8_t>(columns * mostSymbolsOfColumn + mostSegmentationSymbols);
    state->pFlags = allocate<uint32_t>(flagBytesOf(width, height));
    state->pSamples = allocate<uint32_t>(16 * columns);
    if (state->pSymbols == nullptr || state->pFlags == nullptr || state->pSamples == nullptr) {
        release(state);
        return vekStsNoMemory;
    }
    state->idCtx = encoderMagic;
    *ppState = state;
    return vekStsOk;
}

VekStatus vekiEncodeFree_JPEG2K(VekEncodeState_JPEG2K* pState)
{
    VEK_CHECK_POINTER(pState);
    release(pState);
    return vekStsOk;
}

VekStatus vekiEncodeLoadCodeBlock_JPEG2K_32s_C1R(const int32_t* pSrc, int srcStep, VekSize codeBlockSize,
                                                 VekEncodeState_JPEG2K* pState, int subband, int magnBits,
                                                 int mqTermType, int, int cbStyle, int* pSfBits, int* pNOfPasses,
                                                 int* pNOfTermPasses)
{
    VEK_CHECK_POINTER(pState);
    VEK_CHECK(pState->idCtx == encoderMagic, vekStsContextMismatch);
    VEK_CHECK_POINTER(pSfBits);
    VEK_CHECK_POINTER(pNOfPasses);
    VEK_CHECK_POINTER(pNOfTermPasses);
    VEK_CHECK_SIZE(codeBlockSize);
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_STEP(srcStep);
    const auto [width, height] = codeBlockSize;
    const ptrdiff_t stride = flagStrideOf(width);
    for (ptrdiff_t i = 0; i < flagRowsOf(height); ++i)
        ownsZero_8u(reinterpret_cast<uint8_t*>(pState->pFlags + i * stride), 4 * int64_t{width} + 8);
    const auto style = static_cast<uint32_t>(cbStyle);
    pState->passCount = 0;
    pState->resetsContexts = (style & styleReset) != 0;
    pState->terminatesEachPass = (style & styleTerminate) != 0;
    pState->termMode = mqTermType;

    *pSfBits = static_cast<int>(std::bit_width(gather(pSrc, srcStep, codeBlockSize, pState->pSamples)));
    const FlagView flags = {pState->pFlags + stride + 1, stride, width, height};
    BlockCoder(pState, flags, zeroCodingTableOf(subband), style).code(*pSfBits - 1, 31 - std::clamp(magnBits, 0, 31));
    *pNOfPasses = pState->passCount;
    *pNOfTermPasses = segmentsOf(pState);

    pState->passCurrent = 0;
    pState->pNextSymbol = pState->pSymbols;
    pState->bytesTotal = 0;
    pState->mqCoded = false;
    pState->contexts = initialContexts;
    pState->mq = {};
    pState->queue = {};
    pState->raw = {};
    beginPass(pState);
    return vekStsOk;
}

VekStatus vekiEncodeGetTermPassLen_JPEG2K(VekEncodeState_JPEG2K* pState, int nTermPass, int* pLen)
{
    VEK_CHECK_POINTER(pState);
    VEK_CHECK(pState->idCtx == encoderMagic, vekStsContextMismatch);
    VEK_CHECK_POINTER(pLen);
    VEK_CHECK(nTermPass >= 0 && nTermPass < segmentsOf(pState), vekStsJpeg2KBadPassNumber);
    int length = 0;
    for (int i = 0, segment = 0; i < pState->passCount; ++i) {
        if (segment == nTermPass)
            length += pState->passes[static_cast<size_t>(i)].length;
        segment += isLastOfSegment(pState, i) ? 1 : 0;
    }
    *pLen = length;
    return vekStsOk;
}

VekStatus vekiEncodeGetRate_JPEG2K(VekEncodeState_JPEG2K* pState, int nPass, int* pRate)
{
    VEK_CHECK_POINTER(pState);
    VEK_CHECK(pState->idCtx == encoderMagic, vekStsContextMismatch);
    VEK_CHECK_POINTER(pRate);
    VEK_CHECK(nPass >= 0 && nPass < pState->passCount, vekStsJpeg2KBadPassNumber);
    *pRate = pState->passes[static_cast<size_t>(nPass)].rate;
    return vekStsOk;
}

VekStatus vekiEncodeGetDist_JPEG2K(VekEncodeState_JPEG2K* pState, int nPass, double* pDist)
{
    VEK_CHECK_POINTER(pState);
    VEK_CHECK(pState->idCtx == encoderMagic, vekStsContextMismatch);
    VEK_CHECK_POINTER(pDist);
    VEK_CHECK(nPass >= 0 && nPass < pState->passCount, vekStsJpeg2KBadPassNumber);
    // 32-bit shifts, whose count is taken modulo 32: high exponents wrap.
    const auto power = [](int n) { return static_cast<double>(static_cast<int32_t>(uint32_t{1} << (n & 31))); };
    double sum = 0;
    for (int i = 0; i <= nPass; ++i) {
        const CodingPass& pass = pState->passes[static_cast<size_t>(i)];
        sum += pass.distortion * (pass.exponent > 0 ? power(pass.exponent) : 1.0 / power(-pass.exponent));
    }
    *pDist = sum;
    return vekStsOk;
}

}  // namespace q3
