// Scans, blocks and streams for the tests of the progressive coders. Everything is done twice, by the library and by
// the models, and compared after every block.
#ifndef VEK_TESTS_JPEG_ENTROPY_PROGRESSIVE_FIXTURES_H
#define VEK_TESTS_JPEG_ENTROPY_PROGRESSIVE_FIXTURES_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "huffman_fixtures.h"
#include "reference/jpeg/progressive.h"
#include "support/guarded_buffer.h"

namespace progressive {

using huffman::Block;
using huffman::Tables;
using model::Band;
using support::Random;

enum class Pass { First, Refine };

inline Tables randomTables(Random& random, int symbols = 256)
{
    return {huffman::randomLists(random, symbols), huffman::randomLists(random, symbols)};
}

inline Band randomBand(Random& random)
{
    Band band;
    band.ss = random.in(1, 63);
    band.se = random.chance(30) ? 63 : random.in(band.ss, 63);
    if (random.chance(30))
        band.ss = 1;
    band.al = random.chance(60) ? random.in(0, 3) : random.in(0, 13);
    return band;
}

// Coefficients of which `percent` are not zero, with up to `bits` bits (at least 1) above the lowest `al`.
inline Block randomBlock(Random& random, int percent, int bits, int al)
{
    Block block{};
    const int most = std::min(32767, (1 << (bits + al)) - 1);
    for (int16_t& c : block) {
        if (!random.chance(percent))
            continue;
        const int magnitude = random.in(0, most) >> random.in(0, bits - 1);
        c = static_cast<int16_t>(random.chance(50) ? magnitude : -magnitude);
    }
    return block;
}

inline Block extremeBlock(Random& random)
{
    Block block{};
    for (int16_t& c : block)
        if (random.chance(50))
            c = random.extreme<int16_t>();
    return block;
}

// A copy of the block right before or right behind an unmapped page, at any address; good until the next call.
inline int16_t* guarded(const Block& block, size_t misalignment)
{
    static std::array<std::unique_ptr<support::GuardedBytes>, 32> places;
    auto& place = places[misalignment % places.size()];
    if (!place)
        place = std::make_unique<support::GuardedBytes>(
            sizeof(Block), misalignment % 2 == 0 ? support::Guard::Behind : support::Guard::Before,
            misalignment % places.size() / 2);
    std::memcpy(place->data(), block.data(), sizeof(Block));
    return reinterpret_cast<int16_t*>(place->data());
}

inline uint64_t lowBits(uint64_t value, int count)
{
    return count <= 0 ? 0 : count > 63 ? value : value & ((uint64_t{1} << count) - 1);
}

// A stream of an AC scan that is written twice with the same room. Room and state end at unmapped pages.
class TwoBandWriters {
public:
    TwoBandWriters(const Tables& tables, int room) : tables_(tables), dst_(static_cast<size_t>(room)), state_(1)
    {
        expected_.bytes.resize(static_cast<size_t>(room));
        vekiEncodeHuffmanStateInit_JPEG_8u(state_.data());
    }
    VekStatus encode(Pass pass, const Block& block, const Band& band)
    {
        const VekStatus want =
            pass == Pass::First ? model::encodeAcFirst(block, expected_, band, tables_.modelEncodeAc, expectedState_)
                                : model::encodeAcRefine(block, expected_, band, tables_.modelEncodeAc, expectedState_);
        const VekStatus got = call(pass, guarded(block, misalignment_++), band, 0);
        EXPECT_EQ(want, got);
        compare();
        return got;
    }
    VekStatus flush(Pass pass)
    {
        const VekStatus want = model::flushBand(expected_, tables_.modelEncodeAc, expectedState_);
        const VekStatus got = call(pass, nullptr, {0, 64, 99}, 1);
        EXPECT_EQ(want, got);
        compare();
        return got;
    }
    void compare()
    {
        EXPECT_EQ(expected_.position, position_);
        EXPECT_TRUE(
            std::equal(dst_.data(), dst_.data() + std::min(position_, expected_.position), expected_.bytes.begin()));
        const VekEncodeHuffmanState& s = *state_.data();
        EXPECT_EQ(expectedState_.numBits, s.numBits);
        EXPECT_EQ(lowBits(expectedState_.buffer, expectedState_.numBits), lowBits(s.bitBuffer, s.numBits));
        EXPECT_EQ(expectedState_.eobRun, s.eobRun);
        ASSERT_EQ(static_cast<int>(expectedState_.corrections.size()), s.numCorrectionBits);
        for (size_t i = 0; i < expectedState_.corrections.size(); ++i)
            ASSERT_EQ(expectedState_.corrections[i], s.correctionBits[i] & 1) << i;
    }
    // A run that is pending already, with correction bits.
    void setPending(int eobRun, const std::vector<uint8_t>& corrections = {})
    {
        state().eobRun = expectedState_.eobRun = eobRun;
        expectedState_.corrections = corrections;
        state().numCorrectionBits = static_cast<int>(corrections.size());
        std::copy(corrections.begin(), corrections.end(), state().correctionBits);
    }
    int position() const { return position_; }
    VekEncodeHuffmanState& state() { return *state_.data(); }
    std::vector<uint8_t> bytes() { return {dst_.data(), dst_.data() + position_}; }

private:
    VekStatus call(Pass pass, const int16_t* src, const Band& band, int flush)
    {
        const auto function = pass == Pass::First ? vekiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1
                                                  : vekiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1;
        return function(src, dst_.data(), static_cast<int>(dst_.size()), &position_, band.ss, band.se, band.al,
                        &tables_.encodeAc, state_.data(), flush);
    }

    const Tables& tables_;
    model::Output expected_;
    model::BandEncoderState expectedState_;
    support::GuardedArray<uint8_t> dst_;
    int position_ = 0;
    support::GuardedArray<VekEncodeHuffmanState> state_;
    size_t misalignment_ = 0;
};

// A stream of an AC scan that is read twice. It ends at an unmapped page.
class TwoBandReaders {
public:
    TwoBandReaders(const Tables& tables, const std::vector<uint8_t>& bytes)
        : tables_(tables), bytes_(bytes.size()), state_(1)
    {
        std::copy(bytes.begin(), bytes.end(), bytes_.data());
        in_.bytes = bytes_.data();
        in_.length = static_cast<int>(bytes.size());
    }
    VekStatus decode(Pass pass, Block& block, const Band& band)
    {
        Block want = block;
        const VekStatus expected = pass == Pass::First
                                       ? model::decodeAcFirst(in_, want, band, tables_.modelDecodeAc, expectedState_)
                                       : model::decodeAcRefine(in_, want, band, tables_.modelDecodeAc, expectedState_);
        int16_t* const memory = guarded(block, misalignment_++);
        const auto function = pass == Pass::First ? vekiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1
                                                  : vekiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1;
        const VekStatus got = function(bytes_.data(), in_.length, &position_, memory, &marker_, band.ss, band.se,
                                       band.al, &tables_.decodeAc, state_.data());
        std::memcpy(block.data(), memory, sizeof(Block));
        EXPECT_EQ(expected, got);
        EXPECT_EQ(want, block);
        compare();
        return got;
    }
    void compare()
    {
        const VekDecodeHuffmanState& s = *state_.data();
        EXPECT_EQ(in_.position, position_);
        EXPECT_EQ(in_.marker, marker_);
        EXPECT_EQ(expectedState_.numBits, s.numBits);
        EXPECT_EQ(lowBits(expectedState_.buffer, expectedState_.numBits), lowBits(s.bitBuffer, s.numBits));
        EXPECT_EQ(expectedState_.eobRun, s.eobRun);
    }
    // As after a restart marker.
    void restart()
    {
        vekiDecodeHuffmanStateInit_JPEG_8u(state_.data());
        expectedState_ = {};
        in_.marker = marker_ = 0;
    }
    void setState(uint64_t bits, int numBits, int eobRun, int marker)
    {
        expectedState_ = {bits, numBits, eobRun};
        state().bitBuffer = bits;
        state().numBits = numBits;
        state().eobRun = eobRun;
        in_.marker = marker_ = marker;
    }
    void setPosition(int position) { in_.position = position_ = position; }
    int position() const { return position_; }
    int marker() const { return marker_; }
    VekDecodeHuffmanState& state() { return *state_.data(); }

private:
    const Tables& tables_;
    support::GuardedArray<uint8_t> bytes_;
    model::Input in_{};
    model::BandDecoderState expectedState_;
    int position_ = 0;
    int marker_ = 0;
    support::GuardedArray<VekDecodeHuffmanState> state_;
    size_t misalignment_ = 0;
};

// A stream of a DC scan, written twice.
class TwoDcWriters {
public:
    TwoDcWriters(const Tables& tables, int room) : tables_(tables), dst_(static_cast<size_t>(room)), state_(1)
    {
        expected_.bytes.resize(static_cast<size_t>(room));
    }
    VekStatus encode(Pass pass, const Block& block, int al)
    {
        const VekStatus want = pass == Pass::First ? model::encodeDcFirst(block, expected_, expectedDc_, al,
                                                                          tables_.modelEncodeDc, expectedState_)
                                                   : model::encodeDcRefine(block, expected_, al, expectedState_);
        const VekStatus got = call(pass, guarded(block, misalignment_++), al, 0);
        EXPECT_EQ(want, got);
        compare();
        return got;
    }
    VekStatus flush(Pass pass)
    {
        const VekStatus want = model::flush(expected_, expectedState_);
        const VekStatus got = call(pass, nullptr, 99, 1);
        EXPECT_EQ(want, got);
        compare();
        return got;
    }
    void compare()
    {
        EXPECT_EQ(expected_.position, position_);
        EXPECT_TRUE(
            std::equal(dst_.data(), dst_.data() + std::min(position_, expected_.position), expected_.bytes.begin()));
        EXPECT_EQ(expectedDc_, dc_);
        EXPECT_EQ(expectedState_.numBits, state().numBits);
        const uint32_t mask = ((1U << expectedState_.numBits) - 1) << (24 - expectedState_.numBits);
        EXPECT_EQ(expectedState_.pending & mask, state().bitBuffer & mask);
    }
    void restart() { expectedDc_ = dc_ = 0; }
    VekEncodeHuffmanState& state() { return *state_.data(); }
    int16_t dc() const { return dc_; }

private:
    VekStatus call(Pass pass, const int16_t* src, int al, int flush)
    {
        const int room = static_cast<int>(dst_.size());
        return pass == Pass::First
                   ? vekiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(src, dst_.data(), room, &position_, &dc_, al,
                                                                &tables_.encodeDc, state_.data(), flush)
                   : vekiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(src, dst_.data(), room, &position_, al, state_.data(),
                                                                 flush);
    }

    const Tables& tables_;
    model::Output expected_;
    model::EncoderState expectedState_;
    int16_t expectedDc_ = 0;
    support::GuardedArray<uint8_t> dst_;
    int position_ = 0;
    int16_t dc_ = 0;
    support::GuardedArray<VekEncodeHuffmanState> state_;
    size_t misalignment_ = 0;
};

// A stream of a DC scan, read twice.
class TwoDcReaders {
public:
    TwoDcReaders(const Tables& tables, const std::vector<uint8_t>& bytes)
        : tables_(tables), bytes_(bytes.size()), state_(1)
    {
        std::copy(bytes.begin(), bytes.end(), bytes_.data());
        in_.bytes = bytes_.data();
        in_.length = static_cast<int>(bytes.size());
    }
    VekStatus decode(Pass pass, Block& block, int al)
    {
        Block want = block;
        const VekStatus expected = pass == Pass::First ? model::decodeDcFirst(in_, want, expectedDc_, al,
                                                                              tables_.modelDecodeDc, expectedState_)
                                                       : model::decodeDcRefine(in_, want, al, expectedState_);
        int16_t* const memory = guarded(block, misalignment_++);
        const VekStatus got =
            pass == Pass::First
                ? vekiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(bytes_.data(), in_.length, &position_, memory, &dc_,
                                                             &marker_, al, &tables_.decodeDc, state_.data())
                : vekiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(bytes_.data(), in_.length, &position_, memory, &marker_,
                                                              al, state_.data());
        std::memcpy(block.data(), memory, sizeof(Block));
        EXPECT_EQ(expected, got);
        EXPECT_EQ(want, block);
        compare();
        return got;
    }
    void compare()
    {
        EXPECT_EQ(expectedDc_, dc_);
        EXPECT_EQ(in_.position, position_);
        EXPECT_EQ(in_.marker, marker_);
        EXPECT_EQ(expectedState_.numBits, state().numBits);
        EXPECT_EQ(lowBits(expectedState_.buffer, expectedState_.numBits), lowBits(state().bitBuffer, state().numBits));
    }
    void restart()
    {
        vekiDecodeHuffmanStateInit_JPEG_8u(state_.data());
        expectedState_ = {};
        expectedDc_ = dc_ = 0;
        in_.marker = marker_ = 0;
    }
    VekDecodeHuffmanState& state() { return *state_.data(); }

private:
    const Tables& tables_;
    support::GuardedArray<uint8_t> bytes_;
    model::Input in_{};
    model::DecoderState expectedState_;
    int16_t expectedDc_ = 0;
    int position_ = 0;
    int marker_ = 0;
    int16_t dc_ = 0;
    support::GuardedArray<VekDecodeHuffmanState> state_;
    size_t misalignment_ = 0;
};

// "0110..." as bytes, with stuffing, the last one filled up with `padding`. Blanks are for the reader.
inline std::vector<uint8_t> bytesOf(const std::string& digits, char padding = '1')
{
    std::string bits;
    for (const char c : digits)
        if (c != ' ')
            bits += c;
    while (bits.size() % 8 != 0) bits += padding;
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < bits.size(); i += 8) {
        bytes.push_back(static_cast<uint8_t>(std::stoi(bits.substr(i, 8), nullptr, 2)));
        if (bytes.back() == 0xFF)
            bytes.push_back(0);
    }
    return bytes;
}

}  // namespace progressive

#endif
