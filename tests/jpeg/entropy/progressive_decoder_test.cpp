#include <gtest/gtest.h>

#include <array>
#include <string>

#include "progressive_fixtures.h"
#include "support/sanitizers.h"

namespace {

using progressive::Band;
using progressive::Block;
using progressive::bytesOf;
using progressive::Pass;
using progressive::Random;
using progressive::Tables;
using progressive::TwoBandReaders;
using progressive::TwoDcReaders;

constexpr Pass bothPasses[] = {Pass::First, Pass::Refine};
constexpr int sparse = support::underSanitizer ? 8 : 1;

int16_t& at(Block& block, int k) { return block[static_cast<size_t>(model::zigzag[static_cast<size_t>(k)])]; }

// Blocks and what is known of them before a scan, and the stream of that scan.
struct Scan {
    Pass pass;
    Band band;
    std::vector<Block> blocks, before, after;
    std::vector<uint8_t> stream;
};

// A scan of blocks as the models write it.
Scan randomScan(Random& random, const Tables& tables, Pass pass, size_t blocks, const Band& band, int percent)
{
    Scan scan{pass, band, {}, {}, {}, {}};
    model::Output out;
    out.bytes.resize(300 * blocks + 2000);
    model::BandEncoderState state;
    for (size_t i = 0; i < blocks; ++i) {
        const Block block = progressive::randomBlock(random, percent, random.in(1, 10), band.al);
        Block before{};
        Block after{};
        for (int k = band.ss; k <= band.se; ++k) {
            const auto zz = static_cast<size_t>(model::zigzag[static_cast<size_t>(k)]);
            const int c = block[zz];
            const auto upTo = [&](int low) {
                const int magnitude = std::abs(c) >> low << low;
                return static_cast<int16_t>(c < 0 ? -magnitude : magnitude);
            };
            after[zz] = upTo(band.al);
            before[zz] = pass == Pass::First ? int16_t{0} : upTo(band.al + 1);
        }
        EXPECT_EQ(vekStsOk, pass == Pass::First ? model::encodeAcFirst(block, out, band, tables.modelEncodeAc, state)
                                                : model::encodeAcRefine(block, out, band, tables.modelEncodeAc, state));
        scan.blocks.push_back(block);
        scan.before.push_back(before);
        scan.after.push_back(after);
    }
    EXPECT_EQ(vekStsOk, model::flushBand(out, tables.modelEncodeAc, state));
    out.bytes.resize(static_cast<size_t>(out.position));
    scan.stream = out.bytes;
    return scan;
}

Scan randomScan(Random& random, const Tables& tables, Pass pass, size_t blocks)
{
    Band band = progressive::randomBand(random);
    band.al = std::min(band.al, 12);  // of 13 there are no higher bits left that a coefficient can have
    return randomScan(random, tables, pass, blocks, band, random.chance(30) ? random.in(0, 100) : random.in(0, 12));
}

TEST(ProgressiveDecoder, ReadsWhatTheEncoderWroteAndEqualsItsModel)
{
    Random random(1);
    for (int round = 0; round < 240 / sparse; ++round)
        for (const Pass pass : bothPasses) {
            const Tables tables = progressive::randomTables(random);
            Scan scan = randomScan(random, tables, pass, 120);
            if (round % 2 == 0)
                scan.stream.insert(scan.stream.end(), {0xFF, 0xD9});
            if (scan.stream.empty())
                continue;
            TwoBandReaders readers(tables, scan.stream);
            for (size_t i = 0; i < scan.blocks.size(); ++i) {
                Block block = scan.before[i];
                ASSERT_EQ(vekStsOk, readers.decode(pass, block, scan.band)) << round << ' ' << i;
                ASSERT_EQ(scan.after[i], block);
                ASSERT_FALSE(HasFailure()) << round << ' ' << i;
            }
        }
}

TEST(ProgressiveDecoder, EqualsItsModelInEveryBand)
{
    Random random(2);
    const Tables tables = progressive::randomTables(random);
    for (const Pass pass : bothPasses)
        for (int ss = 1; ss <= 63; ++ss)
            for (int se = ss; se <= 63; ++se) {
                const Scan scan = randomScan(random, tables, pass, 6, {ss, se, (ss + se) % 13}, random.in(1, 100));
                TwoBandReaders readers(tables, scan.stream);
                for (size_t i = 0; i < scan.blocks.size(); ++i) {
                    Block block = scan.before[i];
                    ASSERT_EQ(vekStsOk, readers.decode(pass, block, scan.band)) << ss << ' ' << se;
                    ASSERT_EQ(scan.after[i], block);
                    ASSERT_FALSE(HasFailure()) << ss << ' ' << se;
                }
            }
}

TEST(ProgressiveDecoder, TouchesNothingOutsideItsBand)
{
    Random random(3);
    for (const Pass pass : bothPasses)
        for (int round = 0; round < 200; ++round) {
            const Tables tables = progressive::randomTables(random);
            Scan scan = randomScan(random, tables, pass, 5);
            if (scan.stream.empty())
                continue;
            TwoBandReaders readers(tables, scan.stream);
            for (size_t i = 0; i < scan.blocks.size(); ++i) {
                Block block = scan.before[i];
                Block want = scan.after[i];
                for (int k = 0; k < 64; ++k)
                    if (k < scan.band.ss || k > scan.band.se)
                        at(block, k) = at(want, k) = random.any<int16_t>();
                ASSERT_EQ(vekStsOk, readers.decode(pass, block, scan.band));
                ASSERT_EQ(want, block);
            }
        }
}

TEST(ProgressiveDecoder, EqualsItsModelOnStreamsOfEveryLength)
{
    Random random(4);
    for (const Pass pass : bothPasses)
        for (int round = 0; round < 6; ++round) {
            const Tables tables = progressive::randomTables(random);
            const Scan scan = randomScan(random, tables, pass, 6, {1, 63, round}, 20);
            for (const bool marker : {false, true})
                for (size_t length = 1; length <= scan.stream.size(); ++length) {
                    std::vector<uint8_t> bytes(scan.stream.begin(),
                                               scan.stream.begin() + static_cast<std::ptrdiff_t>(length));
                    if (marker)
                        bytes.insert(bytes.end(), {0xFF, 0xD3, 0x12, 0x34});
                    TwoBandReaders readers(tables, bytes);
                    for (size_t i = 0; i < scan.blocks.size() + 2; ++i) {
                        Block block = scan.before[i % scan.blocks.size()];
                        readers.decode(pass, block, scan.band);
                    }
                    ASSERT_FALSE(HasFailure()) << round << ' ' << length << ' ' << marker;
                }
        }
}

TEST(ProgressiveDecoder, EqualsItsModelWithMarkersAnywhere)
{
    Random random(5);
    for (const Pass pass : bothPasses) {
        const Tables tables = progressive::randomTables(random);
        const Scan scan = randomScan(random, tables, pass, 8, {1, 63, 1}, 15);
        for (size_t place = 0; place <= scan.stream.size(); ++place)
            for (const int fills : {0, 1, 9}) {
                std::vector<uint8_t> bytes = scan.stream;
                std::vector<uint8_t> marker(static_cast<size_t>(fills) + 1, 0xFF);
                marker.push_back(0xD7);
                bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(place), marker.begin(), marker.end());
                TwoBandReaders readers(tables, bytes);
                for (size_t i = 0; i < 3 * scan.blocks.size(); ++i) {
                    Block block = scan.before[i % scan.blocks.size()];
                    if (readers.decode(pass, block, scan.band) != vekStsOk)
                        readers.restart();
                    ASSERT_FALSE(HasFailure()) << place << ' ' << fills;
                }
            }
    }
}

TEST(ProgressiveDecoder, EqualsItsModelOnDamagedStreamsAnyTableAndAnyBlock)
{
    Random random(6);
    std::array<int, 3> statuses{};
    for (int round = 0; round < 2000 / sparse; ++round)
        for (const Pass pass : bothPasses) {
            model::HuffmanLists ac = huffman::randomLists(random, random.in(1, 256));
            if (round % 5 == 0)  // a complete code, or one that uses 16 bits
                ac = round % 2 == 0
                         ? huffman::lists({1, 1, 2}, {0x11, 0xF5, 0x00, 0x3A})
                         : huffman::lists({0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 200}, {0x41, 0x00, 0xF0, 0x71});
            if (round % 50 == 0)
                ac = {};
            const Tables tables(huffman::luminanceDc(), ac);
            std::vector<uint8_t> bytes(random.in<size_t>(1, 120));
            const int ff = random.in(0, 12);
            for (uint8_t& b : bytes) b = random.chance(ff) ? 0xFF : random.chance(ff) ? 0 : random.any<uint8_t>();
            TwoBandReaders readers(tables, bytes);
            const Band band = progressive::randomBand(random);
            for (int i = 0; i < 12; ++i) {
                Block block = random.chance(70) ? progressive::randomBlock(random, random.in(0, 100), 6, band.al)
                                                : progressive::extremeBlock(random);
                const VekStatus status = readers.decode(pass, block, band);
                ASSERT_TRUE(status == vekStsOk || status == vekStsJpegOutOfBuffer || status == vekStsJpegMarkerShort);
                ++statuses[status == vekStsOk ? 0 : status == vekStsJpegOutOfBuffer ? 1 : 2];
                if (random.chance(10))
                    readers.restart();
                if (random.chance(5))
                    readers.setPosition(random.in(0, static_cast<int>(bytes.size())));
                ASSERT_FALSE(HasFailure()) << round;
            }
        }
    for (const int count : statuses) EXPECT_LT(50, count);
}

TEST(ProgressiveDecoder, EqualsItsModelFromAnyState)
{
    Random random(7);
    for (int round = 0; round < 1500 / sparse; ++round)
        for (const Pass pass : bothPasses) {
            const Tables tables = progressive::randomTables(random, random.in(20, 256));
            std::vector<uint8_t> bytes(random.in<size_t>(1, 40));
            random.fill(bytes);
            TwoBandReaders readers(tables, bytes);
            readers.setState(random.bits(), random.in(0, 63), random.chance(50) ? 0 : random.in(0, 32767),
                             random.chance(30) ? random.in(1, 255) : 0);
            const Band band = progressive::randomBand(random);
            for (int i = 0; i < 4; ++i) {
                Block block = progressive::randomBlock(random, random.in(0, 100), 6, band.al);
                readers.decode(pass, block, band);
                ASSERT_FALSE(HasFailure()) << round;
            }
        }
}

// Two long runs, each behind a block with a coefficient.
TEST(ProgressiveDecoder, SkipsEndOfBandRunsOfEveryLength)
{
    Random random(8);
    const Tables tables = progressive::randomTables(random);
    for (const Pass pass : bothPasses)
        for (const int run : {1, 2, 3, 4, 255, 256, 16383, 16384, 32766, 32767}) {
            model::Output out;
            out.bytes.resize(200);
            model::BandEncoderState state;
            Block marked{};
            at(marked, 3) = 1;
            for (int repeat = 0; repeat < 2; ++repeat) {
                model::encodeAcFirst(marked, out, {3, 3, 0}, tables.modelEncodeAc, state);
                state.eobRun = run;
            }
            model::flushBand(out, tables.modelEncodeAc, state);
            out.bytes.resize(static_cast<size_t>(out.position));
            TwoBandReaders readers(tables, out.bytes);
            for (int repeat = 0; repeat < 2; ++repeat) {
                Block block{};
                ASSERT_EQ(vekStsOk, readers.decode(pass, block, {3, 3, 0}));
                ASSERT_EQ(marked, block);
                for (int i = 0; i < run; ++i) {
                    block = {};
                    ASSERT_EQ(vekStsOk, readers.decode(pass, block, {3, 3, 0}));
                    ASSERT_EQ(Block{}, block);
                    ASSERT_EQ(run - 1 - i, readers.state().eobRun);
                }
                ASSERT_FALSE(HasFailure()) << run;
            }
        }
}

TEST(ProgressiveDecoder, DcScansEqualTheirModel)
{
    Random random(9);
    std::array<int, 3> statuses{};
    for (int round = 0; round < 800 / sparse; ++round)
        for (const Pass pass : bothPasses) {
            const Tables tables = progressive::randomTables(random, random.in(1, 256));
            const int al = random.in(0, 13);
            std::vector<uint8_t> bytes(random.in<size_t>(1, 60));
            const int ff = random.in(0, 12);
            for (uint8_t& b : bytes) b = random.chance(ff) ? 0xFF : random.chance(ff) ? 0 : random.any<uint8_t>();
            TwoDcReaders readers(tables, bytes);
            for (int i = 0; i < (pass == Pass::First ? 20 : 400); ++i) {
                Block block;
                random.fill(block);
                const VekStatus status = readers.decode(pass, block, al);
                ASSERT_TRUE(status == vekStsOk || status == vekStsJpegOutOfBuffer || status == vekStsJpegMarkerShort);
                ++statuses[status == vekStsOk ? 0 : status == vekStsJpegOutOfBuffer ? 1 : 2];
                if (status != vekStsOk && random.chance(20))
                    readers.restart();
                ASSERT_FALSE(HasFailure()) << round;
            }
        }
    for (const int count : statuses) EXPECT_LT(50, count);
}

TEST(ProgressiveDecoder, DcScansReadWhatTheEncoderWrote)
{
    Random random(10);
    for (int round = 0; round < 200 / sparse; ++round)
        for (const Pass pass : bothPasses) {
            const Tables tables = progressive::randomTables(random);
            const int al = random.in(0, 10);
            model::Output out;
            out.bytes.resize(2000);
            model::EncoderState state;
            int16_t dc = 0;
            std::vector<Block> blocks(100);
            for (Block& block : blocks) {
                block[0] = random.in<int16_t>(-1023, 1023);
                ASSERT_EQ(vekStsOk, pass == Pass::First
                                        ? model::encodeDcFirst(block, out, dc, al, tables.modelEncodeDc, state)
                                        : model::encodeDcRefine(block, out, al, state));
            }
            model::flush(out, state);
            out.bytes.resize(static_cast<size_t>(out.position));
            TwoDcReaders readers(tables, out.bytes);
            for (const Block& written : blocks) {
                const int low = pass == Pass::First ? al : al + 1;
                Block block{};
                block[0] = pass == Pass::First ? int16_t{77} : static_cast<int16_t>(written[0] >> low << low);
                block[1] = 5;
                ASSERT_EQ(vekStsOk, readers.decode(pass, block, al));
                ASSERT_EQ(written[0] >> al << al, block[0]);
                ASSERT_EQ(5, block[1]);
                ASSERT_FALSE(HasFailure()) << round;
            }
        }
}

// A table with one code: 0 for an end-of-band symbol.
Tables endOfBand(int r) { return {huffman::luminanceDc(), huffman::lists({1}, {r << 4})}; }

TEST(ProgressiveDecoder, BlocksOfARunAreSkippedWithoutReading)
{
    const Tables tables = endOfBand(0);
    TwoBandReaders readers(tables, bytesOf("0"));
    readers.setState(0, 0, 3, 0);
    Block block{};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(vekStsOk, readers.decode(Pass::First, block, {1, 63, 0}));
        EXPECT_EQ(0, readers.position());
    }
    EXPECT_EQ(0, readers.state().eobRun);
    EXPECT_EQ(vekStsOk, readers.decode(Pass::First, block, {1, 63, 0}));
    EXPECT_EQ(1, readers.position());
    EXPECT_EQ(7, readers.state().numBits);
}

TEST(ProgressiveDecoder, AnEndOfBandWithoutLengthEndsOneBlock)
{
    const Tables tables = endOfBand(0);
    for (const Pass pass : bothPasses) {
        TwoBandReaders readers(tables, bytesOf("0"));
        Block block{};
        EXPECT_EQ(vekStsOk, readers.decode(pass, block, {1, 63, 0}));
        EXPECT_EQ(0, readers.state().eobRun);
        EXPECT_EQ(7, readers.state().numBits);
    }
}

TEST(ProgressiveDecoder, ALengthWithoutItsBitsLeavesItsHighestBit)
{
    const Tables tables = endOfBand(14);
    for (const Pass pass : bothPasses) {
        TwoBandReaders readers(tables, bytesOf("0 1111111"));
        Block block{};
        EXPECT_EQ(vekStsJpegOutOfBuffer, readers.decode(pass, block, {1, 63, 0}));
        EXPECT_EQ(16384, readers.state().eobRun);
        EXPECT_EQ(7, readers.state().numBits);
    }
}

TEST(ProgressiveDecoder, TellsAMarkerThatWaitsFromOneThatItMeets)
{
    const Tables tables = endOfBand(14);
    for (const Pass pass : bothPasses) {
        std::vector<uint8_t> bytes = bytesOf("0 1111111");
        bytes.insert(bytes.end(), {0xFF, 0xD2});
        TwoBandReaders met(tables, bytes);
        Block block{};
        // The symbol's own refill meets the marker, and the length finds it waiting.
        EXPECT_EQ(vekStsJpegMarkerShort, met.decode(pass, block, {1, 63, 0}));
        EXPECT_EQ(0xD2, met.marker());
        EXPECT_EQ(3, met.position());
        // With eight bits in hand it is the length that meets the marker.
        TwoBandReaders late(tables, {0xFF, 0xD2});
        late.setState(0x7F, 8, 0, 0);
        EXPECT_EQ(vekStsJpegOutOfBuffer, late.decode(pass, block, {1, 63, 0}));
        EXPECT_EQ(16384, late.state().eobRun);
        EXPECT_EQ(0xD2, late.marker());
        EXPECT_EQ(2, late.position());
    }
}

TEST(ProgressiveDecoder, NoCodeWithinSixteenBitsIsMarkerShort)
{
    const Tables tables = endOfBand(0);
    for (const Pass pass : bothPasses) {
        TwoBandReaders readers(tables, std::vector<uint8_t>(12, 0xFE));
        Block block{};
        EXPECT_EQ(vekStsJpegMarkerShort, readers.decode(pass, block, {1, 63, 0}));
        EXPECT_EQ(64 - 17, readers.state().numBits);
        EXPECT_EQ(8, readers.position());
    }
}

TEST(ProgressiveDecoder, ARunBeyondTheBlockStaysInTheBlock)
{
    const Tables tables(huffman::luminanceDc(), huffman::lists({1}, {0xF1}));
    for (const int ss : {48, 49, 56, 63}) {
        TwoBandReaders readers(tables, bytesOf("01 01 01 01"));
        Block block{};
        EXPECT_EQ(vekStsOk, readers.decode(Pass::First, block, {ss, 63, 0}));
        EXPECT_EQ(1, block[63]);
        EXPECT_EQ(1, std::count_if(block.begin(), block.end(), [](int16_t c) { return c != 0; }));
    }
}

TEST(ProgressiveDecoder, ANewValueBeyondTheBlockReplacesTheLastCoefficientEvenIfItIsCorrected)
{
    const Tables tables(huffman::luminanceDc(), huffman::lists({1}, {0x01}));
    for (const char* const sign : {"1", "0"}) {
        TwoBandReaders readers(tables, bytesOf(std::string("0") + sign + "1"));
        Block block{};
        block[63] = 24;
        EXPECT_EQ(vekStsOk, readers.decode(Pass::Refine, block, {63, 63, 2}));
        EXPECT_EQ(*sign == '1' ? 4 : -4, block[63]);
    }
}

TEST(ProgressiveDecoder, CorrectionsGoAwayFromZeroAndOnlyOnce)
{
    // Symbol 0x00: the whole band is corrected by 1 1 1 1.
    const Tables tables = endOfBand(0);
    TwoBandReaders readers(tables, bytesOf("0 1111"));
    Block block{};
    at(block, 1) = 4;
    at(block, 3) = -4;
    at(block, 4) = 6;  // has the bit already
    at(block, 63) = -32768;
    EXPECT_EQ(vekStsOk, readers.decode(Pass::Refine, block, {1, 63, 1}));
    EXPECT_EQ(6, at(block, 1));
    EXPECT_EQ(-6, at(block, 3));
    EXPECT_EQ(6, at(block, 4));
    EXPECT_EQ(32766, at(block, 63));
}

TEST(ProgressiveDecoder, AnyLowHalfOfARefiningSymbolMeansOne)
{
    for (const int symbol : {0x01, 0x02, 0x0F}) {
        const Tables tables(huffman::luminanceDc(), huffman::lists({1}, {symbol}));
        TwoBandReaders readers(tables, bytesOf("01 00"));
        Block block{};
        EXPECT_EQ(vekStsOk, readers.decode(Pass::Refine, block, {1, 2, 3}));
        EXPECT_EQ(8, at(block, 1));
        EXPECT_EQ(-8, at(block, 2));
    }
}

TEST(ProgressiveDecoder, CorrectionsBeforeAFailureStay)
{
    const Tables tables = endOfBand(0);
    TwoBandReaders readers(tables, bytesOf("0 1111111"));
    Block block;
    block.fill(2);
    EXPECT_EQ(vekStsJpegOutOfBuffer, readers.decode(Pass::Refine, block, {1, 63, 0}));
    EXPECT_EQ(1, readers.state().eobRun);
    EXPECT_EQ(7, std::count(block.begin(), block.end(), 3));
}

TEST(ProgressiveDecoder, AStateThatWasNeverInitialisedDoesNoHarm)
{
    Random random(11);
    for (int round = 0; round < 2000 / sparse; ++round) {
        const Tables tables(huffman::luminanceDc(), round % 2 == 0 ? huffman::luminanceAc() : model::HuffmanLists{});
        support::GuardedArray<uint8_t> bytes(random.in<size_t>(1, 30));
        random.fill(bytes);
        const int length = static_cast<int>(bytes.size());
        VekDecodeHuffmanState state{random.bits(), random.extreme<int32_t>(), random.extreme<int32_t>(), 0};
        int position = 0;
        int marker = 0;
        int16_t* const block = progressive::guarded(progressive::randomBlock(random, 50, 4, 0), round & 31);
        const auto function = random.chance(50) ? vekiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1
                                                : vekiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1;
        function(bytes.data(), length, &position, block, &marker, 1, 63, 0, &tables.decodeAc, &state);
        ASSERT_LE(0, position);
        ASSERT_GE(length, position);
    }
}

TEST(ProgressiveDecoder, AcScansCheckTheirArgumentsInOrder)
{
    const Tables tables = endOfBand(0);
    const uint8_t bytes[4] = {};
    int position = 0;
    Block block;
    block.fill(7);
    int marker = 0;
    VekDecodeHuffmanState state{};
    for (const auto function :
         {vekiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1, vekiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1}) {
        const auto call = [&](const uint8_t* src, int length, int* pos, int16_t* dst, int* mark, int ss, int se, int al,
                              const VekDecodeHuffmanSpec* table, VekDecodeHuffmanState* s) {
            return function(src, length, pos, dst, mark, ss, se, al, table, s);
        };
        const auto* const t = &tables.decodeAc;
        int16_t* const dst = block.data();
        EXPECT_EQ(vekStsNullPointer, call(nullptr, 0, nullptr, nullptr, nullptr, 0, 0, 99, nullptr, nullptr));
        EXPECT_EQ(vekStsBadSize, call(bytes, 0, nullptr, nullptr, nullptr, 0, 0, 99, nullptr, nullptr));
        EXPECT_EQ(vekStsBadSize, call(bytes, -1, nullptr, nullptr, nullptr, 0, 0, 99, nullptr, nullptr));
        EXPECT_EQ(vekStsNullPointer, call(bytes, 4, nullptr, dst, &marker, 0, 0, 99, t, &state));
        EXPECT_EQ(vekStsNullPointer, call(bytes, 4, &position, nullptr, &marker, 0, 0, 99, t, &state));
        EXPECT_EQ(vekStsNullPointer, call(bytes, 4, &position, dst, nullptr, 0, 0, 99, t, &state));
        const auto range = [&](int ss, int se, int al) {
            return call(bytes, 4, &position, dst, &marker, ss, se, al, nullptr, nullptr);
        };
        EXPECT_EQ(vekStsBadArgument, range(0, 5, 0));
        EXPECT_EQ(vekStsBadArgument, range(-1, 5, 0));
        EXPECT_EQ(vekStsBadArgument, range(64, 64, 0));
        EXPECT_EQ(vekStsBadArgument, range(6, 5, 0));
        EXPECT_EQ(vekStsBadArgument, range(1, 64, 0));
        EXPECT_EQ(vekStsBadArgument, range(1, 5, 14));
        EXPECT_EQ(vekStsNullPointer, range(1, 5, 13));
        EXPECT_EQ(vekStsNullPointer, call(bytes, 4, &position, dst, &marker, 1, 5, 13, nullptr, &state));
        EXPECT_EQ(vekStsNullPointer, call(bytes, 4, &position, dst, &marker, 1, 5, 13, t, nullptr));
        EXPECT_EQ(64, std::count(block.begin(), block.end(), 7));
        EXPECT_EQ(0, position);
        EXPECT_EQ(0, marker);
        EXPECT_EQ(0, state.numBits);
    }
}

TEST(ProgressiveDecoder, DcScansCheckTheirArgumentsInOrder)
{
    const Tables tables = endOfBand(0);
    const uint8_t bytes[4] = {};
    int position = 0;
    Block block;
    block.fill(7);
    int16_t* const dst = block.data();
    int16_t dc = 5;
    int marker = 0;
    VekDecodeHuffmanState state{};
    const auto* const t = &tables.decodeDc;
    const auto first = vekiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1;
    EXPECT_EQ(vekStsNullPointer, first(nullptr, 0, nullptr, nullptr, nullptr, nullptr, 99, nullptr, nullptr));
    EXPECT_EQ(vekStsBadSize, first(bytes, 0, nullptr, nullptr, nullptr, nullptr, 99, nullptr, nullptr));
    EXPECT_EQ(vekStsNullPointer, first(bytes, 4, nullptr, dst, &dc, &marker, 14, t, &state));
    EXPECT_EQ(vekStsNullPointer, first(bytes, 4, &position, nullptr, &dc, &marker, 14, t, &state));
    EXPECT_EQ(vekStsNullPointer, first(bytes, 4, &position, dst, nullptr, &marker, 14, t, &state));
    EXPECT_EQ(vekStsNullPointer, first(bytes, 4, &position, dst, &dc, nullptr, 14, t, &state));
    EXPECT_EQ(vekStsBadArgument, first(bytes, 4, &position, dst, &dc, &marker, 14, nullptr, nullptr));
    EXPECT_EQ(vekStsNullPointer, first(bytes, 4, &position, dst, &dc, &marker, 13, nullptr, &state));
    EXPECT_EQ(vekStsNullPointer, first(bytes, 4, &position, dst, &dc, &marker, 13, t, nullptr));
    const auto refine = vekiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1;
    EXPECT_EQ(vekStsNullPointer, refine(nullptr, 0, nullptr, nullptr, nullptr, 99, nullptr));
    EXPECT_EQ(vekStsBadSize, refine(bytes, 0, nullptr, nullptr, nullptr, 99, nullptr));
    EXPECT_EQ(vekStsNullPointer, refine(bytes, 4, nullptr, dst, &marker, 14, &state));
    EXPECT_EQ(vekStsNullPointer, refine(bytes, 4, &position, nullptr, &marker, 14, &state));
    EXPECT_EQ(vekStsNullPointer, refine(bytes, 4, &position, dst, nullptr, 14, &state));
    EXPECT_EQ(vekStsBadArgument, refine(bytes, 4, &position, dst, &marker, 14, nullptr));
    EXPECT_EQ(vekStsNullPointer, refine(bytes, 4, &position, dst, &marker, 13, nullptr));
    EXPECT_EQ(64, std::count(block.begin(), block.end(), 7));
    EXPECT_EQ(5, dc);
    EXPECT_EQ(0, position);
    EXPECT_EQ(0, state.numBits);
    EXPECT_EQ(vekStsOk, refine(bytes, 4, &position, dst, &marker, 13, &state));
    EXPECT_EQ(vekStsOk, first(bytes, 4, &position, dst, &dc, &marker, 13, t, &state));
    EXPECT_EQ(5 << 13 & 0xFFFF, static_cast<uint16_t>(block[0]));
}

}  // namespace
