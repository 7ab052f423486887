#include <algorithm>
#include <limits>
#include <utility>

#include "frame/checks.h"
#include "frame/implementations.h"
#include "texture/bc7_refine.h"
#include "texture/bc7_rough_fit.h"

namespace q3 {
namespace {

Bc7Pixels loadPixels(const uint8_t* pSrc, int64_t step)
{
    Bc7Pixels pixels;
    for (size_t i = 0; i < 16; ++i) {
        const uint8_t* const p = rowAt(pSrc, step, static_cast<int>(i / 4)) + 4 * (i % 4);
        for (size_t c = 0; c < 4; ++c) pixels.channels[c][i] = p[c];
    }
    return pixels;
}

// The best of all partitions with one rotation and selection: those that fit best roughly, a quarter of them, are
// refined. Stops at a block without an error.
class PartitionSearch {
public:
    explicit PartitionSearch(size_t mode)
        : mode_(mode), shapes_(size_t{1} << bc7Modes[mode].partitionBits), candidates_(std::max<size_t>(shapes_ / 4, 1))
    {
    }

    void run(const Bc7Pixels& pixels, Bc7Choice choice, int32_t& best, BlockBits& block)
    {
        RoughMSE(bc7Modes[mode_], pixels, shapes_, choice.selection, endpoints_.data(), errors_.data());
        for (size_t s = 0; s < shapes_; ++s) order_[s] = s;
        for (size_t i = 0; i < candidates_; ++i) {
            for (size_t j = i + 1; j < shapes_; ++j) {
                if (errors_[i] > errors_[j]) {
                    std::swap(errors_[i], errors_[j]);
                    std::swap(order_[i], order_[j]);
                }
            }
        }
        for (size_t i = 0; i < candidates_ && best != 0; ++i) {
            choice.partition = order_[i];
            BlockBits candidate;
            const int32_t error = Refine(mode_, pixels, choice, endpoints_[choice.partition], candidate);
            if (best > error) {
                best = error;
                block = candidate;
            }
        }
    }

private:
    size_t mode_;
    size_t shapes_, candidates_;
    std::array<Bc7Endpoints, 64> endpoints_;
    std::array<int32_t, 64> errors_;
    std::array<size_t, 64> order_;
};

}  // namespace

VekStatus vekiTextureEncodeBlock4x4FromRGBA_BC7_8u_C4C1R(const uint8_t* pSrc, uint32_t srcStep, uint8_t* pDst,
                                                         int* pError, int mode)
{
    VEK_CHECK_POINTER(pSrc);
    VEK_CHECK_POINTER(pDst);
    VEK_CHECK_POINTER(pError);
    VEK_CHECK(srcStep != 0, vekStsBadStep);
    VEK_CHECK(static_cast<uint32_t>(mode) < bc7Modes.size(), vekStsBadBlockMode);
    const Bc7Mode& m = bc7Modes[static_cast<size_t>(mode)];
    Bc7Pixels pixels = loadPixels(pSrc, srcStep);
    PartitionSearch search(static_cast<size_t>(mode));
    int32_t best = std::numeric_limits<int32_t>::max();
    BlockBits block = {};
    const auto rotations = uint32_t{1} << m.rotationBits;
    const auto selections = uint32_t{1} << m.selectionBits;
    for (uint32_t r = 0; r < rotations && best != 0; ++r) {
        for (uint32_t s = 0; s < selections && best != 0; ++s) {
            if (r != 0)
                std::swap(pixels.channels[r - 1], pixels.channels[3]);
            search.run(pixels, {.partition = 0, .rotation = r, .selection = s}, best, block);
            if (r != 0)
                std::swap(pixels.channels[r - 1], pixels.channels[3]);
        }
    }
    block.store(pDst);
    *pError = best;
    return vekStsOk;
}

}  // namespace q3
