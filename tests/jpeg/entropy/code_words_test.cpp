// The coder beside words of '0' and '1'.
#include "code_words.h"

#include <gtest/gtest.h>

#include "support/guarded_buffer.h"

namespace {

using huffman::annexK;
using huffman::Block;
using huffman::Tables;
using support::GuardedArray;
using support::GuardedBytes;
using support::Random;

struct Stream {
    Tables tables;
    words::Code dc, ac;
    std::vector<Block> blocks;
    std::string bits;

    // A difference of 16 bits can be written, but not read.
    Stream(Random& random, int kind, int largestDc)
        : tables(kind == 0 ? annexK() : Tables(huffman::randomLists(random, 256), huffman::randomLists(random, 256))),
          dc(words::codeOf(tables.dcLists)),
          ac(words::codeOf(tables.acLists))
    {
        int lastDc = 0;
        for (int i = 0; i < 30; ++i) {
            Block block = huffman::randomBlock(random, kind == 3 ? 3 : random.in(0, 2));
            for (int16_t& v : block) v = std::max<int16_t>(v, -32767);
            block[0] = static_cast<int16_t>(std::clamp<int>(block[0], -largestDc, largestDc));
            bits += words::encoded(block, lastDc, dc, ac);
            lastDc = block[0];
            blocks.push_back(block);
        }
    }
};

TEST(CodeWords, EveryCodeTableEqualsThem)
{
    Random random(1);
    for (int round = 0; round < 300; ++round) {
        const Tables tables(round == 0 ? huffman::luminanceDc() : huffman::randomLists(random, random.in(1, 256)),
                            huffman::luminanceAc());
        const words::Code code = words::codeOf(tables.dcLists);
        for (int symbol = 0; symbol < 256; ++symbol) {
            const auto word = code.wordOf.find(symbol);
            const uint32_t expected = word == code.wordOf.end()
                                          ? 0
                                          : static_cast<uint32_t>(word->second.size() << 16) |
                                                static_cast<uint32_t>(std::stoi(word->second, nullptr, 2));
            ASSERT_EQ(expected, tables.encodeDc.codes[symbol]);
        }
        std::array<uint32_t, 256> lookup{};
        for (const auto& [word, symbol] : code.symbolOf)
            for (size_t i = 0; i < 256; ++i) {
                std::string digits;
                for (size_t bit = 128; bit > 0; bit /= 2) digits += (i & bit) != 0 ? '1' : '0';
                if (digits.compare(0, word.size(), word) == 0)
                    lookup[i] = static_cast<uint32_t>(word.size() << 16) | static_cast<uint32_t>(symbol);
            }
        for (size_t i = 0; i < 256; ++i) ASSERT_EQ(lookup[i], tables.decodeDc.lookup[i]);
        for (const auto& [word, symbol] : code.symbolOf) {
            const auto length = word.size();
            const auto& d = tables.decodeDc;
            const int value = std::stoi(word, nullptr, 2);
            ASSERT_LE(d.minCode[length], value);
            ASSERT_GE(d.maxCode[length], value);
            ASSERT_EQ(symbol, d.symbols[d.valPtr[length] + value - d.minCode[length]]);
        }
    }
}

TEST(CodeWords, TheEncodersWriteThem)
{
    Random random(2);
    for (int round = 0; round < 80; ++round) {
        const Stream stream(random, round % 4, 32767);
        const std::vector<uint8_t> expected = words::stuffed(stream.bits, '1');
        GuardedArray<uint8_t> dst(expected.size() + 1);
        VekEncodeHuffmanState state{};
        int position = 0;
        int16_t dc = 0;
        for (const Block& block : stream.blocks)
            ASSERT_EQ(vekStsOk, vekiEncodeHuffman8x8_JPEG_16s1u_C1(
                                    block.data(), dst.data(), static_cast<int>(dst.size()), &position, &dc,
                                    &stream.tables.encodeDc, &stream.tables.encodeAc, &state, 0));
        ASSERT_EQ(vekStsOk, vekiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, dst.data(), static_cast<int>(dst.size()),
                                                               &position, nullptr, nullptr, nullptr, &state, 1));
        ASSERT_EQ(static_cast<int>(expected.size()), position);
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst.begin()));

        const size_t tail = stream.bits.size() % 8;
        std::vector<uint8_t> direct = words::stuffed(stream.bits.substr(0, stream.bits.size() - tail), '0');
        const size_t whole = direct.size();
        direct.push_back(tail == 0 ? uint8_t{0}
                                   : words::stuffed(stream.bits.substr(stream.bits.size() - tail), '0')[0]);
        GuardedArray<uint8_t> room(direct.size());
        int bits = 0;
        dc = 0;
        for (const Block& block : stream.blocks)
            vekiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(block.data(), room.data(), &bits, &dc, &stream.tables.encodeDc,
                                                      &stream.tables.encodeAc);
        ASSERT_EQ(static_cast<int>(8 * whole + tail), bits);
        ASSERT_TRUE(std::equal(direct.begin(), direct.end(), room.begin()));
    }
}

TEST(CodeWords, TheDecodersReadThem)
{
    Random random(3);
    for (int round = 0; round < 80; ++round) {
        const Stream stream(random, round % 4, 16383);
        std::vector<uint8_t> source = words::stuffed(stream.bits, '1');
        const auto length = static_cast<int>(source.size());
        source.insert(source.end(), {0xFF, 0xD9});
        GuardedBytes bytes(source.size());
        std::copy(source.begin(), source.end(), bytes.data());
        VekDecodeHuffmanState state{};
        int position = 0;
        int marker = 0;
        int16_t dc = 0;
        int directBits = 0;
        int directMarker = 0;
        int16_t directDc = 0;
        uint32_t prefetched = 0;
        int numPrefetched = 0;
        int lastDc = 0;
        std::string rest = stream.bits;
        for (const Block& block : stream.blocks) {
            Block got;
            ASSERT_EQ(vekStsOk,
                      vekiDecodeHuffman8x8_JPEG_1u16s_C1(bytes.data(), length, &position, got.data(), &dc, &marker,
                                                         &stream.tables.decodeDc, &stream.tables.decodeAc, &state));
            ASSERT_EQ(block, got);
            ASSERT_EQ(words::decoded(rest, lastDc, stream.dc, stream.ac), got);
            lastDc = got[0];
            // Whatever was read ahead: the next bit is the right one.
            const auto isStuffing = [&](int i) { return i > 0 && source[static_cast<size_t>(i) - 1] == 0xFF; };
            const auto readBits = [&](int end) {
                int n = 0;
                for (int i = 0; i < end; ++i) n += isStuffing(i) ? 0 : 8;
                return n;
            };
            ASSERT_EQ(static_cast<int>(stream.bits.size() - rest.size()), readBits(position) - state.numBits);

            ASSERT_EQ(vekStsOk, vekiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(
                                    bytes.data(), &directBits, got.data(), &directDc, &directMarker, &prefetched,
                                    &numPrefetched, &stream.tables.decodeDc, &stream.tables.decodeAc));
            ASSERT_EQ(block, got);
            if (directMarker == 0) {
                ASSERT_EQ(static_cast<int>(stream.bits.size() - rest.size()), readBits(directBits / 8) - numPrefetched);
            }
        }
    }
}

TEST(CodeWords, TheStatisticsCountThem)
{
    Random random(4);
    for (int round = 0; round < 20; ++round) {
        const Stream stream(random, round % 3, 16383);
        std::array<int, 256> dc{};
        std::array<int, 256> ac{};
        std::array<int, 256> wantDc{};
        std::array<int, 256> wantAc{};
        int16_t last = 0;
        for (const Block& block : stream.blocks) {
            for (const words::Item& item : words::itemsOf(block, last))
                ++(item.dc ? wantDc : wantAc)[static_cast<size_t>(item.symbol)];
            ASSERT_EQ(vekStsOk, vekiGetHuffmanStatistics8x8_JPEG_16s_C1(block.data(), dc.data(), ac.data(), &last));
        }
        EXPECT_EQ(wantDc, dc);
        EXPECT_EQ(wantAc, ac);
    }
}

TEST(CodeWords, AnOptimalTableIsTheirs)
{
    Random random(5);
    int limited = 0;
    for (int round = 0; round < 300; ++round) {
        std::array<int, 256> counts{};
        for (int& count : counts)
            if (round < 2 || random.chance(round % 101))
                count = round % 3 == 0   ? random.in(1, 5)
                        : round % 3 == 1 ? 1 << random.in(0, 21)
                                         : random.in(1, 1 << random.in(0, 21));
        counts[random.in<size_t>(0, 255)] = 1 << 20;
        size_t numVals = 0;
        const model::HuffmanLists expected = words::optimal(counts, numVals);
        model::HuffmanLists got;
        ASSERT_EQ(vekStsOk, vekiEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), got.bits.data(), got.vals.data()));
        ASSERT_EQ(expected.bits, got.bits) << round;
        ASSERT_EQ(expected.vals, got.vals) << round;
        limited += got.bits[15] != 0;
        VekEncodeHuffmanSpec table;
        ASSERT_EQ(vekStsOk, vekiEncodeHuffmanSpecInit_JPEG_8u(got.bits.data(), got.vals.data(), &table));
        for (size_t symbol = 0; symbol < 256; ++symbol) ASSERT_EQ(counts[symbol] != 0, table.codes[symbol] != 0);
    }
    EXPECT_LT(20, limited);
}

}  // namespace
