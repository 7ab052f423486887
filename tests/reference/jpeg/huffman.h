// Models of the Huffman tables and of the sequential coder, bit by bit.
#ifndef VEK_TESTS_REFERENCE_JPEG_HUFFMAN_H
#define VEK_TESTS_REFERENCE_JPEG_HUFFMAN_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "vekj/types.h"

namespace model {

struct HuffmanLists {
    std::array<uint8_t, 16> bits{};
    std::array<uint8_t, 256> vals{};
};

struct DecodeTable {
    std::array<uint16_t, 256> symbols{};
    std::array<uint32_t, 256> lookup{};
    std::array<uint16_t, 18> minCode{};
    std::array<uint16_t, 18> maxCode{};
    std::array<uint16_t, 18> valPtr{};
};
VekStatus buildDecodeTable(const HuffmanLists& lists, DecodeTable& table);

using EncodeTable = std::array<uint32_t, 256>;
VekStatus buildEncodeTable(const HuffmanLists& lists, EncodeTable& table);

VekStatus optimalLists(const std::array<int, 256>& counts, HuffmanLists& lists, int& numVals);

// Position of the k-th coefficient in zig-zag order, and the guards behind it.
extern const std::array<int, 72> zigzag;

struct EncoderState {
    uint32_t pending = 0;  // bit 23 is the oldest pending bit
    int numBits = 0;
};
struct Output {
    std::vector<uint8_t> bytes;  // all the room that there is
    int position = 0;
};
VekStatus encodeBlock(const std::array<int16_t, 64>& block, Output& out, int16_t& lastDc, const EncodeTable& dc,
                      const EncodeTable& ac, EncoderState& state);
VekStatus flush(Output& out, EncoderState& state);
// The `count` lowest bits of `value`.
VekStatus writeBits(uint32_t value, int count, Output& out, EncoderState& state);
// At a bit position; `bytes` has the room.
void encodeDirect(const std::array<int16_t, 64>& block, std::vector<uint8_t>& bytes, int& bitPosition, int16_t& lastDc,
                  const EncodeTable& dc, const EncodeTable& ac);
VekStatus countSymbols(const std::array<int16_t, 64>& block, std::array<int, 256>& dc, std::array<int, 256>& ac,
                       int16_t& lastDc);

struct Input {
    const uint8_t* bytes;
    int length;
    int position = 0;
    int marker = 0;
};
struct DecoderState {
    uint64_t buffer = 0;
    int numBits = 0;
    int endOfBlockPos = 0;
};
// What a block is read by, of all the paths the careful one.
VekStatus refill(Input& in, DecoderState& state, int needed);
VekStatus decodeSymbol(Input& in, DecoderState& state, const DecodeTable& table, int& symbol);
VekStatus readValue(Input& in, DecoderState& state, int count, int& v);
// Both paths: the fast one where it is taken and succeeds, else the careful one.
VekStatus decodeBlock(Input& in, std::array<int16_t, 64>& block, int16_t& lastDc, const DecodeTable& dc,
                      const DecodeTable& ac, DecoderState& state);

// A source that a marker ends, with the bits read ahead: at most 32, the newest in bit 0.
struct DirectInput {
    const uint8_t* bytes;
    int bitPosition = 0;
    int marker = 0;
    uint32_t prefetched = 0;
    int numPrefetched = 0;
};
VekStatus decodeDirect(DirectInput& in, std::array<int16_t, 64>& block, int16_t& lastDc, const DecodeTable& dc,
                       const DecodeTable& ac);

}  // namespace model

#endif
