// Lossless rows and single values into bits, and their statistics.
#include <gtest/gtest.h>

#include "lossless_fixtures.h"
#include "support/sanitizers.h"

namespace {

using lossless::GuardedRows;
using lossless::Table;
using support::GuardedArray;
using support::Random;

// A stream that is written twice, by the library and by the model. `room` bytes are left behind the `start` ones.
class TwoStreams {
public:
    explicit TwoStreams(int room, int start = 0) : dst_(static_cast<size_t>(start + room)), position_(start)
    {
        std::fill(dst_.begin(), dst_.end(), uint8_t{0xA5});
        expected_.bytes.assign(dst_.size(), 0xA5);
        expected_.position = start;
        vekiEncodeHuffmanStateInit_JPEG_8u(&state_);
        state_.eobRun = 3;
        state_.numCorrectionBits = 2;
        state_.correctionBits[5] = 1;
    }

    VekStatus rows(const model::Rows& rows, const std::vector<const Table*>& tables)
    {
        std::vector<const model::EncodeTable*> modelTables;
        GuardedArray<const VekEncodeHuffmanSpec*> tablePointers(tables.size());
        for (size_t c = 0; c < tables.size(); ++c) {
            modelTables.push_back(&tables[c]->modelEncode);
            tablePointers[c] = tables[c]->encode();
        }
        GuardedRows src(rows, offset_++ % 16);
        const VekStatus want = model::encodeRows(rows, expected_, modelTables, expectedState_);
        const VekStatus got = vekiEncodeHuffmanRow_JPEG_16s1u_P4C1(src.constRows(), static_cast<int>(rows[0].size()),
                                                                   static_cast<int>(rows.size()), dst_.data(), room(),
                                                                   &position_, tablePointers.data(), &state_, 0);
        compare(want, got);
        return got;
    }
    VekStatus one(int16_t value, const Table& table)
    {
        const VekStatus want = model::encodeValue(value, expected_, table.modelEncode, expectedState_);
        GuardedArray<int16_t> src(1);
        src[0] = value;
        const VekStatus got =
            vekiEncodeHuffmanOne_JPEG_16s1u_C1(src.data(), dst_.data(), room(), &position_, table.encode(), &state_, 0);
        compare(want, got);
        return got;
    }
    VekStatus flush(bool byRows)
    {
        const VekStatus want = model::flush(expected_, expectedState_);
        const VekStatus got =
            byRows ? vekiEncodeHuffmanRow_JPEG_16s1u_P4C1(nullptr, 0, 0, dst_.data(), room(), &position_, nullptr,
                                                          &state_, 1)
                   : vekiEncodeHuffmanOne_JPEG_16s1u_C1(nullptr, dst_.data(), room(), &position_, nullptr, &state_, -7);
        flushed_ = true;
        compare(want, got);
        return got;
    }
    int position() const { return position_; }
    std::vector<uint8_t> bytes() { return {dst_.begin(), dst_.begin() + position_}; }
    int pendingBits() const { return state_.numBits; }

private:
    int room() { return static_cast<int>(dst_.size()); }
    void compare(VekStatus want, VekStatus got)
    {
        ASSERT_EQ(want, got);
        ASSERT_EQ(expected_.position, position_);
        ASSERT_EQ(0, std::memcmp(expected_.bytes.data(), dst_.data(), static_cast<size_t>(position_)));
        ASSERT_EQ(expectedState_.numBits, state_.numBits);
        ASSERT_EQ(expectedState_.pending, state_.bitBuffer & 0xFFFFFF);  // no bit below the pending ones either
        ASSERT_EQ(flushed_ ? 0 : 3, state_.eobRun);
        ASSERT_EQ(flushed_ ? 0 : 2, state_.numCorrectionBits);
        ASSERT_EQ(flushed_ ? 0 : 1, state_.correctionBits[5]);
    }

    model::Output expected_;
    model::EncoderState expectedState_;
    GuardedArray<uint8_t> dst_;
    int position_;
    VekEncodeHuffmanState state_;
    size_t offset_ = 0;
    bool flushed_ = false;
};

constexpr int rounds(int count) { return support::underSanitizer ? count / 8 + 1 : count; }

// Rows, single values and flushes in any order, until the first failure, which is compared too.
VekStatus writeAnything(TwoStreams& streams, const std::vector<Table>& tables, Random& random, int calls,
                        int mostValues)
{
    VekStatus status = vekStsOk;
    for (int i = 0; i < calls && status == vekStsOk && !testing::Test::HasFailure(); ++i) {
        const int numRows = random.in(1, 6);
        const int kind = random.in(0, 3);
        if (random.chance(60))
            status = streams.rows(lossless::randomRows(random, numRows, random.in(1, mostValues), kind),
                                  lossless::tablesFor(random, tables, static_cast<size_t>(std::min(numRows, 4))));
        else if (random.chance(90))
            status = streams.one(lossless::randomValue(random, kind), tables[0]);
        else
            status = streams.flush(random.chance(50));
    }
    return status;
}

TEST(LosslessEncoder, EqualsItsModelOverLongStreams)
{
    Random random(1);
    for (int round = 0; round < rounds(60) && !HasFailure(); ++round) {
        std::vector<Table> tables;
        for (int i = 0; i < 4; ++i) tables.push_back(lossless::fullTable(random));
        TwoStreams streams(1 << 16);
        ASSERT_EQ(vekStsOk, writeAnything(streams, tables, random, 60, 70));
    }
}

TEST(LosslessEncoder, EqualsItsModelForEveryWidthAndNumberOfRows)
{
    Random random(2);
    std::vector<Table> tables;
    for (int i = 0; i < 4; ++i) tables.push_back(lossless::fullTable(random));
    for (int kind = 0; kind < 4; ++kind)
        for (int numRows = 1; numRows <= 6; ++numRows) {
            TwoStreams streams(1 << 18);
            for (int width = 1; width <= 130 && !HasFailure(); width += support::underSanitizer ? 9 : 1)
                ASSERT_EQ(vekStsOk, streams.rows(lossless::randomRows(random, numRows, width, kind),
                                                 lossless::tablesFor(random, tables, size_t(std::min(numRows, 4)))));
        }
}

TEST(LosslessEncoder, EqualsItsModelWithCategoriesMissing)
{
    Random random(3);
    int failures = 0;
    int successes = 0;
    for (int round = 0; round < rounds(1500) && !HasFailure(); ++round) {
        std::vector<Table> tables;
        for (int i = 0; i < 4; ++i) tables.emplace_back(lossless::randomLists(random, random.in(12, 17)));
        TwoStreams streams(4000);
        ++(writeAnything(streams, tables, random, random.in(1, 4), 20) == vekStsOk ? successes : failures);
        streams.flush(true);
    }
    EXPECT_LT(3, failures);
    EXPECT_LT(3, successes);
}

// Of an entry's code only its length's lowest bits count, and with a length of 0 the entry is no code.
TEST(LosslessEncoder, EqualsItsModelWithEntriesOfAnyValue)
{
    Random random(4);
    int failures = 0;
    for (int round = 0; round < rounds(1500) && !HasFailure(); ++round) {
        std::vector<Table> tables;
        for (int i = 0; i < 4; ++i) {
            tables.push_back(lossless::standardTable());
            for (size_t category = 0; category <= 16; ++category)
                tables.back().setEntry(category, static_cast<uint32_t>(random.in(random.chance(2) ? 0 : 1, 16)) << 16 |
                                                     random.any<uint16_t>());
        }
        TwoStreams streams(4000);
        failures += writeAnything(streams, tables, random, 6, 20) != vekStsOk;
    }
    EXPECT_LT(3, failures);
}

TEST(LosslessEncoder, EqualsItsModelInEveryRoom)
{
    Random random(5);
    std::vector<Table> tables;
    for (int i = 0; i < 4; ++i) tables.push_back(lossless::fullTable(random));
    for (int room = 0; room <= 160 && !HasFailure(); ++room)
        for (int round = 0; round < rounds(24) && !HasFailure(); ++round) {
            TwoStreams streams(room, 1 + round % 9);
            const VekStatus status = writeAnything(streams, tables, random, 200, 1 + 2 * round);
            ASSERT_EQ(vekStsJpegOutOfBuffer, status);
            streams.flush(round % 2 == 0);  // of the bits from before the failure
            streams.one(1, tables[0]);
        }
}

// The same rows into one byte more each time, so that every value of theirs is once the one that finds no room.
TEST(LosslessEncoder, EqualsItsModelWhereverTheRoomEnds)
{
    Random random(6);
    const Table table = lossless::fullTable(random);
    for (int numRows = 1; numRows <= 4; ++numRows)
        for (int kind = 0; kind < 4; ++kind) {
            const model::Rows rows = lossless::randomRows(random, numRows, 50, kind);
            const std::vector<const Table*> tables(static_cast<size_t>(numRows), &table);
            VekStatus status = vekStsJpegOutOfBuffer;
            for (int room = 1; status != vekStsOk && !HasFailure(); ++room) {
                TwoStreams streams(room);
                status = streams.rows(rows, tables);
                ASSERT_GT(2000, room);
            }
        }
}

TEST(LosslessEncoder, AFullDestinationTakesNoByte)
{
    const Table table = lossless::standardTable();
    TwoStreams streams(0, 4);
    EXPECT_EQ(vekStsOk, streams.one(0, table));  // 00 stays pending
    EXPECT_EQ(vekStsOk, streams.rows({{0, 0}}, {&table}));
    EXPECT_EQ(6, streams.pendingBits());
    EXPECT_EQ(vekStsJpegOutOfBuffer, streams.rows({{0}}, {&table}));
    EXPECT_EQ(6, streams.pendingBits());
    EXPECT_EQ(vekStsJpegOutOfBuffer, streams.flush(true));
    EXPECT_EQ(0, streams.pendingBits());
    EXPECT_EQ(vekStsOk, streams.flush(false));
    EXPECT_EQ(4, streams.position());
}

TEST(LosslessEncoder, AByteOfOnesOnTheLastFreeByteLacksItsZero)
{
    Table table = lossless::standardTable();
    table.setEntry(0, 8 << 16 | 0xFF);
    TwoStreams streams(1);
    EXPECT_EQ(vekStsJpegOutOfBuffer, streams.rows({{0}}, {&table}));
    EXPECT_EQ((std::vector<uint8_t>{0xFF}), streams.bytes());
    TwoStreams wider(2);
    EXPECT_EQ(vekStsOk, wider.rows({{0}}, {&table}));
    EXPECT_EQ((std::vector<uint8_t>{0xFF, 0}), wider.bytes());
}

TEST(LosslessEncoder, MagnitudesOfNegativeValuesAreThoseOfOneLess)
{
    const Table table = lossless::standardTable();
    TwoStreams streams(100);
    streams.rows({{0, 1, -1, 2, -2, 3, -3}}, {&table});  // 00 010.1 010.0 011.10 011.01 011.11 011.00, and padding
    streams.flush(true);
    EXPECT_EQ((std::vector<uint8_t>{0b00010101, 0b00011100, 0b11010111, 0b10110011}), streams.bytes());
    TwoStreams ends(100);
    ends.rows({{32767, -32767}}, {&table});  // 1111111111110 and 15 ones, 1111111111110 and 15 zeros
    ends.flush(true);
    EXPECT_EQ((std::vector<uint8_t>{0xFF, 0, 0xF7, 0xFF, 0, 0xFF, 0, 0xFF, 0, 0, 0}), ends.bytes());
}

TEST(LosslessEncoder, CategorySixteenHasNoMagnitudeBits)
{
    const Table table = lossless::standardTable();
    TwoStreams streams(100);
    EXPECT_EQ(vekStsOk, streams.one(-32768, table));
    EXPECT_EQ(6, streams.pendingBits());  // of a code of 14 bits
    EXPECT_EQ(vekStsOk, streams.rows({{-32768}, {0}}, {&table, &table}));
    EXPECT_EQ(6, streams.pendingBits());  // 14 + 14 + 2 bits
    Table without = lossless::standardTable();
    without.setEntry(16, 0);
    EXPECT_EQ(vekStsJpegHuffmanTable, streams.one(-32768, without));
    EXPECT_EQ(vekStsJpegHuffmanTable, streams.rows({{-32768}}, {&without}));
    EXPECT_EQ(vekStsOk, streams.rows({{-32767}}, {&without}));
}

TEST(LosslessEncoder, EveryValueIsWrittenAsItsModelWritesIt)
{
    const Table table = lossless::standardTable();
    TwoStreams streams(1 << 19);
    model::Rows rows(1);
    for (int v = -32768; v <= 32767; ++v) rows[0].push_back(static_cast<int16_t>(v));
    EXPECT_EQ(vekStsOk, streams.rows(rows, {&table}));
}

TEST(LosslessEncoder, OfFiveRowsOnlyFourAreCoded)
{
    const Table table = lossless::standardTable();
    TwoStreams five(100);
    TwoStreams four(100);
    EXPECT_EQ(vekStsOk, five.rows({{1, 2}, {3, 4}, {5, 6}, {7, 8}, {9, 10}}, {&table, &table, &table, &table}));
    EXPECT_EQ(vekStsOk, four.rows({{1, 2}, {3, 4}, {5, 6}, {7, 8}}, {&table, &table, &table, &table}));
    EXPECT_EQ(four.bytes(), five.bytes());
    EXPECT_EQ(four.pendingBits(), five.pendingBits());
}

TEST(LosslessEncoder, AFailedRowKeepsTheValuesBefore)
{
    Table table = lossless::standardTable();
    table.setEntry(3, 0);
    TwoStreams streams(100);
    EXPECT_EQ(vekStsJpegHuffmanTable, streams.rows({{1, 1, 7, 1}}, {&table}));
    EXPECT_EQ((std::vector<uint8_t>{0b01010101}), streams.bytes());
    EXPECT_EQ(0, streams.pendingBits());
}

struct Untouched {
    uint8_t dst[4] = {9, 9, 9, 9};
    int position = 1;
    VekEncodeHuffmanState state{0x600000, 3, 0, 0, {}};

    void check() const
    {
        EXPECT_EQ(9, dst[1]);
        EXPECT_EQ(1, position);
        EXPECT_EQ(3, state.numBits);
        EXPECT_EQ(0x600000U, state.bitBuffer);
    }
};

TEST(LosslessEncoder, RowsCheckTheirArgumentsInOrder)
{
    const Table table = lossless::standardTable();
    const int16_t row[2] = {};
    const int16_t* rows[4] = {row, row, row, row};
    const int16_t* none[4] = {};
    const VekEncodeHuffmanSpec* tablePointers[4] = {table.encode(), table.encode(), table.encode(), table.encode()};
    Untouched out;
    const auto call = [&](const int16_t** src, int length, int numRows, uint8_t* dst, int room, int* position,
                          const VekEncodeHuffmanSpec** tables, VekEncodeHuffmanState* state, int flush) {
        return vekiEncodeHuffmanRow_JPEG_16s1u_P4C1(src, length, numRows, dst, room, position, tables, state, flush);
    };
    EXPECT_EQ(vekStsNullPointer, call(nullptr, 0, 0, nullptr, 0, nullptr, nullptr, nullptr, 1));
    EXPECT_EQ(vekStsBadSize, call(nullptr, 0, 0, out.dst, 0, nullptr, nullptr, nullptr, 1));
    EXPECT_EQ(vekStsBadSize, call(nullptr, 0, 0, out.dst, -1, nullptr, nullptr, nullptr, 0));
    EXPECT_EQ(vekStsNullPointer, call(rows, 0, 0, out.dst, 4, nullptr, tablePointers, &out.state, 1));
    EXPECT_EQ(vekStsNullPointer, call(rows, 0, 0, out.dst, 4, &out.position, tablePointers, nullptr, 1));
    EXPECT_EQ(vekStsNullPointer, call(rows, 0, 0, out.dst, 4, nullptr, tablePointers, &out.state, 0));
    EXPECT_EQ(vekStsNullPointer, call(rows, 0, 0, out.dst, 4, &out.position, tablePointers, nullptr, 0));
    EXPECT_EQ(vekStsNullPointer, call(nullptr, 0, 0, out.dst, 4, &out.position, nullptr, &out.state, 0));
    EXPECT_EQ(vekStsBadArgument, call(rows, 0, 1, out.dst, 4, &out.position, nullptr, &out.state, 0));
    EXPECT_EQ(vekStsBadArgument, call(rows, -3, 1, out.dst, 4, &out.position, nullptr, &out.state, 0));
    EXPECT_EQ(vekStsBadArgument, call(rows, 2, 0, out.dst, 4, &out.position, nullptr, &out.state, 0));
    EXPECT_EQ(vekStsBadArgument, call(none, 2, -1, out.dst, 4, &out.position, nullptr, &out.state, 0));
    EXPECT_EQ(vekStsNullPointer, call(rows, 2, 1, out.dst, 4, &out.position, nullptr, &out.state, 0));
    for (int c = 0; c < 4; ++c) {
        rows[c] = nullptr;
        EXPECT_EQ(vekStsNullPointer, call(rows, 2, 4, out.dst, 4, &out.position, tablePointers, &out.state, 0));
        EXPECT_EQ(vekStsNullPointer, call(rows, 2, 9, out.dst, 4, &out.position, tablePointers, &out.state, 0));
        rows[c] = row;
        tablePointers[c] = nullptr;
        EXPECT_EQ(vekStsNullPointer, call(rows, 2, 4, out.dst, 4, &out.position, tablePointers, &out.state, 0));
        tablePointers[c] = table.encode();
    }
    out.check();
    rows[2] = nullptr;  // behind the rows that count
    tablePointers[3] = nullptr;
    EXPECT_EQ(vekStsOk, call(rows, 1, 2, out.dst, 4, &out.position, tablePointers, &out.state, 0));
    EXPECT_EQ(vekStsOk, call(nullptr, 0, 0, out.dst, 4, &out.position, nullptr, &out.state, 1));
}

TEST(LosslessEncoder, SingleValuesCheckTheirArgumentsInOrder)
{
    const Table table = lossless::standardTable();
    const int16_t value = 0;
    Untouched out;
    const auto call = [&](const int16_t* src, uint8_t* dst, int room, int* position, const VekEncodeHuffmanSpec* pTable,
                          VekEncodeHuffmanState* state, int flush) {
        return vekiEncodeHuffmanOne_JPEG_16s1u_C1(src, dst, room, position, pTable, state, flush);
    };
    EXPECT_EQ(vekStsNullPointer, call(nullptr, nullptr, 0, nullptr, nullptr, nullptr, 1));
    EXPECT_EQ(vekStsBadSize, call(nullptr, out.dst, 0, nullptr, nullptr, nullptr, 1));
    EXPECT_EQ(vekStsBadSize, call(nullptr, out.dst, -9, nullptr, nullptr, nullptr, 0));
    EXPECT_EQ(vekStsNullPointer, call(&value, out.dst, 4, nullptr, table.encode(), &out.state, 1));
    EXPECT_EQ(vekStsNullPointer, call(&value, out.dst, 4, &out.position, table.encode(), nullptr, 1));
    EXPECT_EQ(vekStsNullPointer, call(&value, out.dst, 4, nullptr, table.encode(), &out.state, 0));
    EXPECT_EQ(vekStsNullPointer, call(&value, out.dst, 4, &out.position, table.encode(), nullptr, 0));
    EXPECT_EQ(vekStsNullPointer, call(nullptr, out.dst, 4, &out.position, table.encode(), &out.state, 0));
    EXPECT_EQ(vekStsNullPointer, call(&value, out.dst, 4, &out.position, nullptr, &out.state, 0));
    out.check();
    EXPECT_EQ(vekStsOk, call(nullptr, out.dst, 4, &out.position, nullptr, &out.state, 1));
    EXPECT_EQ(2, out.position);
    EXPECT_EQ(0b01111111, out.dst[1]);  // 011, and padding
}

TEST(LosslessStatistics, CountTheCategoryOfEveryValue)
{
    std::array<int, 256> expected{};
    GuardedArray<int> counts(256);
    GuardedArray<int16_t> src(1);
    for (size_t i = 0; i < 256; ++i) counts[i] = expected[i] = static_cast<int>(1000 + i);
    for (int v = -32768; v <= 32767; ++v) {
        src[0] = static_cast<int16_t>(v);
        model::countValue(src[0], expected);
        ASSERT_EQ(vekStsOk, vekiGetHuffmanStatisticsOne_JPEG_16s_C1(src.data(), counts.data()));
    }
    for (size_t i = 0; i < 256; ++i) ASSERT_EQ(expected[i], counts[i]) << i;
    EXPECT_EQ(1016 + 1, counts[16]);
    EXPECT_EQ(1015 + 32768, counts[15]);
    EXPECT_EQ(1000 + 1, counts[0]);
}

TEST(LosslessStatistics, CheckTheirPointers)
{
    const int16_t value = 1;
    int counts[256] = {};
    EXPECT_EQ(vekStsNullPointer, vekiGetHuffmanStatisticsOne_JPEG_16s_C1(nullptr, counts));
    EXPECT_EQ(vekStsNullPointer, vekiGetHuffmanStatisticsOne_JPEG_16s_C1(&value, nullptr));
    EXPECT_EQ(0, counts[0] + counts[1]);
}

}  // namespace
