// The store of a whole picture's coefficients, and pictures made from it.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "decode_support.h"
#include "jpeg/band_source.h"
#include "jpeg/coefficient_store.h"
#include "jpeg_peer.h"

using peer::Scene;
using vekpix::jpeg::CoefficientStore;
using vekpix::jpeg::Upsampling;

namespace {

vekpix::jpeg::Frame frame(int width, int height, const std::vector<std::pair<int, int>>& sampling)
{
    vekpix::jpeg::Frame frame;
    frame.width = width;
    frame.height = height;
    for (const auto& [h, v] : sampling) frame.components.push_back({1, h, v, 0});
    return frame;
}

// The headers of a file of one scan, with its coefficients as the peer reads them.
vekpix::jpeg::Picture stored(const std::vector<uint8_t>& file)
{
    vekpix::jpeg::MarkerReader markers(file);
    vekpix::jpeg::Picture picture;
    picture.file = file;
    picture.scans.push_back(*markers.advanceToScan());
    picture.frame = markers.frame();
    picture.colours = markers.colourModel();
    const auto store = std::make_shared<CoefficientStore>(picture.frame);
    const peer::Coefficients coefficients = peer::readCoefficients(file);
    for (size_t i = 0; i < coefficients.components.size(); ++i) {
        const peer::Coefficients::Component& from = coefficients.components[i];
        for (size_t b = 0; b < from.blocks.size(); ++b) {
            const int column = static_cast<int>(b) % from.blocksWide;
            std::ranges::copy(from.blocks[b],
                              store->components()[i].block(column, static_cast<int>(b) / from.blocksWide));
        }
    }
    picture.stored = std::make_shared<vekpix::jpeg::WholeStore>(store);
    return picture;
}

std::vector<uint8_t> pixelsOf(vekpix::jpeg::BandSource& source, int width, int height, int channels)
{
    const size_t step = static_cast<size_t>(width) * static_cast<size_t>(channels);
    std::vector<uint8_t> pixels(step * static_cast<size_t>(height));
    for (int y = 0; y < height; y += source.bandRows())
        source.readBand(pixels.data() + static_cast<size_t>(y) * step, step, std::min(source.bandRows(), height - y));
    return pixels;
}

}  // namespace

TEST(CoefficientStore, HoldsWholeMcusOfEveryComponent)
{
    const CoefficientStore store(frame(33, 17, {{2, 2}, {1, 1}, {2, 1}}));
    EXPECT_EQ(3, store.mcusPerRow());
    EXPECT_EQ(2, store.mcuRows());
    const CoefficientStore::Component& luma = store.components()[0];
    EXPECT_EQ(5, luma.blocksWide);
    EXPECT_EQ(3, luma.blocksHigh);
    EXPECT_EQ(6, luma.columns);
    EXPECT_EQ(4, luma.rows);
    const CoefficientStore::Component& last = store.components()[2];
    EXPECT_EQ(5, last.blocksWide);
    EXPECT_EQ(2, last.blocksHigh);
    EXPECT_EQ(6, last.columns);
    EXPECT_EQ(2, last.rows);
    EXPECT_EQ(luma.block(0, 0) + 64 * 7, luma.block(1, 1));
    EXPECT_EQ(store.components()[1].block(0, 0), luma.block(0, 4));
    for (const CoefficientStore::Component& c : store.components()) {
        EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(c.blocks) % 64);
        EXPECT_TRUE(std::all_of(c.blocks, c.block(0, c.rows), [](int16_t value) { return value == 0; }));
    }
}

TEST(CoefficientStore, PicturesMadeFromItAreThoseMadeFromTheScan)
{
    using Sampling = std::vector<std::pair<int, int>>;
    for (const Sampling& sampling : {Sampling{{1, 1}, {1, 1}, {1, 1}}, Sampling{{2, 1}, {1, 1}, {1, 1}},
                                     Sampling{{2, 2}, {1, 1}, {1, 1}}, Sampling{{2, 2}, {2, 1}, {1, 2}}}) {
        const auto file = peer::write(peer::draw(75, 61, 3, Scene::Harsh), {.sampling = sampling});
        for (const int threads : {1, 3}) {
            const vekpix::jpeg::Picture picture = stored(file);
            for (const Upsampling upsampling : {Upsampling::Smooth, Upsampling::Box}) {
                const vekpix::jpeg::DecodeOptions options{1, threads, upsampling};
                auto source = vekpix::jpeg::makeMcuBands(picture, options);
                const bool mixed = sampling[1] != std::pair(1, 1);
                const bool same = sampling[0] == std::pair(1, 1);
                EXPECT_EQ(mixed || (!same && upsampling == Upsampling::Smooth), source == nullptr);
                if (!source)
                    source = vekpix::jpeg::makePlaneBands(picture, options);
                EXPECT_TRUE(support::decode(file, options).pixels == pixelsOf(*source, 75, 61, 3));
                EXPECT_EQ(std::nullopt, source->markerBehind());
            }
        }
        for (const int scale : {2, 4, 8}) {
            const auto source = vekpix::jpeg::makePlaneBands(stored(file), {scale, 1});
            const peer::Picture reduced = support::decode(file, {scale, 1});
            EXPECT_TRUE(reduced.pixels == pixelsOf(*source, reduced.width, reduced.height, 3));
        }
    }
}
