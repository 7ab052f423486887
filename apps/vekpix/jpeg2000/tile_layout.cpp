#include "jpeg2000/tile_layout.h"

#include <algorithm>

#include "error.h"

namespace vekpix::jpeg2000 {

namespace {

Rect bandRect(const Rect& tile, int level, Orientation orientation)
{
    const int64_t half = int64_t{1} << (level - 1);
    const int64_t right = orientation == Orientation::HL || orientation == Orientation::HH ? half : 0;
    const int64_t down = orientation == Orientation::LH || orientation == Orientation::HH ? half : 0;
    return {static_cast<int>(ceilShift(tile.x0 - right, level)), static_cast<int>(ceilShift(tile.y0 - down, level)),
            static_cast<int>(ceilShift(tile.x1 - right, level)), static_cast<int>(ceilShift(tile.y1 - down, level))};
}

Rect resolutionRect(const Rect& tile, int shift)
{
    return {static_cast<int>(ceilShift(tile.x0, shift)), static_cast<int>(ceilShift(tile.y0, shift)),
            static_cast<int>(ceilShift(tile.x1, shift)), static_cast<int>(ceilShift(tile.y1, shift))};
}

Rect intersection(const Rect& a, const Rect& b)
{
    return {std::max(a.x0, b.x0), std::max(a.y0, b.y0), std::min(a.x1, b.x1), std::min(a.y1, b.y1)};
}

int clampToInt(int64_t v) { return static_cast<int>(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX)); }

// Lays out one tile-component, one resolution after the other.
class ComponentLayout {
public:
    ComponentLayout(TileLayout& tile, int component, const CodingStyle& style, const ComponentSize& size,
                    const TileArea& area, int64_t maxBlocks, int64_t& precincts)
        : tile_(tile),
          component_(component),
          style_(style),
          size_(size),
          area_(area),
          maxBlocks_(maxBlocks),
          precincts_(precincts)
    {
    }

    TileComponent layOut()
    {
        TileComponent result;
        result.rect = componentRect(area_, size_);
        for (int r = 0; r <= style_.levels; ++r) result.resolutions.push_back(layOutResolution(result.rect, r));
        return result;
    }

private:
    Resolution layOutResolution(const Rect& tile, int r)
    {
        Resolution resolution;
        resolution.rect = resolutionRect(tile, style_.levels - r);
        addBands(resolution, tile, r);
        if (!resolution.rect.empty())
            addPrecincts(resolution, r);
        return resolution;
    }

    void addBands(Resolution& resolution, const Rect& tile, int r) const
    {
        if (r == 0) {
            resolution.bands.push_back({resolution.rect, Orientation::LL, style_.levels, 0, 0, 0});
            return;
        }
        const int level = style_.levels - r + 1;
        const Rect low = resolutionRect(tile, level);
        for (const Orientation orientation : {Orientation::HL, Orientation::LH, Orientation::HH}) {
            const int number = static_cast<int>(orientation);
            resolution.bands.push_back({bandRect(tile, level, orientation), orientation, level, 3 * (r - 1) + number,
                                        orientation == Orientation::LH ? 0 : low.width(),
                                        orientation == Orientation::HL ? 0 : low.height()});
        }
    }

    void addPrecincts(Resolution& resolution, int r)
    {
        const int widthLog = style_.precinctWidthLog[static_cast<size_t>(r)];
        const int heightLog = style_.precinctHeightLog[static_cast<size_t>(r)];
        const int64_t left = resolution.rect.x0 >> widthLog, right = ceilShift(resolution.rect.x1, widthLog);
        const int64_t top = resolution.rect.y0 >> heightLog, bottom = ceilShift(resolution.rect.y1, heightLog);
        precincts_ += (right - left) * (bottom - top);
        if (precincts_ > maxBlocks_)
            throw Error("the tile has too many precincts for its data");
        resolution.precincts.reserve(static_cast<size_t>((right - left) * (bottom - top)));
        for (int64_t y = top; y < bottom; ++y)
            for (int64_t x = left; x < right; ++x) resolution.precincts.push_back(layOutPrecinct(resolution, r, x, y));
    }

    Precinct layOutPrecinct(const Resolution& resolution, int r, int64_t column, int64_t row)
    {
        const int widthLog = style_.precinctWidthLog[static_cast<size_t>(r)];
        const int heightLog = style_.precinctHeightLog[static_cast<size_t>(r)];
        const int64_t x0 = column << widthLog, x1 = (column + 1) << widthLog;
        const int64_t y0 = row << heightLog, y1 = (row + 1) << heightLog;
        Precinct precinct;
        const int shift = style_.levels - r;
        precinct.x = x0 >= resolution.rect.x0 ? (x0 << shift) * size_.dx : area_.x0;
        precinct.y = y0 >= resolution.rect.y0 ? (y0 << shift) * size_.dy : area_.y0;
        const int bandShift = r == 0 ? 0 : 1;
        const Rect area = {clampToInt(x0 >> bandShift), clampToInt(y0 >> bandShift), clampToInt(x1 >> bandShift),
                           clampToInt(y1 >> bandShift)};
        for (size_t b = 0; b < resolution.bands.size(); ++b) {
            const Band& band = resolution.bands[b];
            precinct.bands[b] = layOutBlocks(band, intersection(band.rect, area), r, static_cast<int>(b));
        }
        return precinct;
    }

    PrecinctBand layOutBlocks(const Band& band, const Rect& area, int r, int bandNumber)
    {
        PrecinctBand result;
        result.firstBlock = static_cast<int>(tile_.blocks.size());
        if (area.empty())
            return result;
        const int shift = r == 0 ? 0 : 1;
        const int widthLog =
            std::min<int>(style_.blockWidthLog, style_.precinctWidthLog[static_cast<size_t>(r)] - shift);
        const int heightLog =
            std::min<int>(style_.blockHeightLog, style_.precinctHeightLog[static_cast<size_t>(r)] - shift);
        const int left = area.x0 >> widthLog, right = static_cast<int>(ceilShift(area.x1, widthLog));
        const int top = area.y0 >> heightLog, bottom = static_cast<int>(ceilShift(area.y1, heightLog));
        result.columns = right - left;
        result.rows = bottom - top;
        if (static_cast<int64_t>(tile_.blocks.size()) + int64_t{result.columns} * result.rows > maxBlocks_)
            throw Error("the tile has too many code-blocks for its data");
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x) {
                const int x0 = std::max(area.x0, x << widthLog), x1 = std::min<int>(area.x1, (x + 1) << widthLog);
                const int y0 = std::max(area.y0, y << heightLog), y1 = std::min<int>(area.y1, (y + 1) << heightLog);
                tile_.blocks.push_back({band.planeX + x0 - band.rect.x0, band.planeY + y0 - band.rect.y0, x1 - x0,
                                        y1 - y0, static_cast<uint16_t>(component_), static_cast<uint8_t>(r),
                                        static_cast<uint8_t>(bandNumber)});
            }
        return result;
    }

    TileLayout& tile_;
    int component_;
    const CodingStyle& style_;
    const ComponentSize& size_;
    const TileArea& area_;
    int64_t maxBlocks_;
    int64_t& precincts_;  // of all components so far
};

}  // namespace

TileArea tileArea(const PictureSize& size, int tile)
{
    const int64_t column = tile % size.tilesWide(), row = tile / size.tilesWide();
    return {std::max(size.tileX0 + column * size.tileWidth, size.x0),
            std::max(size.tileY0 + row * size.tileHeight, size.y0),
            std::min(size.tileX0 + (column + 1) * size.tileWidth, size.x1),
            std::min(size.tileY0 + (row + 1) * size.tileHeight, size.y1)};
}

Rect componentRect(const TileArea& area, const ComponentSize& component, int levels)
{
    const Rect whole = {
        static_cast<int>(ceilDiv(area.x0, component.dx)), static_cast<int>(ceilDiv(area.y0, component.dy)),
        static_cast<int>(ceilDiv(area.x1, component.dx)), static_cast<int>(ceilDiv(area.y1, component.dy))};
    return resolutionRect(whole, levels);
}

TileLayout layOutTile(const PictureSize& size, const TileParameters& parameters, int tile, int64_t maxBlocks)
{
    TileLayout layout;
    const TileArea area = tileArea(size, tile);
    int64_t precincts = 0;
    for (size_t c = 0; c < size.components.size(); ++c) {
        ComponentLayout component(layout, static_cast<int>(c), parameters.components[c].style, size.components[c], area,
                                  maxBlocks, precincts);
        layout.components.push_back(component.layOut());
    }
    return layout;
}

}  // namespace vekpix::jpeg2000
