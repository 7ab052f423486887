// Transformed samples of a tile become coded code-blocks.
#ifndef VEKPIX_JPEG2000_BLOCK_ENCODER_H
#define VEKPIX_JPEG2000_BLOCK_ENCODER_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "jpeg2000/plane.h"
#include "jpeg2000/tile_layout.h"
#include "work/crew.h"

namespace vekpix::jpeg2000 {

// A place where it pays to cut a block's bytes: of all of them the slopes fall, as the bytes grow.
struct Cut {
    int passes = 0;
    double slope = 0;       // by how much the squared error of the picture falls, for each byte since the cut before
    double distortion = 0;  // squared error that the passes up to the cut take away
};

struct CodedBlock {
    int zeroPlanes = 0;
    std::vector<uint8_t> bytes;
    std::vector<uint32_t> passEnds;     // bytes up to the end of each pass
    std::vector<uint32_t> segmentEnds;  // bytes up to the end of the segment that each pass belongs to
    std::vector<Cut> cuts;
    double leftover = 0;  // squared error of the picture that all passes leave

    int passes() const { return static_cast<int>(passEnds.size()); }
};

// What the blocks of a band have in common.
struct BandCoding {
    float scale = 1;  // from samples to quantised ones with fraction bits
    int fractionPlanes = 0;
    int planes = 0;     // as headers tell
    double weight = 1;  // of the squared error of a quantised sample, in the picture
};

// Encoders for blocks of one style, for as many threads as come.
class BlockEncoders {
public:
    BlockEncoders(int blockWidth, int blockHeight, int style, bool reversible);
    ~BlockEncoders();
    BlockEncoders(const BlockEncoders&) = delete;
    BlockEncoders& operator=(const BlockEncoders&) = delete;

    // Codes the samples of a block, which are lost, down to plane `lowestPlane` of the quantised ones.
    CodedBlock encode(const Plane& plane, const BlockPlace& place, Orientation orientation, const BandCoding& coding,
                      int lowestPlane = 0);

private:
    struct Encoder;
    std::unique_ptr<Encoder> take();

    int blockWidth_;
    int blockHeight_;
    int style_;
    bool reversible_;
    std::mutex mutex_;
    std::vector<std::unique_ptr<Encoder>> idle_;
};

}  // namespace vekpix::jpeg2000

#endif
