// Both Huffman decoders over any table, stream and state. Each equals its model, block by block, and the direct one
// equals the sequential one until a marker comes; neither leaves its memory, whatever it is given.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "huffman_input.h"
#include "jpeg/entropy/decoder_state.h"

namespace {

using fuzz::Bytes;
using fuzz::require;
using fuzz::Table;
using Block = std::array<int16_t, 64>;

constexpr int mostBlocks = 64;

struct Sequential {
    int position = 0;
    int marker = 0;
    int16_t dc = 0;
    VekDecodeHuffmanState state{};
    Block block{};

    VekStatus decode(const std::vector<uint8_t>& stream, const Table& dcTable, const Table& acTable)
    {
        return vekiDecodeHuffman8x8_JPEG_1u16s_C1(stream.data(), static_cast<int>(stream.size()), &position,
                                                  block.data(), &dc, &marker, &dcTable.object, &acTable.object, &state);
    }
};

struct Direct {
    int bitPosition = 0;
    int marker = 0;
    int16_t dc = 0;
    uint32_t prefetched = 0;
    int numPrefetched = 0;
    Block block{};

    VekStatus decode(const std::vector<uint8_t>& stream, const Table& dcTable, const Table& acTable)
    {
        return vekiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(stream.data(), &bitPosition, block.data(), &dc, &marker,
                                                         &prefetched, &numPrefetched, &dcTable.object, &acTable.object);
    }
};

// A state that the decoder can have left: at most 32 bits in hand.
void compareWithModel(const std::vector<uint8_t>& stream, const Table& dc, const Table& ac, uint64_t bits, int numBits)
{
    Sequential reader;
    reader.state.bitBuffer = bits & ((uint64_t{1} << numBits) - 1);
    reader.state.numBits = numBits;
    model::DecoderState expectedState{reader.state.bitBuffer, numBits, 0};
    model::Input in{stream.data(), static_cast<int>(stream.size())};
    int16_t expectedDc = 0;
    for (int i = 0; i < mostBlocks; ++i) {
        Block expected{};
        const VekStatus want = model::decodeBlock(in, expected, expectedDc, dc.expected, ac.expected, expectedState);
        require(want == reader.decode(stream, dc, ac));
        require(expected == reader.block && expectedDc == reader.dc);
        require(in.position == reader.position && in.marker == reader.marker);
        require(expectedState.numBits == reader.state.numBits);
        require(expectedState.endOfBlockPos == reader.state.endOfBlockPos);
        if (want != vekStsOk)
            return;
    }
}

// Past markers too. The stream ends with one.
void compareDirectWithModel(const std::vector<uint8_t>& stream, const Table& dc, const Table& ac, uint64_t bits,
                            int numBits)
{
    Direct reader;
    reader.prefetched = static_cast<uint32_t>(bits);
    reader.numPrefetched = numBits;
    model::DirectInput in{stream.data(), 0, 0, reader.prefetched, numBits};
    int16_t expectedDc = 0;
    for (int i = 0; i < mostBlocks && reader.bitPosition < 8 * static_cast<int>(stream.size()); ++i) {
        Block expected{};
        const VekStatus want = model::decodeDirect(in, expected, expectedDc, dc.expected, ac.expected);
        require(want == reader.decode(stream, dc, ac));
        require(expected == reader.block && expectedDc == reader.dc);
        require(in.bitPosition == reader.bitPosition && in.marker == reader.marker);
        require(in.numPrefetched == reader.numPrefetched && in.prefetched == reader.prefetched);
        if (i % 4 == 3)
            in.marker = reader.marker = 0;
    }
}

void compareForms(const std::vector<uint8_t>& stream, const Table& dcTable, const Table& acTable)
{
    Sequential sequential;
    Direct direct;
    for (int i = 0; i < mostBlocks; ++i) {
        const VekStatus status = sequential.decode(stream, dcTable, acTable);
        const VekStatus directStatus = direct.decode(stream, dcTable, acTable);
        if (sequential.marker != 0 || direct.marker != 0 || status != vekStsOk)
            return;
        require(directStatus == vekStsOk);
        require(sequential.block == direct.block && sequential.dc == direct.dc);
    }
}

void survive(const std::vector<uint8_t>& stream, const Table& dcTable, const Table& acTable, Bytes& bytes)
{
    const int size = static_cast<int>(stream.size());
    Sequential sequential;
    sequential.state.bitBuffer = bytes.next64();
    sequential.state.numBits = static_cast<int32_t>(bytes.next64());
    sequential.position = bytes.next() % (size + 1);
    sequential.marker = bytes.next() & bytes.next();
    Direct direct;
    direct.prefetched = static_cast<uint32_t>(bytes.next64());
    direct.numPrefetched = static_cast<int>(bytes.next64() & 0x7FFFFFFF);
    direct.bitPosition = bytes.next() % (size - 1) * 8;  // before the last marker
    for (int i = 0; i < mostBlocks; ++i) {
        sequential.decode(stream, dcTable, acTable);
        require(sequential.position >= 0 && sequential.position <= size);
        if (direct.marker == 0)
            direct.decode(stream, dcTable, acTable);
        require(direct.bitPosition >= 0 && direct.bitPosition <= 8 * size && direct.bitPosition % 8 == 0);
        require(direct.numPrefetched >= 0);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Bytes bytes(data, size);
    const Table dcTable = fuzz::readTable(bytes);
    const Table acTable = fuzz::readTable(bytes);
    if (!dcTable.valid || !acTable.valid)
        return 0;
    const int numBits = bytes.next() % 33;
    const uint64_t bits = bytes.next64();
    Bytes states = bytes;
    std::vector<uint8_t> stream = bytes.rest();  // its end is the end of its memory
    stream.shrink_to_fit();
    if (!stream.empty())
        compareWithModel(stream, dcTable, acTable, bits, numBits);
    stream.push_back(0xFF);
    stream.push_back(0xD9);
    stream.shrink_to_fit();
    compareDirectWithModel(stream, dcTable, acTable, bits, numBits);
    compareForms(stream, dcTable, acTable);
    survive(stream, dcTable, acTable, states);
    return 0;
}
