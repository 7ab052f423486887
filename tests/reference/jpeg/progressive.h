// Models of the progressive coders (ITU T.81, Annex G), bit by bit.
#ifndef VEK_TESTS_REFERENCE_JPEG_PROGRESSIVE_H
#define VEK_TESTS_REFERENCE_JPEG_PROGRESSIVE_H

#include <array>
#include <cstdint>
#include <vector>

#include "reference/jpeg/huffman.h"

namespace model {

// Positions ss to se in zig-zag order, of coefficients without their al lowest bits.
struct Band {
    int ss = 1;
    int se = 63;
    int al = 0;
};

// Scans of DC coefficients keep their bits as the sequential coder does.
VekStatus decodeDcFirst(Input& in, std::array<int16_t, 64>& block, int16_t& lastDc, int al, const DecodeTable& table,
                        DecoderState& state);
VekStatus decodeDcRefine(Input& in, std::array<int16_t, 64>& block, int al, DecoderState& state);
VekStatus encodeDcFirst(const std::array<int16_t, 64>& block, Output& out, int16_t& lastDc, int al,
                        const EncodeTable& table, EncoderState& state);
VekStatus encodeDcRefine(const std::array<int16_t, 64>& block, Output& out, int al, EncoderState& state);
VekStatus countDcFirst(const std::array<int16_t, 64>& block, std::array<int, 256>& counts, int16_t& lastDc, int al);

// The reader of an AC scan: up to 64 bits in hand, the newest is bit 0.
struct BandDecoderState {
    uint64_t buffer = 0;
    int numBits = 0;
    int eobRun = 0;
};
VekStatus decodeAcFirst(Input& in, std::array<int16_t, 64>& block, const Band& band, const DecodeTable& table,
                        BandDecoderState& state);
VekStatus decodeAcRefine(Input& in, std::array<int16_t, 64>& block, const Band& band, const DecodeTable& table,
                         BandDecoderState& state);

// The writer of an AC scan: up to 63 pending bits, the newest is bit 0.
struct BandEncoderState {
    uint64_t buffer = 0;
    int numBits = 0;
    int eobRun = 0;
    std::vector<uint8_t> corrections;
};
VekStatus encodeAcFirst(const std::array<int16_t, 64>& block, Output& out, const Band& band, const EncodeTable& table,
                        BandEncoderState& state);
VekStatus encodeAcRefine(const std::array<int16_t, 64>& block, Output& out, const Band& band, const EncodeTable& table,
                         BandEncoderState& state);
VekStatus flushBand(Output& out, const EncodeTable& table, BandEncoderState& state);

struct BandCounterState {
    int eobRun = 0;
    int numCorrections = 0;
};
VekStatus countAcFirst(const std::array<int16_t, 64>& block, std::array<int, 256>& counts, const Band& band,
                       BandCounterState& state);
VekStatus countAcRefine(const std::array<int16_t, 64>& block, std::array<int, 256>& counts, const Band& band,
                        BandCounterState& state);
VekStatus flushCounts(std::array<int, 256>& counts, BandCounterState& state);

}  // namespace model

#endif
