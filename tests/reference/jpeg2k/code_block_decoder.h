// Decoding of code-blocks, bit by bit (ISO/IEC 15444-1, Annexes C and D).
#ifndef VEK_TESTS_REFERENCE_JPEG2K_CODE_BLOCK_DECODER_H
#define VEK_TESTS_REFERENCE_JPEG2K_CODE_BLOCK_DECODER_H

#include <cstdint>
#include <vector>

#include "reference/jpeg2k/block_samples.h"
#include "reference/jpeg2k/mq_tables.h"
#include "vekj/types.h"

namespace model {

// A block of sign and magnitude that is being decoded.
class CodeBlockDecoder {
public:
    CodeBlockDecoder(int width, int height, int subband, int sfBits, int style, int passes);

    VekStatus step(const uint8_t* segment, int length);
    void rollBack();
    void maskBelowPlane();

    std::vector<uint32_t> samples;  // row after row
    int passesLeft;
    int bitPlane;

private:
    bool has(int bit) const { return (style_ & bit) != 0; }

    int style_;
    int bypassPlane_;
    int passKind_ = 0;
    BlockSamples block_;
    MqContextStates contexts_;
};

struct DecodedBlock {
    VekStatus status;
    std::vector<uint32_t> samples;
    int passesLeft;
    int bitPlane;
    int errorBitPlane;  // -1000 if untouched
};
DecodedBlock decodeCodeBlock(const std::vector<uint8_t>& bytes, int width, int height, int subband, int sfBits,
                             int passes, const std::vector<int>& lengths, int style);

}  // namespace model

#endif
