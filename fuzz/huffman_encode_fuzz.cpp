// The sequential Huffman encoder over any tables, blocks, room and state. Each call equals its model, byte by byte, and
// what was written decodes to the blocks; neither form leaves its memory, whatever it is given.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "jpeg/entropy/decoder_state.h"
#include "jpeg/entropy/encoder_state.h"
#include "jpeg/entropy/huffman_tables.h"
#include "reference/jpeg/huffman.h"

namespace {

using Block = std::array<int16_t, 64>;

constexpr size_t mostBlocks = 32;
constexpr size_t longestBlock = 2 * 64 * 4 + 1;  // 64 codes of 16 bits with as many behind them, every byte stuffed

void require(bool condition)
{
    if (!condition)
        std::abort();
}

class Bytes {
public:
    Bytes(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    bool empty() const { return size_ == 0; }
    uint8_t next()
    {
        if (size_ == 0)
            return 0;
        --size_;
        return *data_++;
    }
    uint64_t next(int count)
    {
        uint64_t value = 0;
        for (int i = 0; i < count; ++i) value = value << 8 | next();
        return value;
    }

private:
    const uint8_t* data_;
    size_t size_;
};

struct Table {
    VekEncodeHuffmanSpec object{};
    VekDecodeHuffmanSpec decoding{};
    model::EncodeTable expected{};
    bool valid = false;  // else partly built, which is no reason not to use it
};

Table readTable(Bytes& bytes)
{
    model::HuffmanLists lists;
    int symbols = 0;
    for (uint8_t& count : lists.bits) {
        count = bytes.next();
        symbols += count;
    }
    for (int i = 0; i < std::min(symbols, 256); ++i) lists.vals[static_cast<size_t>(i)] = bytes.next();
    Table table;
    const VekStatus status = vekiEncodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.vals.data(), &table.object);
    table.valid = status == vekStsOk;
    require(status == model::buildEncodeTable(lists, table.expected));
    if (table.valid) {
        require(std::equal(table.expected.begin(), table.expected.end(), table.object.codes));
        require(vekStsOk == vekiDecodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.vals.data(), &table.decoding));
    }
    std::copy_n(table.object.codes, 256, table.expected.begin());
    return table;
}

// A mask of the coefficients that are not zero, in zig-zag order, and a byte for each, or three for one beyond 100.
Block readBlock(Bytes& bytes)
{
    Block block{};
    const uint64_t mask = bytes.next(8);
    for (size_t k = 0; k < 64; ++k) {
        if ((mask >> k & 1) == 0)
            continue;
        const auto value = static_cast<int8_t>(bytes.next());
        block[static_cast<size_t>(model::zigzag[k])] =
            value <= 100 ? int16_t{value} : static_cast<int16_t>(bytes.next(2));
    }
    return block;
}

// The coefficients that have a category of their own.
bool decodes(const Block& block, int lastDc)
{
    return std::abs(block[0] - lastDc) <= INT16_MAX &&
           std::none_of(block.begin() + 1, block.end(), [](int16_t v) { return v == INT16_MIN; });
}

struct Encoder {
    int position = 0;
    int16_t dc = 0;
    VekEncodeHuffmanState state{};

    VekStatus encode(const Block& block, std::vector<uint8_t>& room, const Table& dcTable, const Table& acTable)
    {
        return vekiEncodeHuffman8x8_JPEG_16s1u_C1(block.data(), room.data(), static_cast<int>(room.size()), &position,
                                                  &dc, &dcTable.object, &acTable.object, &state, 0);
    }
    VekStatus flush(std::vector<uint8_t>& room)
    {
        return vekiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, room.data(), static_cast<int>(room.size()), &position,
                                                  nullptr, nullptr, nullptr, &state, 1);
    }
};

void requireSame(const Encoder& encoder, const std::vector<uint8_t>& room, const model::Output& out,
                 const model::EncoderState& state)
{
    require(encoder.position == out.position && encoder.state.numBits == state.numBits);
    require((encoder.state.bitBuffer & 0xFFFFFF) == state.pending);
    require(std::equal(room.begin(), room.begin() + out.position, out.bytes.begin()));
}

void compareWithModel(const std::vector<Block>& blocks, std::vector<uint8_t>& room, int position, int numBits,
                      uint32_t bits, const Table& dcTable, const Table& acTable)
{
    Encoder encoder;
    encoder.position = position;
    encoder.state.bitBuffer = bits >> 8 & ~(0xFFFFFFU >> numBits);
    encoder.state.numBits = numBits;
    model::EncoderState state{static_cast<uint32_t>(encoder.state.bitBuffer), numBits};
    model::Output out{room, position};
    int16_t dc = 0;
    for (const Block& block : blocks) {
        const VekStatus want = model::encodeBlock(block, out, dc, dcTable.expected, acTable.expected, state);
        require(want == encoder.encode(block, room, dcTable, acTable));
        require(dc == encoder.dc);
        requireSame(encoder, room, out, state);
        if (want != vekStsOk)
            break;
    }
    require(model::flush(out, state) == encoder.flush(room));
    requireSame(encoder, room, out, state);
}

// Whole blocks into more than enough room, and out of it.
void decodeWhatIsWritten(const std::vector<Block>& blocks, const Table& dcTable, const Table& acTable)
{
    std::vector<uint8_t> room(longestBlock * blocks.size() + 24);
    Encoder encoder;
    size_t count = 0;
    for (const Block& block : blocks) {
        if (!decodes(block, encoder.dc))
            break;
        const Encoder before = encoder;
        if (encoder.encode(block, room, dcTable, acTable) != vekStsOk) {
            encoder = before;
            break;
        }
        ++count;
    }
    require(encoder.flush(room) == vekStsOk);
    room.resize(static_cast<size_t>(encoder.position));
    room.insert(room.end(), {0xFF, 0xD9});
    int position = 0;
    int marker = 0;
    int16_t dc = 0;
    VekDecodeHuffmanState state{};
    for (size_t i = 0; i < count; ++i) {
        Block block;
        require(vekStsOk == vekiDecodeHuffman8x8_JPEG_1u16s_C1(room.data(), static_cast<int>(room.size()), &position,
                                                               block.data(), &dc, &marker, &dcTable.decoding,
                                                               &acTable.decoding, &state));
        require(block == blocks[i]);
    }
}

// The direct form, in as much memory as it needs.
void compareDirectWithModel(const std::vector<Block>& blocks, int offset, const Table& dcTable, const Table& acTable)
{
    std::vector<uint8_t> expected(longestBlock * blocks.size() + 16, 0xA5);
    std::vector<uint8_t> memory = expected;
    int expectedPosition = offset;
    int position = offset;
    int16_t expectedDc = 0;
    int16_t dc = 0;
    for (const Block& block : blocks) {
        model::encodeDirect(block, expected, expectedPosition, expectedDc, dcTable.expected, acTable.expected);
        memory.resize(static_cast<size_t>(expectedPosition / 8 + 1));
        memory.shrink_to_fit();
        require(vekStsOk == vekiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(block.data(), memory.data(), &position, &dc,
                                                                      &dcTable.object, &acTable.object));
        require(position == expectedPosition && dc == expectedDc);
        require(std::equal(memory.begin(), memory.end(), expected.begin()));
    }
}

void compareStatistics(const std::vector<Block>& blocks)
{
    std::array<int, 256> expectedDc{};
    std::array<int, 256> expectedAc{};
    std::array<int, 256> dc{};
    std::array<int, 256> ac{};
    int16_t expectedLast = 0;
    int16_t last = 0;
    for (const Block& block : blocks) {
        require(model::countSymbols(block, expectedDc, expectedAc, expectedLast) ==
                vekiGetHuffmanStatistics8x8_JPEG_16s_C1(block.data(), dc.data(), ac.data(), &last));
        require(dc == expectedDc && ac == expectedAc && last == expectedLast);
    }
}

// A state that no call left.
void survive(const std::vector<Block>& blocks, std::vector<uint8_t>& room, int position, Bytes bytes,
             const Table& dcTable, const Table& acTable)
{
    Encoder encoder;
    encoder.position = position;
    encoder.state.bitBuffer = bytes.next(8);
    encoder.state.numBits = static_cast<int32_t>(bytes.next(4));
    for (const Block& block : blocks) {
        encoder.encode(block, room, dcTable, acTable);
        require(encoder.position >= position && encoder.position <= std::max(position, static_cast<int>(room.size())));
    }
    encoder.flush(room);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Bytes bytes(data, size);
    const Table dcTable = readTable(bytes);
    const Table acTable = readTable(bytes);
    std::vector<uint8_t> room(1 + bytes.next(2) % 2048, 0xA5);  // its end is the end of its memory
    const auto position = static_cast<int>(bytes.next(2) % (room.size() + 3));
    const int numBits = bytes.next() % 8;
    const Bytes states = bytes;
    const auto bits = static_cast<uint32_t>(bytes.next(4));
    std::vector<Block> blocks;
    while (!bytes.empty() && blocks.size() < mostBlocks) blocks.push_back(readBlock(bytes));

    compareWithModel(blocks, room, std::min(position, static_cast<int>(room.size())), numBits, bits, dcTable, acTable);
    if (dcTable.valid && acTable.valid)
        decodeWhatIsWritten(blocks, dcTable, acTable);
    compareDirectWithModel(blocks, numBits, dcTable, acTable);
    compareStatistics(blocks);
    survive(blocks, room, position, states, dcTable, acTable);
    return 0;
}
