// Lossless rows and single values out of bits.
#include <gtest/gtest.h>

#include "lossless_fixtures.h"
#include "support/sanitizers.h"

namespace {

using lossless::GuardedRows;
using lossless::Table;
using support::GuardedArray;
using support::Random;
using Bytes = std::vector<uint8_t>;

constexpr int rounds(int count) { return support::underSanitizer ? count / 8 + 1 : count; }
constexpr int16_t untouched = 77;

// A stream that is read twice, by the library and by the model. It ends at an unmapped page.
class TwoReaders {
public:
    explicit TwoReaders(const Bytes& stream) : stream_(stream.size())
    {
        std::copy(stream.begin(), stream.end(), stream_.begin());
        in_ = {stream_.data(), static_cast<int>(stream.size())};
        vekiDecodeHuffmanStateInit_JPEG_8u(&state_);
        state_.eobRun = 5;
        state_.endOfBlockPos = 6;
    }
    void startWith(uint64_t bits, int numBits)
    {
        state_.bitBuffer = expectedState_.buffer = bits & ((uint64_t{1} << numBits) - 1);
        state_.numBits = expectedState_.numBits = numBits;
    }
    void startAt(int position) { position_ = in_.position = position; }
    void setMarker(int marker) { marker_ = in_.marker = marker; }
    void setLength(int length) { in_.length = length; }
    void initialise()
    {
        vekiDecodeHuffmanStateInit_JPEG_8u(&state_);
        expectedState_ = {};
        state_.eobRun = 5;
        state_.endOfBlockPos = 6;
    }

    VekStatus rows(int numRows, int width, const std::vector<const Table*>& tables)
    {
        model::Rows expected(static_cast<size_t>(numRows), std::vector<int16_t>(static_cast<size_t>(width), untouched));
        GuardedRows dst(expected, offset_++ % 16);
        std::vector<const model::DecodeTable*> modelTables;
        GuardedArray<const VekDecodeHuffmanSpec*> tablePointers(tables.size());
        for (size_t c = 0; c < tables.size(); ++c) {
            modelTables.push_back(&tables[c]->modelDecode);
            tablePointers[c] = tables[c]->decode();
        }
        const VekStatus want = model::decodeRows(in_, expected, modelTables, expectedState_);
        const VekStatus got =
            vekiDecodeHuffmanRow_JPEG_1u16s_C1P4(stream_.data(), in_.length, &position_, dst.rows(), width, numRows,
                                                 &marker_, tablePointers.data(), &state_);
        compare(want, got);
        for (size_t c = 0; c < std::min<size_t>(expected.size(), 4); ++c)
            EXPECT_EQ(expected[c], dst.row(c, expected[c].size()));
        values_ = expected;
        return got;
    }
    VekStatus one(const Table& table)
    {
        GuardedArray<int16_t> dst(1);
        dst[0] = untouched;
        int16_t expected = untouched;
        const VekStatus want = model::decodeValue(in_, expected, table.modelDecode, expectedState_);
        const VekStatus got = vekiDecodeHuffmanOne_JPEG_1u16s_C1(stream_.data(), in_.length, &position_, dst.data(),
                                                                 &marker_, table.decode(), &state_);
        compare(want, got);
        EXPECT_EQ(expected, dst[0]);
        values_ = {{expected}};
        return got;
    }
    const model::Rows& values() const { return values_; }
    int position() const { return position_; }
    int marker() const { return marker_; }
    int numBits() const { return state_.numBits; }

private:
    void compare(VekStatus want, VekStatus got)
    {
        ASSERT_EQ(want, got);
        ASSERT_EQ(in_.position, position_);
        ASSERT_EQ(in_.marker, marker_);
        ASSERT_EQ(expectedState_.numBits, state_.numBits);
        const int held = std::max(0, expectedState_.numBits);
        ASSERT_EQ(expectedState_.buffer, state_.bitBuffer & ((uint64_t{1} << held) - 1));
        ASSERT_EQ(5, state_.eobRun);
        ASSERT_EQ(6, state_.endOfBlockPos);
    }

    GuardedArray<uint8_t> stream_;
    model::Input in_{};
    model::DecoderState expectedState_;
    model::Rows values_;
    int position_ = 0;
    int marker_ = 0;
    VekDecodeHuffmanState state_{};
    size_t offset_ = 0;
};

Bytes streamOf(const model::Rows& rows, const std::vector<const Table*>& tables)
{
    model::Output out;
    out.bytes.resize(rows.size() * rows[0].size() * 8 + 8);
    model::EncoderState state;
    std::vector<const model::EncodeTable*> modelTables;
    for (const Table* table : tables) modelTables.push_back(&table->modelEncode);
    EXPECT_EQ(vekStsOk, model::encodeRows(rows, out, modelTables, state));
    model::flush(out, state);
    out.bytes.resize(static_cast<size_t>(out.position));
    return out.bytes;
}

// Random bytes; of `markers` in a thousand 0xFF comes, of them some stuffed.
Bytes randomStream(Random& random, int size, int markers)
{
    Bytes stream(static_cast<size_t>(size));
    random.fill(stream);
    for (uint8_t& byte : stream)
        if (byte == 0xFF)
            byte = 0xFE;
    for (size_t i = 0; i < stream.size(); ++i)
        if (random.in(0, 999) < markers) {
            stream[i] = 0xFF;
            if (i + 1 < stream.size() && random.chance(70))
                stream[++i] = 0;
        }
    return stream;
}

// Rows and single values until something fails, and once more after that.
VekStatus readAnything(TwoReaders& readers, const std::vector<Table>& tables, Random& random, int calls, int mostValues)
{
    VekStatus status = vekStsOk;
    bool again = true;
    for (int i = 0; i < calls && again && !testing::Test::HasFailure(); ++i) {
        again = status == vekStsOk;
        const int numRows = random.in(1, 6);
        const VekStatus result = random.chance(70)
                                     ? readers.rows(numRows, random.in(1, mostValues),
                                                    lossless::tablesFor(random, tables, size_t(std::min(numRows, 4))))
                                     : readers.one(tables[0]);
        if (again)
            status = result;
    }
    return status;
}

std::vector<Table> fourTables(Random& random)
{
    std::vector<Table> tables;
    for (int i = 0; i < 4; ++i) tables.push_back(lossless::fullTable(random));
    return tables;
}

TEST(LosslessDecoder, ReadsWhatWasWrittenForEveryWidthAndNumberOfRows)
{
    Random random(1);
    const std::vector<Table> tables = fourTables(random);
    for (int kind = 0; kind < 4; ++kind)
        for (int numRows = 1; numRows <= 4; ++numRows)
            for (int width = 1; width <= 130 && !HasFailure(); width += support::underSanitizer ? 9 : 1) {
                const model::Rows rows = lossless::randomRows(random, numRows, width, kind);
                const auto chosen = lossless::tablesFor(random, tables, rows.size());
                TwoReaders readers(streamOf(rows, chosen));
                ASSERT_EQ(vekStsOk, readers.rows(numRows, width, chosen));
                ASSERT_EQ(rows, readers.values());
            }
}

// One stream, many calls: what one reads ahead the next begins with.
TEST(LosslessDecoder, CarriesItsStateOverCalls)
{
    Random random(2);
    for (int round = 0; round < rounds(80) && !HasFailure(); ++round) {
        const std::vector<Table> tables = fourTables(random);
        const int numRows = random.in(1, 4);
        const auto chosen = lossless::tablesFor(random, tables, static_cast<size_t>(numRows));
        const int width = 400;
        const model::Rows rows = lossless::randomRows(random, numRows, width, round % 4);
        TwoReaders readers(streamOf(rows, chosen));
        for (int x = 0; x < width && !HasFailure();) {
            if (random.chance(20)) {
                for (size_t c = 0; c < chosen.size(); ++c) {
                    ASSERT_EQ(vekStsOk, readers.one(*chosen[c]));
                    ASSERT_EQ(rows[c][static_cast<size_t>(x)], readers.values()[0][0]);
                }
                ++x;
            } else {
                const int length = std::min(width - x, random.in(1, random.in(1, 60)));
                ASSERT_EQ(vekStsOk, readers.rows(numRows, length, chosen));
                for (size_t c = 0; c < chosen.size(); ++c)
                    ASSERT_EQ(std::vector<int16_t>(rows[c].begin() + x, rows[c].begin() + x + length),
                              readers.values()[c]);
                x += length;
            }
        }
    }
}

TEST(LosslessDecoder, EqualsItsModelOnAnyStream)
{
    Random random(3);
    std::array<int, 3> outcomes{};
    for (int round = 0; round < rounds(6000) && !HasFailure(); ++round) {
        std::vector<Table> tables;
        const int last = random.chance(70) ? 16 : 255;
        for (int i = 0; i < 4; ++i)
            tables.emplace_back(lossless::randomLists(random, random.in(1, random.in(1, last + 1)), last));
        const int markers = random.in(0, 3) * random.in(0, 60);
        TwoReaders readers(randomStream(random, random.in(1, random.in(1, 400)), markers));
        if (random.chance(50))
            readers.startWith(random.bits(), random.in(0, 32));
        if (random.chance(10))
            readers.setMarker(0xD9);
        const VekStatus status = readAnything(readers, tables, random, random.in(1, 40), random.in(1, 100));
        ++outcomes[status == vekStsOk ? 0 : status == vekStsJpegOutOfBuffer ? 1 : 2];
    }
    for (const int count : outcomes) EXPECT_LT(3, count);
}

// Codes without a free place at their end, and tables whose entries no builder makes.
TEST(LosslessDecoder, EqualsItsModelWithTablesOfAnySymbols)
{
    Random random(4);
    for (int round = 0; round < rounds(2000) && !HasFailure(); ++round) {
        std::vector<Table> tables;
        for (int i = 0; i < 4; ++i) {
            model::HuffmanLists lists;
            int free = 1;
            int symbols = 0;
            for (size_t length = 0; length < 16; ++length) {
                free = std::min(2 * free, 256);
                const int count = random.in(0, length == 15 ? free : random.in(0, free));
                const int fitting = std::min(count, 256 - symbols);
                lists.bits[length] = static_cast<uint8_t>(std::min(fitting, 255));
                symbols += lists.bits[length];
                free -= lists.bits[length];
            }
            for (uint8_t& value : lists.vals)
                value = random.chance(70) ? random.in<uint8_t>(0, 16) : random.any<uint8_t>();
            Table table(lists);
            for (int k = 0; k < 8; ++k) {
                const auto symbol = static_cast<uint16_t>(1 << random.in(4, 15) | random.in(0, 15));
                const auto at = random.in<size_t>(0, 255);
                table.decode()->symbols[at] = table.modelDecode.symbols[at] = symbol;
                uint32_t& entry = table.decode()->lookup[random.in<size_t>(0, 255)];
                if (entry != 0)
                    entry = (entry & 0xFFFF0000) | symbol;
            }
            std::copy_n(table.decode()->lookup, 256, table.modelDecode.lookup.begin());
            tables.push_back(std::move(table));
        }
        TwoReaders readers(randomStream(random, random.in(1, 300), random.in(0, 30)));
        readAnything(readers, tables, random, 40, 50);
    }
}

// After the end of its bytes, and of the row, the reader goes on with more of them as if they had always been there or
// not, as the model does.
TEST(LosslessDecoder, EqualsItsModelOnStreamsCutOffAtEveryByte)
{
    Random random(5);
    for (int round = 0; round < rounds(12) && !HasFailure(); ++round) {
        const std::vector<Table> tables = fourTables(random);
        const int numRows = 1 + round % 4;
        const auto chosen = lossless::tablesFor(random, tables, static_cast<size_t>(numRows));
        const model::Rows rows = lossless::randomRows(random, numRows, 160 / numRows, round % 3);
        const Bytes stream = streamOf(rows, chosen);
        for (size_t size = 1; size < stream.size() && !HasFailure(); ++size) {
            TwoReaders readers(Bytes(stream.begin(), stream.begin() + static_cast<ptrdiff_t>(size)));
            for (int i = 0; i < 3; ++i) readers.rows(numRows, 160 / numRows, chosen);
            TwoReaders growing(stream);
            growing.setLength(static_cast<int>(size));
            growing.rows(numRows, 100 / numRows, chosen);
            growing.setLength(static_cast<int>(stream.size()));
            growing.rows(numRows, 160 / numRows, chosen);
        }
    }
}

TEST(LosslessDecoder, EqualsItsModelWithAMarkerAtEveryByte)
{
    Random random(6);
    for (int round = 0; round < rounds(12) && !HasFailure(); ++round) {
        const std::vector<Table> tables = fourTables(random);
        const int numRows = 1 + round % 4;
        const auto chosen = lossless::tablesFor(random, tables, static_cast<size_t>(numRows));
        const model::Rows rows = lossless::randomRows(random, numRows, 120 / numRows, round % 3);
        const Bytes stream = streamOf(rows, chosen);
        for (size_t at = 0; at <= stream.size() && !HasFailure(); ++at) {
            Bytes marked = stream;
            const Bytes marker = at % 3 == 0 ? Bytes{0xFF, 0xD0} : Bytes{0xFF, 0xFF, 0xD9};
            marked.insert(marked.begin() + static_cast<ptrdiff_t>(at), marker.begin(), marker.end());
            TwoReaders readers(marked);
            for (int i = 0; i < 3; ++i) readers.rows(numRows, 60 / numRows, chosen);
            readers.setMarker(0);
            if (round % 2 == 0)
                readers.initialise();
            for (int i = 0; i < 3; ++i) readers.rows(numRows, 60 / numRows, chosen);
        }
    }
}

TEST(LosslessDecoder, EqualsItsModelAtEveryPositionWithAnyBitsInHand)
{
    Random random(7);
    const std::vector<Table> tables = fourTables(random);
    for (int numBits = 0; numBits <= 32 && !HasFailure(); ++numBits)
        for (int position = 0; position <= 70; ++position) {
            TwoReaders readers(randomStream(random, 64, 20));
            readers.startWith(random.bits(), numBits);
            readers.startAt(position);  // also behind the end
            readAnything(readers, tables, random, 4, 30);
        }
}

TEST(LosslessDecoder, ExtendsMagnitudesOfEveryLength)
{
    const Table table = lossless::standardTable();
    model::Rows rows(1);
    for (int v = -32768; v <= 32767; v += support::underSanitizer ? 13 : 1) rows[0].push_back(static_cast<int16_t>(v));
    TwoReaders readers(streamOf(rows, {&table}));
    EXPECT_EQ(vekStsOk, readers.rows(1, static_cast<int>(rows[0].size()), {&table}));
    EXPECT_EQ(rows, readers.values());
}

TEST(LosslessDecoder, CategorySixteenHasNoMagnitudeBits)
{
    const Table table = lossless::standardTable();
    TwoReaders readers({0xFF, 0x00, 0b11111000, 0b01010000});  // 14 bits of category 16, then 00, 010 1
    EXPECT_EQ(vekStsOk, readers.rows(1, 3, {&table}));
    EXPECT_EQ((model::Rows{{-32768, 0, 1}}), readers.values());
}

TEST(LosslessDecoder, SymbolsAboveSixteenReadAsCategorySixteen)
{
    model::HuffmanLists lists;
    lists.bits = {0, 3};
    lists.vals = {1, 17, 0xFF};
    const Table table(lists);
    TwoReaders readers({0b01100010, 0b01000000});  // 01, 10, 00 1, 00 1
    EXPECT_EQ(vekStsOk, readers.rows(1, 2, {&table}));
    EXPECT_EQ((model::Rows{{-32768, -32768}}), readers.values());
    EXPECT_EQ(vekStsOk, readers.one(table));
    EXPECT_EQ(1, readers.values()[0][0]);
}

TEST(LosslessDecoder, OfFiveRowsOnlyFourAreRead)
{
    const Table table = lossless::standardTable();
    const std::vector<const Table*> tables(4, &table);
    const model::Rows rows = {{1, 2}, {3, 4}, {5, 6}, {7, 8}};
    TwoReaders readers(streamOf(rows, tables));
    EXPECT_EQ(vekStsOk, readers.rows(5, 2, tables));
    for (size_t c = 0; c < 4; ++c) EXPECT_EQ(rows[c], readers.values()[c]);
}

TEST(LosslessDecoder, AFailureKeepsTheValuesBeforeAndASingleValueAlone)
{
    const Table table = lossless::standardTable();
    TwoReaders readers({0b01010101});
    EXPECT_EQ(vekStsJpegOutOfBuffer, readers.rows(1, 4, {&table}));
    EXPECT_EQ((model::Rows{{1, 1, untouched, untouched}}), readers.values());
    EXPECT_EQ(vekStsJpegOutOfBuffer, readers.one(table));
    EXPECT_EQ(untouched, readers.values()[0][0]);
    TwoReaders zero({0});
    EXPECT_EQ(vekStsOk, zero.one(table));
    EXPECT_EQ(0, zero.values()[0][0]);
}

TEST(LosslessDecoder, AMarkerIsHandedOverAndTheBitsBeforeItStillCount)
{
    const Table table = lossless::standardTable();
    TwoReaders readers({0b01010000, 0xFF, 0xFF, 0xD9, 0x55});
    EXPECT_EQ(vekStsOk, readers.rows(2, 1, {&table, &table}));
    EXPECT_EQ((model::Rows{{1}, {0}}), readers.values());
    EXPECT_EQ(0xD9, readers.marker());
    EXPECT_EQ(4, readers.position());
    EXPECT_EQ(2, readers.numBits());
    EXPECT_EQ(vekStsOk, readers.one(table));
    EXPECT_EQ(vekStsJpegMarkerShort, readers.one(table));
}

TEST(LosslessDecoder, ByteOfOnesAtTheVeryEndFails)
{
    const Table table = lossless::standardTable();
    TwoReaders readers({0xFF});
    readers.startWith(0, 4);
    EXPECT_EQ(vekStsJpegOutOfBuffer, readers.one(table));
}

TEST(LosslessDecoder, ACodeThatIsNoneIsReported)
{
    const Table table = lossless::standardTable();
    TwoReaders readers({0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00});
    EXPECT_EQ(vekStsJpegMarkerShort, readers.rows(1, 1, {&table}));
}

TEST(LosslessDecoder, RowsCheckTheirArgumentsInOrder)
{
    const Table table = lossless::standardTable();
    const uint8_t src[4] = {};
    int16_t row[2] = {untouched, untouched};
    int16_t* rows[4] = {row, row, row, row};
    const VekDecodeHuffmanSpec* tablePointers[4] = {table.decode(), table.decode(), table.decode(), table.decode()};
    int position = 1;
    int marker = 0;
    VekDecodeHuffmanState state{};
    const auto call = [&](const uint8_t* pSrc, int size, int* pPosition, int16_t** dst, int length, int numRows,
                          int* pMarker, const VekDecodeHuffmanSpec** tables, VekDecodeHuffmanState* pState) {
        return vekiDecodeHuffmanRow_JPEG_1u16s_C1P4(pSrc, size, pPosition, dst, length, numRows, pMarker, tables,
                                                    pState);
    };
    EXPECT_EQ(vekStsNullPointer, call(nullptr, 0, nullptr, nullptr, 0, 0, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsBadSize, call(src, 0, nullptr, nullptr, 0, 0, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsBadSize, call(src, -1, nullptr, nullptr, 0, 0, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsNullPointer, call(src, 4, nullptr, rows, 0, 0, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsNullPointer, call(src, 4, &position, nullptr, 0, 0, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsBadArgument, call(src, 4, &position, rows, 0, 1, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsBadArgument, call(src, 4, &position, rows, -1, 1, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsBadArgument, call(src, 4, &position, rows, 2, 0, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsBadArgument, call(src, 4, &position, rows, 2, -1, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsNullPointer, call(src, 4, &position, rows, 2, 1, nullptr, tablePointers, &state));
    EXPECT_EQ(vekStsNullPointer, call(src, 4, &position, rows, 2, 1, &marker, nullptr, &state));
    EXPECT_EQ(vekStsNullPointer, call(src, 4, &position, rows, 2, 1, &marker, tablePointers, nullptr));
    for (int c = 0; c < 4; ++c) {
        rows[c] = nullptr;
        EXPECT_EQ(vekStsNullPointer, call(src, 4, &position, rows, 2, 4, &marker, tablePointers, &state));
        EXPECT_EQ(vekStsNullPointer, call(src, 4, &position, rows, 2, 5, &marker, tablePointers, &state));
        rows[c] = row;
        tablePointers[c] = nullptr;
        EXPECT_EQ(vekStsNullPointer, call(src, 4, &position, rows, 2, 4, &marker, tablePointers, &state));
        tablePointers[c] = table.decode();
    }
    EXPECT_EQ(untouched, row[0]);
    EXPECT_EQ(1, position);
    EXPECT_EQ(0, state.numBits);
    rows[2] = nullptr;  // behind the rows that count
    tablePointers[3] = nullptr;
    EXPECT_EQ(vekStsOk, call(src, 4, &position, rows, 1, 2, &marker, tablePointers, &state));
    EXPECT_EQ(0, row[0]);
    EXPECT_EQ(untouched, row[1]);
}

TEST(LosslessDecoder, SingleValuesCheckTheirArgumentsInOrder)
{
    const Table table = lossless::standardTable();
    const uint8_t src[4] = {};
    int16_t dst = untouched;
    int position = 1;
    int marker = 0;
    VekDecodeHuffmanState state{};
    const auto call = [&](const uint8_t* pSrc, int size, int* pPosition, int16_t* pDst, int* pMarker,
                          const VekDecodeHuffmanSpec* pTable, VekDecodeHuffmanState* pState) {
        return vekiDecodeHuffmanOne_JPEG_1u16s_C1(pSrc, size, pPosition, pDst, pMarker, pTable, pState);
    };
    EXPECT_EQ(vekStsNullPointer, call(nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsBadSize, call(src, 0, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(vekStsBadSize, call(src, -5, &position, &dst, &marker, table.decode(), &state));
    EXPECT_EQ(vekStsNullPointer, call(src, 4, nullptr, &dst, &marker, table.decode(), &state));
    EXPECT_EQ(vekStsNullPointer, call(src, 4, &position, nullptr, &marker, table.decode(), &state));
    EXPECT_EQ(vekStsNullPointer, call(src, 4, &position, &dst, nullptr, table.decode(), &state));
    EXPECT_EQ(vekStsNullPointer, call(src, 4, &position, &dst, &marker, nullptr, &state));
    EXPECT_EQ(vekStsNullPointer, call(src, 4, &position, &dst, &marker, table.decode(), nullptr));
    EXPECT_EQ(untouched, dst);
    EXPECT_EQ(1, position);
    EXPECT_EQ(0, state.numBits);
}

// A picture of three components there and back: differences, bits, differences, samples.
TEST(LosslessCoder, APictureSurvivesEveryPredictor)
{
    Random random(8);
    constexpr int width = 61;
    constexpr int height = 9;
    const Table table = lossless::fullTable(random);
    const std::vector<const Table*> tables(3, &table);
    const auto differences = [](bool first, const int16_t* src, const int16_t* above, int16_t* dst, int predictor) {
        return first ? vekiDiffPredFirstRow_JPEG_16s_C1(src, dst, width, 16, 0)
                     : vekiDiffPredRow_JPEG_16s_C1(src, above, dst, width, predictor);
    };
    const auto samples = [](bool first, const int16_t* src, const int16_t* above, int16_t* dst, int predictor) {
        return first ? vekiReconstructPredFirstRow_JPEG_16s_C1(src, dst, width, 16, 0)
                     : vekiReconstructPredRow_JPEG_16s_C1(src, above, dst, width, predictor);
    };
    for (int predictor = 1; predictor <= 7; ++predictor) {
        std::vector<model::Rows> picture;
        for (int y = 0; y < height; ++y) picture.push_back(lossless::randomRows(random, 3, width, y % 4));
        Bytes stream(1 << 14);
        int position = 0;
        VekEncodeHuffmanState encoder{};
        const VekEncodeHuffmanSpec* codes[3] = {table.encode(), table.encode(), table.encode()};
        const auto room = static_cast<int>(stream.size());
        for (size_t y = 0; y < height; ++y) {
            model::Rows d(3, std::vector<int16_t>(width));
            for (size_t c = 0; c < 3; ++c)
                differences(y == 0, picture[y][c].data(), y == 0 ? nullptr : picture[y - 1][c].data(), d[c].data(),
                            predictor);
            const int16_t* rows[3] = {d[0].data(), d[1].data(), d[2].data()};
            ASSERT_EQ(vekStsOk, vekiEncodeHuffmanRow_JPEG_16s1u_P4C1(rows, width, 3, stream.data(), room, &position,
                                                                     codes, &encoder, 0));
        }
        vekiEncodeHuffmanRow_JPEG_16s1u_P4C1(nullptr, 0, 0, stream.data(), room, &position, nullptr, &encoder, 1);
        stream.resize(static_cast<size_t>(position));
        TwoReaders readers(stream);
        model::Rows above;
        for (size_t y = 0; y < height; ++y) {
            ASSERT_EQ(vekStsOk, readers.rows(3, width, tables));
            model::Rows rows = readers.values();
            for (size_t c = 0; c < 3; ++c)
                samples(y == 0, rows[c].data(), y == 0 ? nullptr : above[c].data(), rows[c].data(), predictor);
            ASSERT_EQ(picture[y], rows);
            above = rows;
        }
    }
}

}  // namespace
