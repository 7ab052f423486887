#include "jpeg2000/decoder.h"

#include <algorithm>
#include <array>
#include <vector>

#include "error.h"
#include "jpeg2000/codestream_reader.h"
#include "jpeg2000/inverse_transform.h"
#include "jpeg2000/jp2_boxes.h"
#include "jpeg2000/pixel_rows.h"

namespace vekpix::jpeg2000 {

namespace {

constexpr int bandHeight = 64;
constexpr int mostBits = 16;

// Whatever its data are, a tile may have this many samples; and so many more for each byte of data.
constexpr int64_t samplesAnyway = int64_t{1} << 27;
constexpr int64_t samplesPerByte = int64_t{1} << 12;
constexpr int64_t blocksAnyway = int64_t{1} << 20;
constexpr int64_t blocksPerByte = 1 << 10;

// Where the picture's colours come from, in order.
std::vector<ChannelSource> colourSources(const Jp2File& file, const PictureSize& size)
{
    std::vector<ChannelSource> channels = file.sources;
    const auto components = static_cast<int>(size.components.size());
    if (channels.empty())
        for (int c = 0; c < components; ++c) channels.push_back({c, -1});
    for (const ChannelSource& channel : channels)
        if (channel.component >= components)
            throw Error("a channel names a component that is not there");
    const size_t colours = channels.size() >= 3 && file.colourSpace != ColourSpace::Grey ? 3 : 1;
    std::vector<ChannelSource> sources(channels.begin(), channels.begin() + static_cast<std::ptrdiff_t>(colours));
    for (const ChannelUse& use : file.channels)
        if (use.isColour && use.colour >= 1 && use.colour <= static_cast<int>(colours) &&
            use.channel < static_cast<int>(channels.size()))
            sources[static_cast<size_t>(use.colour - 1)] = channels[static_cast<size_t>(use.channel)];
    return sources;
}

int64_t bytesOf(const TilePackets& packets)
{
    auto bytes = static_cast<int64_t>(packets.headers.size());
    for (const auto& part : packets.parts) bytes += static_cast<int64_t>(part.size());
    return bytes;
}

}  // namespace

class Decoder::State {
public:
    State(std::span<const uint8_t> bytes, const DecodeOptions& options)
        : file_(readJp2(bytes)),
          codestream_(file_.codestream),
          wanted_{options.layers, options.droppedResolutions},
          colours_(colourSources(file_, codestream_.size())),
          crew_(options.threads)
    {
        const PictureSize& size = codestream_.size();
        checkSize(size);
        const TileArea whole = {size.x0, size.y0, size.x1, size.y1};
        const Rect rect = componentRect(whole, {8, false, 1, 1}, wanted_.droppedResolutions);
        int bits = 8;
        int last = 0;
        for (const ChannelSource& source : colours_) {
            bits = std::max(bits, source.column >= 0 ? file_.palette->bits[static_cast<size_t>(source.column)]
                                                     : size.components[static_cast<size_t>(source.component)].bits);
            last = std::max(last, source.component);
        }
        if (rect.empty())
            throw Error("so many resolutions less leave nothing of the picture");
        shape_ = {rect.width(), rect.height(), static_cast<int>(colours_.size()), bits};
        top_ = rect.y0;
        left_ = rect.x0;
        const int needed = last + 1;
        const bool mayTransform = size.components.size() >= 3;
        planeCount_ = static_cast<size_t>(std::max(needed, mayTransform ? 3 : 1));
    }

    const Shape& shape() const { return shape_; }
    int bandRows() const { return std::min(bandHeight, shape_.height); }

    int readBand(uint8_t* pixels, size_t step)
    {
        if (nextRow_ == shape_.height)
            return 0;
        while (nextRow_ == decodedRows_) decodeTileRow();
        const int rows = std::min(bandRows(), decodedRows_ - nextRow_);
        PixelRows converter(shape_, file_.colourSpace == ColourSpace::Sycc);
        crew_.run(rows, [&](int row) {
            std::array<SampleRow, 3> sources{};
            for (size_t c = 0; c < colours_.size(); ++c) sources[c] = sourceRow(colours_[c], top_ + nextRow_ + row);
            converter.convert(sources, pixels + step * static_cast<size_t>(row), left_);
        });
        nextRow_ += rows;
        return rows;
    }

private:
    void checkSize(const PictureSize& size) const
    {
        constexpr int64_t mostPixels = int64_t{1} << 31;
        constexpr int64_t longestSide = int64_t{1} << 26;
        const int64_t width = size.x1 - size.x0, height = size.y1 - size.y0;
        if (width > longestSide || height > longestSide || width * height > mostPixels)
            throw Error("the picture is too large");
        for (const ChannelSource& source : colours_) {
            const ComponentSize& component = size.components[static_cast<size_t>(source.component)];
            if (component.bits > mostBits)
                throw Error("samples of more than 16 bits are not supported");
        }
    }

    // Decodes the next row of tiles.
    void decodeTileRow()
    {
        const PictureSize& size = codestream_.size();
        const TileArea first = tileArea(size, tileRow_ * size.tilesWide());
        const TileArea row = {size.x0, first.y0, size.x1, first.y1};
        keepLastRows();
        makePlanes(row);
        for (int column = 0; column < size.tilesWide(); ++column) decodeTile(tileRow_ * size.tilesWide() + column);
        ++tileRow_;
        decodedRows_ = static_cast<int>(ceilShift(first.y1, wanted_.droppedResolutions)) - top_;
    }

    // The rows of pixels at the top of a row of tiles may show samples of components that begin above them.
    void keepLastRows()
    {
        rowsAbove_.resize(planeCount_);
        for (size_t c = 0; c < planes_.size(); ++c) {
            const Rect& rect = planeRects_[c];
            if (!rect.empty() && codestream_.size().components[c].dy > 1) {
                const int32_t* const row = planes_[c].at(0, rect.height() - 1);
                rowsAbove_[c].assign(row, row + rect.width());
            }
        }
    }

    // Memory for the samples of all components in an area.
    void makePlanes(const TileArea& area)
    {
        const PictureSize& size = codestream_.size();
        planeRects_.clear();
        int64_t samples = 0;
        for (size_t c = 0; c < planeCount_; ++c) {
            planeRects_.push_back(componentRect(area, size.components[c], wanted_.droppedResolutions));
            samples += planeSamples(planeRects_[c]);
        }
        int64_t bytes = 0;
        for (int column = 0; column < size.tilesWide(); ++column)
            bytes += bytesOf(codestream_.tilePackets(tileRow_ * size.tilesWide() + column));
        if (samples > samplesAnyway + samplesPerByte * bytes)
            throw Error("the picture is too large for the data that the file holds");
        samples_.resize(static_cast<size_t>(samples));
        planes_.clear();
        int32_t* next = samples_.data();
        for (const Rect& rect : planeRects_) {
            planes_.push_back({next, planeStep(static_cast<size_t>(rect.width()))});
            next += planeSamples(rect);
        }
    }

    static int64_t planeSamples(const Rect& rect)
    {
        return static_cast<int64_t>(planeStep(static_cast<size_t>(rect.width()))) * rect.height();
    }

    std::vector<Plane> tilePlanes(const TileArea& area) const
    {
        std::vector<Plane> planes = planes_;
        for (size_t c = 0; c < planeCount_; ++c) {
            const Rect tile = componentRect(area, codestream_.size().components[c], wanted_.droppedResolutions);
            planes[c].samples = planes[c].at(tile.x0 - planeRects_[c].x0, tile.y0 - planeRects_[c].y0);
        }
        return planes;
    }

    void decodeTile(int tile)
    {
        const PictureSize& size = codestream_.size();
        const TilePackets& packets = codestream_.tilePackets(tile);
        if (packets.parts.empty())
            throw Error("a tile of the picture is missing");
        const TileParameters parameters = codestream_.tileParameters(tile);
        for (size_t c = 0; c < planeCount_; ++c)
            if (parameters.components[c].style.levels < wanted_.droppedResolutions)
                throw Error("the picture does not have as many resolutions to leave out");
        const int64_t mostBlocks = blocksAnyway + blocksPerByte * bytesOf(packets);
        const TileLayout layout = layOutTile(size, parameters, tile, mostBlocks);
        const TileData data = readPackets(layout, parameters, packets, wanted_);
        const std::vector<Plane> planes = tilePlanes(tileArea(size, tile));
        decodeBlocks(layout, size, parameters, data, wanted_, planes, crew_);
        inverseTransform(layout, size, parameters, wanted_, planes, crew_);
    }

    // The row of samples for a row of pixels.
    SampleRow sourceRow(const ChannelSource& source, int y)
    {
        SampleRow row = componentRow(static_cast<size_t>(source.component), y);
        if (source.column >= 0) {
            row.palette = &*file_.palette;
            row.column = source.column;
        }
        return row;
    }
    SampleRow componentRow(size_t component, int y)
    {
        const ComponentSize& size = codestream_.size().components[component];
        const Rect& rect = planeRects_[component];
        const int wanted = y / size.dy;
        if (wanted < rect.y0 && !rowsAbove_[component].empty())
            return {rowsAbove_[component].data(), rect.x0, rect.width(), &size, nullptr, 0};
        if (rect.empty())
            return {nullptr, rect.x0, 0, &size, nullptr, 0};
        const int row = std::clamp(wanted, rect.y0, rect.y1 - 1) - rect.y0;
        return {planes_[component].at(0, row), rect.x0, rect.width(), &size, nullptr, 0};
    }

    Jp2File file_;
    Codestream codestream_;
    Wanted wanted_;
    std::vector<ChannelSource> colours_;
    Crew crew_;
    Shape shape_;
    int top_ = 0;
    int left_ = 0;
    size_t planeCount_ = 0;
    int tileRow_ = 0;
    int decodedRows_ = 0;
    int nextRow_ = 0;
    std::vector<Rect> planeRects_;
    std::vector<int32_t> samples_;
    std::vector<Plane> planes_;                    // of samples_
    std::vector<std::vector<int32_t>> rowsAbove_;  // of each component, the last row of the tiles before
};

Decoder::Decoder(std::span<const uint8_t> file, const DecodeOptions& options)
    : state_(std::make_unique<State>(file, options))
{
}

Decoder::~Decoder() = default;

const Shape& Decoder::shape() const { return state_->shape(); }

int Decoder::bandRows() const { return state_->bandRows(); }

int Decoder::readBand(uint8_t* pixels, size_t step) { return state_->readBand(pixels, step); }

}  // namespace vekpix::jpeg2000
