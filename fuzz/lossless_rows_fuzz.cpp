// The lossless Huffman coders of rows and single values. The decoders over any table, stream and state equal their
// models, call by call, and leave their memory never; the encoders over any values and room equal theirs, and what they
// write is read back.
#include <algorithm>
#include <array>
#include <vector>

#include "huffman_input.h"
#include "jpeg/entropy/decoder_state.h"
#include "jpeg/entropy/encoder_state.h"
#include "reference/jpeg/lossless_rows.h"

namespace {

using fuzz::Bytes;
using fuzz::require;
using fuzz::Table;

constexpr int mostCalls = 32;
constexpr size_t rowsThatCount = 4;

// Rows take the two tables in turn.
struct Shape {
    size_t numRows;
    size_t width;
    const std::array<Table, 2>& tables;

    size_t rows() const { return std::min(numRows, rowsThatCount); }
    const Table& tableOf(size_t row) const { return tables[row % 2]; }
};

template <typename Value>
std::vector<Value*> pointersTo(model::Rows& rows, size_t count)
{
    std::vector<Value*> pointers;
    for (size_t c = 0; c < count; ++c) pointers.push_back(rows[c].data());
    return pointers;
}

struct Reader {
    int position = 0;
    int marker = 0;
    VekDecodeHuffmanState state{};

    VekStatus rows(const Shape& shape, const std::vector<uint8_t>& stream, model::Rows& rows)
    {
        std::vector<const VekDecodeHuffmanSpec*> tablePointers;
        for (size_t c = 0; c < shape.rows(); ++c) tablePointers.push_back(&shape.tableOf(c).object);
        return vekiDecodeHuffmanRow_JPEG_1u16s_C1P4(
            stream.data(), static_cast<int>(stream.size()), &position, pointersTo<int16_t>(rows, shape.rows()).data(),
            static_cast<int>(shape.width), static_cast<int>(shape.numRows), &marker, tablePointers.data(), &state);
    }
    VekStatus one(const Table& table, const std::vector<uint8_t>& stream, int16_t& value)
    {
        return vekiDecodeHuffmanOne_JPEG_1u16s_C1(stream.data(), static_cast<int>(stream.size()), &position, &value,
                                                  &marker, &table.object, &state);
    }
};

model::Rows blankRows(const Shape& shape)
{
    return model::Rows(shape.numRows, std::vector<int16_t>(shape.width, int16_t{77}));
}

std::vector<const model::DecodeTable*> expectedTables(const Shape& shape)
{
    std::vector<const model::DecodeTable*> tables;
    for (size_t c = 0; c < shape.rows(); ++c) tables.push_back(&shape.tableOf(c).expected);
    return tables;
}

// From a state that the decoder can have left, past failures and markers, which are cleared now and then.
void compareWithModel(const Shape& shape, const std::vector<uint8_t>& stream, uint64_t bits, int numBits)
{
    Reader reader;
    reader.state.bitBuffer = bits & ((uint64_t{1} << numBits) - 1);
    reader.state.numBits = numBits;
    model::DecoderState expectedState{reader.state.bitBuffer, numBits, 0};
    model::Input in{stream.data(), static_cast<int>(stream.size())};
    for (int i = 0; i < mostCalls; ++i) {
        model::Rows want = blankRows(shape);
        model::Rows got = want;
        if (i % 4 == 3)
            require(model::decodeValue(in, want[0][0], shape.tableOf(0).expected, expectedState) ==
                    reader.one(shape.tableOf(0), stream, got[0][0]));
        else
            require(model::decodeRows(in, want, expectedTables(shape), expectedState) ==
                    reader.rows(shape, stream, got));
        require(want == got);
        require(in.position == reader.position && in.marker == reader.marker);
        require(expectedState.numBits == reader.state.numBits);
        const int held = expectedState.numBits;
        require(held <= 0 || (expectedState.buffer ^ reader.state.bitBuffer) << (64 - held) == 0);
        if (i % 8 == 7) {
            in.marker = reader.marker = 0;
            expectedState = {};
            reader.state = {};
        }
    }
}

void survive(const Shape& shape, const std::vector<uint8_t>& stream, Bytes& bytes)
{
    const int size = static_cast<int>(stream.size());
    Reader reader;
    reader.state.bitBuffer = bytes.next64();
    reader.state.numBits = static_cast<int32_t>(bytes.next64());
    reader.position = bytes.next() % (size + 1);
    reader.marker = bytes.next() & bytes.next();
    for (int i = 0; i < mostCalls; ++i) {
        model::Rows rows = blankRows(shape);
        if (i % 2 == 0)
            reader.rows(shape, stream, rows);
        else
            reader.one(shape.tableOf(0), stream, rows[0][0]);
        require(reader.position >= 0 && reader.position <= size);
    }
}

void readBack(const Shape& shape, std::vector<uint8_t> stream, const model::Rows& rows)
{
    stream.shrink_to_fit();
    Reader reader;
    model::Rows got = blankRows(shape);
    require(reader.rows(shape, stream, got) == vekStsOk);
    require(std::equal(got.begin(), got.begin() + static_cast<ptrdiff_t>(shape.rows()), rows.begin()));
}

// Rows, one value, and a flush into some room.
void encode(const Shape& shape, size_t room, Bytes& bytes)
{
    std::array<VekEncodeHuffmanSpec, 2> tablePointers{};
    std::array<model::EncodeTable, 2> expectedTables{};
    for (size_t i = 0; i < 2; ++i) {
        const model::HuffmanLists& lists = shape.tables[i].lists;
        const VekStatus status =
            vekiEncodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.vals.data(), &tablePointers[i]);
        require(status == model::buildEncodeTable(lists, expectedTables[i]));
        if (status != vekStsOk)
            return;
    }
    model::Rows rows = blankRows(shape);
    for (auto& row : rows)
        for (int16_t& v : row) {
            const uint8_t first = bytes.next();  // mostly small values
            v = static_cast<int16_t>((first & 1) != 0 ? first << 8 | bytes.next() : static_cast<int8_t>(first) / 2);
        }
    std::vector<const VekEncodeHuffmanSpec*> codes;
    std::vector<const model::EncodeTable*> expectedCodes;
    for (size_t c = 0; c < shape.rows(); ++c) {
        codes.push_back(&tablePointers[c % 2]);
        expectedCodes.push_back(&expectedTables[c % 2]);
    }
    std::vector<uint8_t> dst(room);
    int position = 0;
    VekEncodeHuffmanState state{};
    model::Output out{std::vector<uint8_t>(room)};
    model::EncoderState expectedState;
    const auto compare = [&](VekStatus want, VekStatus got) {
        require(want == got && out.position == position);
        require(std::equal(dst.begin(), dst.begin() + position, out.bytes.begin()));
        require(expectedState.numBits == state.numBits && expectedState.pending == (state.bitBuffer & 0xFFFFFF));
        return got;
    };
    const int size = static_cast<int>(room);
    const VekStatus rowsStatus =
        compare(model::encodeRows(rows, out, expectedCodes, expectedState),
                vekiEncodeHuffmanRow_JPEG_16s1u_P4C1(pointersTo<const int16_t>(rows, shape.rows()).data(),
                                                     static_cast<int>(shape.width), static_cast<int>(shape.numRows),
                                                     dst.data(), size, &position, codes.data(), &state, 0));
    const int16_t value = rows[0].back();
    const VekStatus oneStatus =
        compare(model::encodeValue(value, out, expectedTables[0], expectedState),
                vekiEncodeHuffmanOne_JPEG_16s1u_C1(&value, dst.data(), size, &position, &tablePointers[0], &state, 0));
    const VekStatus flushStatus =
        compare(model::flush(out, expectedState),
                vekiEncodeHuffmanOne_JPEG_16s1u_C1(nullptr, dst.data(), size, &position, nullptr, &state, 1));
    dst.resize(static_cast<size_t>(position));
    if (rowsStatus == vekStsOk && oneStatus == vekStsOk && flushStatus == vekStsOk)  // no 0xFF without its stuffing
        readBack(shape, dst, rows);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Bytes bytes(data, size);
    const size_t numRows = 1 + bytes.next() % 6U;
    const size_t width = 1 + bytes.next() % 64U;
    const size_t room = 1 + bytes.next() % 4U * 256 + bytes.next();
    std::array<Table, 2> tables;
    for (Table& table : tables) {
        table = fuzz::readTable(bytes);
        if (!table.valid)
            return 0;
    }
    const Shape shape{numRows, width, tables};
    const int numBits = bytes.next() % 33;
    const uint64_t bits = bytes.next64();
    Bytes values = bytes;
    encode(shape, room, values);
    std::vector<uint8_t> stream = bytes.rest();
    if (stream.empty())
        return 0;
    stream.shrink_to_fit();  // its end is the end of its memory
    compareWithModel(shape, stream, bits, numBits);
    survive(shape, stream, bytes);
    return 0;
}
