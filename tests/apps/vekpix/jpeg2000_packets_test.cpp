// What packets are made of, and the order in which they come.
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <tuple>

#include "error.h"
#include "jpeg2000/header_bits.h"
#include "jpeg2000/packet_code.h"
#include "jpeg2000/progression.h"
#include "jpeg2000/tag_tree.h"
#include "jpeg2000/tile_layout.h"
#include "support/sanitizers.h"

using namespace vekpix::jpeg2000;

namespace {

std::string bitsOf(const std::vector<uint8_t>& bytes, size_t count)
{
    HeaderBitReader reader(bytes);
    std::string text;
    while (text.size() < count) text += static_cast<char>('0' + reader.bit());
    return text;
}

int pick(std::mt19937& random, int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }

PictureSize randomSize(std::mt19937& random)
{
    PictureSize size;
    size.x0 = pick(random, 0, 90);
    size.y0 = pick(random, 0, 90);
    size.x1 = size.x0 + pick(random, 1, 150);
    size.y1 = size.y0 + pick(random, 1, 150);
    size.tileX0 = pick(random, 0, static_cast<int>(size.x0));
    size.tileY0 = pick(random, 0, static_cast<int>(size.y0));
    size.tileWidth = size.x0 - size.tileX0 + pick(random, 1, 200);
    size.tileHeight = size.y0 - size.tileY0 + pick(random, 1, 200);
    for (int c = pick(random, 1, 3); c > 0; --c)
        size.components.push_back({8, false, pick(random, 1, 3), pick(random, 1, 3)});
    return size;
}

TileParameters randomParameters(std::mt19937& random, size_t components)
{
    TileParameters parameters;
    parameters.layers = pick(random, 1, 4);
    parameters.progression = static_cast<Progression>(pick(random, 0, 4));
    for (size_t c = 0; c < components; ++c) {
        CodingStyle style;
        style.levels = pick(random, 0, 6);
        style.blockWidthLog = pick(random, 2, 6);
        style.blockHeightLog = pick(random, 2, 6);
        for (int r = 0; r <= style.levels; ++r) {
            style.precinctWidthLog[static_cast<size_t>(r)] = static_cast<uint8_t>(pick(random, r > 0 ? 1 : 0, 8));
            style.precinctHeightLog[static_cast<size_t>(r)] = static_cast<uint8_t>(pick(random, r > 0 ? 1 : 0, 8));
        }
        parameters.components.push_back({style, {}, 0});
    }
    return parameters;
}

void setValues(TagTree& tree, const std::vector<int>& values)
{
    for (size_t i = 0; i < values.size(); ++i) tree.setValue(static_cast<int>(i), values[i]);
}

constexpr int64_t manyBlocks = 1 << 24;

using Place = std::tuple<int, int, int, int>;  // component, resolution, precinct, layer

std::vector<Place> packetsOf(const TileLayout& layout, const TileParameters& parameters)
{
    std::vector<Place> packets;
    forEachPacket(layout, parameters, [&](const Packet& packet) {
        packets.emplace_back(packet.component, packet.resolution, packet.precinct, packet.layer);
        return true;
    });
    return packets;
}

}  // namespace

TEST(HeaderBits, AreReadAsTheyWereWrittenWithNoMarkerAmongThem)
{
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        std::vector<int> bits(static_cast<size_t>(pick(random, 0, 70)));
        const int ones = pick(random, 0, 10);
        for (int& bit : bits) bit = pick(random, 0, 10) <= ones;
        std::vector<uint8_t> bytes;
        HeaderBitWriter writer(bytes);
        for (const int bit : bits) writer.bit(bit);
        writer.finish();
        for (size_t i = 1; i < bytes.size(); ++i)
            if (bytes[i - 1] == 0xFF) {
                ASSERT_LT(bytes[i], 0x80);
            }
        if (!bytes.empty()) {
            ASSERT_NE(0xFF, bytes.back());
        }
        const size_t length = bytes.size();
        bytes.push_back(0x55);
        HeaderBitReader reader(bytes);
        for (const int bit : bits) ASSERT_EQ(bit, reader.bit());
        ASSERT_EQ(length, reader.finish());
    }
}

TEST(HeaderBits, EndEarly)
{
    const std::vector<uint8_t> bytes = {0xFF};
    HeaderBitReader reader(bytes);
    EXPECT_EQ(0xFF, reader.bits(8));
    EXPECT_THROW(reader.bit(), vekpix::Error);
    EXPECT_THROW(reader.finish(), vekpix::Error);  // the stuffed bit's byte is missing
}

// The example of the standard (B.10.2): a grid of 6 x 3 cells.
TEST(TagTree, WritesTheStandardsExample)
{
    TagTree tree(6, 3);
    setValues(tree, {1, 3, 2, 3, 2, 3, 2, 2, 1, 4, 3, 2, 2, 2, 2, 2, 1, 2});
    std::vector<uint8_t> bytes;
    HeaderBitWriter writer(bytes);
    for (const auto& [cell, value] : {std::pair(0, 1), std::pair(1, 3), std::pair(2, 2)})
        tree.writeBelow(writer, cell, value + 1);
    writer.finish();
    EXPECT_EQ("01111001101", bitsOf(bytes, 11));
}

TEST(TagTree, TellsEveryValueAtEveryThreshold)
{
    std::mt19937 random(2);
    for (int round = 0; round < 400; ++round) {
        const int columns = pick(random, 1, 13);
        const int rows = pick(random, 1, 13);
        std::vector<int> values(static_cast<size_t>(columns * rows));
        const int most = pick(random, 0, 9);
        for (int& value : values) value = pick(random, 0, most);
        std::vector<std::pair<int, int>> questions;
        for (int i = pick(random, 0, 300); i > 0; --i)
            questions.emplace_back(pick(random, 0, columns * rows - 1), pick(random, 0, most + 2));
        TagTree told(columns, rows);
        setValues(told, values);
        std::vector<uint8_t> bytes;
        HeaderBitWriter writer(bytes);
        for (const auto& [cell, threshold] : questions) told.writeBelow(writer, cell, threshold);
        writer.finish();
        TagTree asked(columns, rows);
        HeaderBitReader reader(bytes);
        for (const auto& [cell, threshold] : questions) {
            const int value = values[static_cast<size_t>(cell)];
            const bool below = asked.readBelow(reader, cell, threshold);
            ASSERT_EQ(value < threshold, below);
            if (below) {
                ASSERT_EQ(value, asked.value(cell));
            }
        }
        ASSERT_EQ(bytes.size(), reader.finish());
    }
}

// A writer may learn that a value is below a threshold when it comes to write that threshold.
TEST(TagTree, ValuesMayComeLate)
{
    std::mt19937 random(3);
    for (int round = 0; round < 100; ++round) {
        const int cells = pick(random, 1, 13);
        std::vector<int> values(static_cast<size_t>(cells * cells));
        for (int& value : values) value = pick(random, 0, 5);
        TagTree early(cells, cells);
        TagTree late(cells, cells);
        setValues(early, values);
        std::vector<uint8_t> earlyBytes, lateBytes;
        HeaderBitWriter earlyWriter(earlyBytes), lateWriter(lateBytes);
        for (int layer = 0; layer <= 5; ++layer) {
            for (int cell = 0; cell < cells * cells; ++cell)
                if (values[static_cast<size_t>(cell)] == layer)
                    late.setValue(cell, layer);
            for (int cell = 0; cell < cells * cells; ++cell) {
                early.writeBelow(earlyWriter, cell, layer + 1);
                late.writeBelow(lateWriter, cell, layer + 1);
            }
        }
        earlyWriter.finish();
        lateWriter.finish();
        ASSERT_EQ(earlyBytes, lateBytes);
    }
}

TEST(PacketCode, EveryPassCountInItsBits)
{
    for (int count = 1; count <= maxPassesInPacket; ++count) {
        std::vector<uint8_t> bytes;
        HeaderBitWriter writer(bytes);
        writePassCount(writer, count);
        writer.bits(0b10, 2);  // what follows is left alone
        writer.finish();
        HeaderBitReader reader(bytes);
        EXPECT_EQ(count, readPassCount(reader));
        EXPECT_EQ(0b10, reader.bits(2));
        const size_t length = count == 1 ? 1 : count == 2 ? 2 : count <= 5 ? 4 : count <= 36 ? 9 : 16;
        EXPECT_EQ("10", bitsOf(bytes, length + 2).substr(length));
    }
}

TEST(PacketCode, SegmentsOfEachStyle)
{
    EXPECT_EQ(1, segmentPasses(styleTermAll, 0));
    EXPECT_EQ(1, segmentPasses(styleTermAll | styleBypass, 11));
    EXPECT_LT(100'000, segmentPasses(styleReset | styleCausal, 0));
    int first = 0;
    for (const int passes : {10, 2, 1, 2, 1, 2, 1}) {
        EXPECT_EQ(passes, segmentPasses(styleBypass, first));
        first += passes;
    }
}

TEST(PacketCode, LengthsHaveMoreBitsForMorePasses)
{
    for (const auto& [passes, bits] : {std::pair(1, 0), std::pair(2, 1), std::pair(3, 1), std::pair(4, 2),
                                       std::pair(63, 5), std::pair(64, 6), std::pair(164, 7)})
        EXPECT_EQ(bits, extraLengthBits(passes));
}

TEST(TileLayout, TilesCoverThePictureOnce)
{
    std::mt19937 random(3);
    for (int round = 0; round < 300; ++round) {
        const PictureSize size = randomSize(random);
        int64_t area = 0;
        for (int tile = 0; tile < size.tileCount(); ++tile) {
            const TileArea t = tileArea(size, tile);
            ASSERT_LT(t.x0, t.x1);
            ASSERT_LT(t.y0, t.y1);
            ASSERT_LE(t.x1, size.x1);
            ASSERT_LE(t.y1, size.y1);
            area += (t.x1 - t.x0) * (t.y1 - t.y0);
        }
        ASSERT_EQ((size.x1 - size.x0) * (size.y1 - size.y0), area);
    }
}

TEST(TileLayout, BandsAddUpAndBlocksCoverThemOnce)
{
    std::mt19937 random(4);
    for (int round = 0; round < (support::underSanitizer ? 60 : 300); ++round) {
        const PictureSize size = randomSize(random);
        const TileParameters parameters = randomParameters(random, size.components.size());
        const int tile = pick(random, 0, size.tileCount() - 1);
        const TileLayout layout = layOutTile(size, parameters, tile, manyBlocks);
        std::vector<std::vector<int>> covered;
        for (size_t c = 0; c < layout.components.size(); ++c) {
            const TileComponent& component = layout.components[c];
            const Rect rect = componentRect(tileArea(size, tile), size.components[c]);
            ASSERT_EQ(rect, component.rect);
            ASSERT_EQ(rect, component.resolutions.back().rect);
            int area = 0;
            for (const Resolution& resolution : component.resolutions) {
                for (const Band& band : resolution.bands) area += band.rect.width() * band.rect.height();
                ASSERT_EQ(resolution.rect.width() * resolution.rect.height(), area);
            }
            covered.emplace_back(static_cast<size_t>(area));
        }
        for (const BlockPlace& block : layout.blocks) {
            const CodingStyle& style = parameters.components[block.component].style;
            const Rect& rect = layout.components[block.component].rect;
            const Band& band = layout.components[block.component].resolutions[block.resolution].bands[block.band];
            ASSERT_GT(block.width, 0);
            ASSERT_GT(block.height, 0);
            ASSERT_LE(block.width, 1 << style.blockWidthLog);
            ASSERT_LE(block.height, 1 << style.blockHeightLog);
            ASSERT_GE(block.x, band.planeX);
            ASSERT_GE(block.y, band.planeY);
            ASSERT_LE(block.x + block.width, band.planeX + band.rect.width());
            ASSERT_LE(block.y + block.height, band.planeY + band.rect.height());
            for (int y = block.y; y < block.y + block.height; ++y)
                for (int x = block.x; x < block.x + block.width; ++x)
                    ++covered[block.component].at(static_cast<size_t>(y * rect.width() + x));
        }
        for (const std::vector<int>& counts : covered)
            for (const int count : counts) ASSERT_EQ(1, count);
    }
}

TEST(TileLayout, RefusesMoreBlocksOrPrecinctsThanItMay)
{
    PictureSize size;
    size.x1 = size.y1 = size.tileWidth = size.tileHeight = 256;
    size.components.assign(2, {});
    TileParameters parameters;
    parameters.components.resize(2);
    for (ComponentParameters& component : parameters.components) {
        component.style.levels = 0;
        component.style.blockWidthLog = component.style.blockHeightLog = 4;
        component.style.precinctWidthLog[0] = component.style.precinctHeightLog[0] = 15;
    }
    EXPECT_EQ(512u, layOutTile(size, parameters, 0, 512).blocks.size());
    EXPECT_THROW(layOutTile(size, parameters, 0, 511), vekpix::Error);
    // Precincts of one sample each, in both components together.
    for (ComponentParameters& component : parameters.components)
        component.style.precinctWidthLog[0] = component.style.precinctHeightLog[0] = 0;
    EXPECT_NO_THROW(layOutTile(size, parameters, 0, 2 * 65536));
    EXPECT_THROW(layOutTile(size, parameters, 0, 2 * 65536 - 1), vekpix::Error);
}

// 64 x 32 samples, two components, one level, two precincts side by side in each resolution, two layers.
TEST(Progression, ASmallTileByHand)
{
    PictureSize size;
    size.x1 = size.tileWidth = 64;
    size.y1 = size.tileHeight = 32;
    size.components.assign(2, {});
    TileParameters parameters;
    parameters.layers = 2;
    parameters.components.resize(2);
    for (ComponentParameters& component : parameters.components) {
        component.style.levels = 1;
        component.style.precinctWidthLog = {4, 5};
        component.style.precinctHeightLog = {4, 5};
    }
    const TileLayout layout = layOutTile(size, parameters, 0, manyBlocks);
    const auto order = [&](Progression progression) {
        parameters.progression = progression;
        std::string text;
        for (const auto& [c, r, k, l] : packetsOf(layout, parameters))
            text += std::to_string(c) + std::to_string(r) + std::to_string(k) + std::to_string(l) + " ";
        return text;
    };
    EXPECT_EQ(
        "0000 0010 1000 1010 0100 0110 1100 1110 "
        "0001 0011 1001 1011 0101 0111 1101 1111 ",
        order(Progression::Lrcp));
    EXPECT_EQ(
        "0000 0010 1000 1010 0001 0011 1001 1011 "
        "0100 0110 1100 1110 0101 0111 1101 1111 ",
        order(Progression::Rlcp));
    EXPECT_EQ(
        "0000 0001 1000 1001 0010 0011 1010 1011 "
        "0100 0101 1100 1101 0110 0111 1110 1111 ",
        order(Progression::Rpcl));
    EXPECT_EQ(
        "0000 0001 0100 0101 1000 1001 1100 1101 "
        "0010 0011 0110 0111 1010 1011 1110 1111 ",
        order(Progression::Pcrl));
    EXPECT_EQ(
        "0000 0001 0100 0101 0010 0011 0110 0111 "
        "1000 1001 1100 1101 1010 1011 1110 1111 ",
        order(Progression::Cprl));
}

TEST(Progression, EachPacketOnceAndLayersInTheirOrder)
{
    std::mt19937 random(5);
    for (int round = 0; round < (support::underSanitizer ? 60 : 300); ++round) {
        const PictureSize size = randomSize(random);
        TileParameters parameters = randomParameters(random, size.components.size());
        for (int i = pick(random, 0, 3); i > 0; --i) {
            ProgressionRange range;
            range.order = static_cast<Progression>(pick(random, 0, 4));
            range.firstResolution = pick(random, 0, 3);
            range.endResolution = range.firstResolution + pick(random, 1, 4);
            range.endComponent = pick(random, 1, 3);
            range.endLayer = pick(random, 1, 5);
            parameters.changes.push_back(range);
        }
        if (!parameters.changes.empty()) {
            ProgressionRange rest;
            rest.order = static_cast<Progression>(pick(random, 0, 4));
            parameters.changes.push_back(rest);
        }
        const int tile = pick(random, 0, size.tileCount() - 1);
        const TileLayout layout = layOutTile(size, parameters, tile, manyBlocks);
        size_t precincts = 0;
        for (const TileComponent& component : layout.components)
            for (const Resolution& resolution : component.resolutions) precincts += resolution.precincts.size();
        std::set<Place> seen;
        for (const Place& packet : packetsOf(layout, parameters)) {
            const auto& [c, r, k, l] = packet;
            ASSERT_TRUE(seen.insert(packet).second);
            ASSERT_TRUE(l == 0 || seen.count({c, r, k, l - 1}) == 1);
        }
        ASSERT_EQ(precincts * static_cast<size_t>(parameters.layers), seen.size());
    }
}

TEST(Progression, EndsWhenItsVisitorHasHadEnough)
{
    std::mt19937 random(6);
    PictureSize size = randomSize(random);
    TileParameters parameters = randomParameters(random, size.components.size());
    parameters.layers = 4;
    const TileLayout layout = layOutTile(size, parameters, 0, manyBlocks);
    for (int order = 0; order < 5; ++order) {
        parameters.progression = static_cast<Progression>(order);
        int left = 3;
        forEachPacket(layout, parameters, [&](const Packet&) { return --left > 0; });
        EXPECT_EQ(0, left);
    }
}
