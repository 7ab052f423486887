// Whole progressive images: scans of every kind, one behind the other, with tables made for each and with restarts.
// What the decoders gather over all scans is what the encoders were given.
#include <gtest/gtest.h>

#include <string>

#include "progressive_fixtures.h"

namespace {

using huffman::Block;
using support::Random;

struct Scan {
    int ss, se, ah, al;  // ah 0: the first scan of the band
};
using Script = std::vector<Scan>;

// The scan as one of each of the functions. A DC scan has ss 0.
class Coder {
public:
    Coder(const Scan& scan, std::vector<Block>& blocks, size_t interval)
        : scan_(scan), blocks_(blocks), interval_(interval)
    {
    }

    // The entropy-coded segments, with restart markers between them and the end of the image behind.
    std::vector<uint8_t> encode()
    {
        model::HuffmanLists lists;
        if (scan_.ss > 0 || scan_.ah == 0) {
            count();
            EXPECT_EQ(vekStsOk,
                      vekiEncodeHuffmanRawTableInit_JPEG_8u(counts_.data(), lists.bits.data(), lists.vals.data()));
        }
        EXPECT_EQ(vekStsOk, vekiEncodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.vals.data(), &codes_));
        EXPECT_EQ(vekStsOk, vekiDecodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.vals.data(), &table_));
        stream_.resize(200 * blocks_.size() + 1000);
        vekiEncodeHuffmanStateInit_JPEG_8u(&writer_);
        int position = 0;
        dc_ = 0;
        for (size_t i = 0; i < blocks_.size(); ++i) {
            if (i > 0 && i % interval_ == 0) {
                EXPECT_EQ(vekStsOk, encodeOne(nullptr, position, 1));
                stream_[static_cast<size_t>(position++)] = 0xFF;
                stream_[static_cast<size_t>(position++)] = restartMarker(i);
                dc_ = 0;
            }
            EXPECT_EQ(vekStsOk, encodeOne(blocks_[i].data(), position, 0));
        }
        EXPECT_EQ(vekStsOk, encodeOne(nullptr, position, 1));
        stream_.resize(static_cast<size_t>(position));
        stream_.insert(stream_.end(), {0xFF, 0xD9});
        return stream_;
    }

    void decode(std::vector<Block>& store)
    {
        support::GuardedArray<uint8_t> bytes(stream_.size());
        std::copy(stream_.begin(), stream_.end(), bytes.begin());
        vekiDecodeHuffmanStateInit_JPEG_8u(&reader_);
        int position = 0;
        int marker = 0;
        dc_ = 0;
        const auto endOfSegment = [&](int expected) {
            if (marker == 0) {  // not seen yet, as the last bits were in hand
                while (bytes[static_cast<size_t>(position)] != 0xFF || bytes[static_cast<size_t>(position) + 1] == 0)
                    ++position;
                marker = bytes[static_cast<size_t>(position) + 1];
                position += 2;
            }
            ASSERT_EQ(expected, marker);
            ASSERT_EQ(0, reader_.eobRun);
        };
        for (size_t i = 0; i < blocks_.size(); ++i) {
            if (i > 0 && i % interval_ == 0) {
                endOfSegment(restartMarker(i));
                vekiDecodeHuffmanStateInit_JPEG_8u(&reader_);
                marker = 0;
                dc_ = 0;
            }
            ASSERT_EQ(vekStsOk, decodeOne(bytes.data(), position, marker, store[i].data()))
                << scan_.ss << ' ' << scan_.ah << ' ' << scan_.al << " block " << i;
        }
        endOfSegment(0xD9);
        EXPECT_EQ(static_cast<int>(stream_.size()), position);
    }

private:
    uint8_t restartMarker(size_t block) const { return static_cast<uint8_t>(0xD0 + (block / interval_ - 1) % 8); }

    void count()
    {
        vekiEncodeHuffmanStateInit_JPEG_8u(&writer_);
        const auto ofAc = scan_.ah == 0 ? vekiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1
                                        : vekiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1;
        const auto flush = [&] {
            dc_ = 0;
            if (scan_.ss > 0) {
                EXPECT_EQ(vekStsOk, ofAc(nullptr, counts_.data(), scan_.ss, scan_.se, scan_.al, &writer_, 1));
            }
        };
        flush();
        for (size_t i = 0; i < blocks_.size(); ++i) {
            if (i % interval_ == 0)
                flush();
            EXPECT_EQ(vekStsOk, scan_.ss == 0 ? vekiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(
                                                    blocks_[i].data(), counts_.data(), &dc_, scan_.al)
                                              : ofAc(blocks_[i].data(), counts_.data(), scan_.ss, scan_.se, scan_.al,
                                                     &writer_, 0));
        }
        flush();
    }
    VekStatus encodeOne(const int16_t* block, int& position, int flush)
    {
        const int room = static_cast<int>(stream_.size());
        if (scan_.ss == 0 && scan_.ah == 0)
            return vekiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(block, stream_.data(), room, &position, &dc_, scan_.al,
                                                              &codes_, &writer_, flush);
        if (scan_.ss == 0)
            return vekiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(block, stream_.data(), room, &position, scan_.al,
                                                               &writer_, flush);
        const auto ofAc =
            scan_.ah == 0 ? vekiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1 : vekiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1;
        return ofAc(block, stream_.data(), room, &position, scan_.ss, scan_.se, scan_.al, &codes_, &writer_, flush);
    }
    VekStatus decodeOne(const uint8_t* bytes, int& position, int& marker, int16_t* block)
    {
        const int length = static_cast<int>(stream_.size());
        if (scan_.ss == 0 && scan_.ah == 0)
            return vekiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(bytes, length, &position, block, &dc_, &marker, scan_.al,
                                                              &table_, &reader_);
        if (scan_.ss == 0)
            return vekiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(bytes, length, &position, block, &marker, scan_.al,
                                                               &reader_);
        const auto ofAc =
            scan_.ah == 0 ? vekiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1 : vekiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1;
        return ofAc(bytes, length, &position, block, &marker, scan_.ss, scan_.se, scan_.al, &table_, &reader_);
    }

    Scan scan_;
    std::vector<Block>& blocks_;
    size_t interval_;
    std::array<int, 256> counts_{};
    VekEncodeHuffmanSpec codes_{};
    VekDecodeHuffmanSpec table_{};
    VekEncodeHuffmanState writer_{};
    VekDecodeHuffmanState reader_{};
    std::vector<uint8_t> stream_;
    int16_t dc_ = 0;
};

// Smaller and rarer towards the high frequencies, in part with no coefficients at all.
std::vector<Block> picture(Random& random, size_t count, int emptyPercent)
{
    std::vector<Block> blocks(count);
    for (Block& block : blocks) {
        block[0] = random.in<int16_t>(-1023, 1023);
        if (random.chance(emptyPercent))
            continue;
        for (int k = 1; k < 64; ++k)
            if (random.in(0, 63) > k / 2 + 20) {
                const int most = 1023 >> std::min(10, k / 6 + random.in(0, 8));
                block[static_cast<size_t>(model::zigzag[static_cast<size_t>(k)])] =
                    random.in<int16_t>(static_cast<int16_t>(-most), static_cast<int16_t>(most));
            }
    }
    return blocks;
}

void roundTrip(const Script& script, std::vector<Block> blocks, size_t interval)
{
    std::vector<Block> store(blocks.size());
    for (const Scan& scan : script) {
        Coder coder(scan, blocks, interval);
        coder.encode();
        coder.decode(store);
        ASSERT_FALSE(testing::Test::HasFailure()) << scan.ss << ' ' << scan.ah << ' ' << scan.al;
    }
    for (size_t i = 0; i < blocks.size(); ++i) ASSERT_EQ(blocks[i], store[i]) << i;
}

const Script scripts[] = {
    {{0, 0, 0, 0}, {1, 63, 0, 0}},
    {{0, 0, 0, 1}, {1, 5, 0, 2}, {6, 63, 0, 2}, {1, 63, 2, 1}, {0, 0, 1, 0}, {1, 63, 1, 0}},
    {{0, 0, 0, 3},
     {0, 0, 3, 2},
     {0, 0, 2, 1},
     {0, 0, 1, 0},
     {1, 1, 0, 0},
     {2, 9, 0, 4},
     {10, 63, 0, 1},
     {2, 9, 4, 3},
     {2, 9, 3, 2},
     {2, 9, 2, 1},
     {2, 9, 1, 0},
     {10, 63, 1, 0}},
    {{0, 0, 0, 0},
     {1, 63, 0, 9},
     {1, 63, 9, 8},
     {1, 63, 8, 7},
     {1, 63, 7, 6},
     {1, 63, 6, 5},
     {1, 63, 5, 4},
     {1, 63, 4, 3},
     {1, 63, 3, 2},
     {1, 63, 2, 1},
     {1, 63, 1, 0}},
};

TEST(ProgressiveScripts, GiveBackEveryCoefficient)
{
    Random random(1);
    for (const Script& script : scripts)
        for (const int empty : {0, 60, 97}) roundTrip(script, picture(random, 700, empty), 1000);
}

TEST(ProgressiveScripts, GiveBackEveryCoefficientWithRestarts)
{
    Random random(2);
    for (const Script& script : scripts)
        for (const size_t interval : {1, 2, 7, 50}) roundTrip(script, picture(random, 300, 50), interval);
}

TEST(ProgressiveScripts, GiveBackAnImageWithMoreEmptyBlocksThanARunCanTell)
{
    Random random(3);
    std::vector<Block> blocks(70000);
    for (const size_t i : {size_t{0}, size_t{32768}, size_t{32769}, size_t{69000}})
        blocks[i] = picture(random, 1, 0).front();
    roundTrip(scripts[1], blocks, blocks.size());
}

TEST(ProgressiveScripts, GiveBackAScanOfEverySingleCoefficient)
{
    Random random(4);
    Script script = {{0, 0, 0, 0}};
    for (int k = 1; k < 64; ++k) script.push_back({k, k, 0, 1});
    for (int k = 63; k > 0; --k) script.push_back({k, k, 1, 0});
    roundTrip(script, picture(random, 200, 20), 90);
}

}  // namespace
