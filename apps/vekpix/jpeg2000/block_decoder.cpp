#include "jpeg2000/block_decoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "error.h"
#include "jpeg2000/band_scale.h"
#include "jpeg2000/block_style.h"
#include "library_status.h"
#include "vekj.h"

namespace vekpix::jpeg2000 {

namespace {

constexpr int blocksAtOnce = 16;
constexpr int mostPlanes = 31;

struct FreeState {
    void operator()(VekDecodeCBProgrState_JPEG2K* state) const { vekiDecodeCBProgrFree_JPEG2K(state); }
};

int decoderStyle(int style)
{
    const int ends = (style & stylePredictableTermination) != 0 ? libraryPredictableTermination : 0;
    return libraryStyle(style) | libraryKeepMidpoints | ends;
}

// Whether damage of a block shows for certain. Raw segments are tested for an end that not all encoders give them.
bool tellsDamage(int style)
{
    return (style & (styleSegmentationSymbols | stylePredictableTermination)) != 0 && (style & styleBypass) == 0;
}

int32_t magnitudeOf(int32_t sample) { return sample & INT32_MAX; }

// Samples whose magnitude reaches 2^shift belong to a region of interest, whatever planes the background has. They
// have lost their midpoint to the shift: where there is a plane for it, they get it back.
void shiftRegionBack(int32_t* row, int width, int shift, int extraPlanes)
{
    if (shift + extraPlanes >= mostPlanes)
        return;
    for (int x = 0; x < width; ++x) {
        const int32_t magnitude = magnitudeOf(row[x]);
        if (magnitude >> (shift + extraPlanes) != 0)
            row[x] = (row[x] & INT32_MIN) | magnitude >> shift | extraPlanes;
    }
}

void toIntegers(int32_t* row, int width)
{
    for (int x = 0; x < width; ++x) {
        const int32_t magnitude = magnitudeOf(row[x]);
        const int32_t sign = row[x] >> 31;
        row[x] = (magnitude ^ sign) - sign;
    }
}

void scale(int32_t* row, int width, float factor)
{
    constexpr float largest = 1 << 30;
    for (int x = 0; x < width; ++x) {
        const float magnitude = std::min(static_cast<float>(magnitudeOf(row[x])) * factor, largest);
        const auto value = static_cast<int32_t>(magnitude);
        const int32_t sign = row[x] >> 31;
        row[x] = (value ^ sign) - sign;
    }
}

class BlockDecoder {
public:
    BlockDecoder(const TileLayout& layout, const PictureSize& size, const TileParameters& parameters,
                 const TileData& data, const std::vector<Plane>& planes)
        : layout_(layout), size_(size), parameters_(parameters), data_(data), planes_(planes)
    {
    }

    void decode(size_t number)
    {
        const BlockPlace& place = layout_.blocks[number];
        const BlockData& block = data_.blocks[number];
        const Plane& plane = planes_[place.component];
        if (block.passes == 0) {
            for (int y = 0; y < place.height; ++y)
                std::memset(plane.at(place.x, place.y + y), 0, sizeof(int32_t) * static_cast<size_t>(place.width));
            return;
        }
        const ComponentParameters& component = parameters_.components[place.component];
        const Band& band =
            layout_.components[place.component].resolutions[place.resolution].bands[static_cast<size_t>(place.band)];
        // Below the lowest plane of irreversible samples there is one more for their midpoint.
        const int extraPlanes = component.style.reversible ? 0 : 1;
        const int backgroundPlanes = bandPlanes(component.quantization, band) + extraPlanes;
        const int planeCount = backgroundPlanes + component.regionShift - block.zeroPlanes;
        if (backgroundPlanes < extraPlanes || planeCount < extraPlanes || planeCount > mostPlanes)
            throw Error("a code-block has an impossible number of bit planes");
        runPasses(place, block, component.style.blockStyle, band.orientation, planeCount, plane);

        const double step = component.style.reversible
                                ? 1.0
                                : stepSize(band, component.quantization.steps[static_cast<size_t>(band.index)],
                                           size_.components[place.component].bits);
        const int fraction = fractionBits(size_.components[place.component].bits);
        const auto factor = static_cast<float>(std::ldexp(step, fraction - extraPlanes));
        for (int y = 0; y < place.height; ++y) {
            int32_t* const row = plane.at(place.x, place.y + y);
            if (component.regionShift > 0)
                shiftRegionBack(row, place.width, component.regionShift, extraPlanes);
            if (component.style.reversible)
                toIntegers(row, place.width);
            else
                scale(row, place.width, factor);
        }
    }

private:
    void runPasses(const BlockPlace& place, const BlockData& block, int style, Orientation orientation, int planeCount,
                   const Plane& plane)
    {
        reserve(place);
        expectOk(vekiDecodeCBProgrAttach_JPEG2K_32s_C1R(plane.at(place.x, place.y), plane.stepBytes(),
                                                        {place.width, place.height}, state_.get(),
                                                        libraryBand(orientation), planeCount, decoderStyle(style)),
                 "vekiDecodeCBProgrAttach");
        expectOk(vekiDecodeCBProgrSetPassCounter_JPEG2K(block.passes, state_.get()), "SetPassCounter");
        for (int chunk = block.firstChunk; chunk >= 0;) {
            const std::span<const uint8_t> segment = gather(chunk);
            const VekStatus status = vekiDecodeCBProgrStep_JPEG2K(segment.empty() ? noBytes : segment.data(),
                                                                  static_cast<int>(segment.size()), state_.get());
            if (status == vekStsJpeg2KCorruptCodeBlock) {
                if (tellsDamage(style))
                    throw Error("a code-block is damaged");
            } else {
                expectOk(status, "vekiDecodeCBProgrStep");
            }
        }
    }

    // The segment that begins with a chunk; `chunk` goes on to the next.
    std::span<const uint8_t> gather(int& chunk)
    {
        const Chunk& first = data_.chunks[static_cast<size_t>(chunk)];
        chunk = first.next;
        if (chunk < 0 || data_.chunks[static_cast<size_t>(chunk)].beginsSegment)
            return {first.data, first.length};
        segment_.assign(first.data, first.data + first.length);
        while (chunk >= 0 && !data_.chunks[static_cast<size_t>(chunk)].beginsSegment) {
            const Chunk& more = data_.chunks[static_cast<size_t>(chunk)];
            segment_.insert(segment_.end(), more.data, more.data + more.length);
            chunk = more.next;
        }
        return segment_;
    }

    void reserve(const BlockPlace& place)
    {
        if (place.width <= stateSize_.width && place.height <= stateSize_.height)
            return;
        stateSize_ = {std::max(place.width, stateSize_.width), std::max(place.height, stateSize_.height)};
        VekDecodeCBProgrState_JPEG2K* state = nullptr;
        expectOk(vekiDecodeCBProgrInitAlloc_JPEG2K(&state, stateSize_), "vekiDecodeCBProgrInitAlloc");
        state_.reset(state);
    }

    static constexpr uint8_t noBytes[1] = {};

    const TileLayout& layout_;
    const PictureSize& size_;
    const TileParameters& parameters_;
    const TileData& data_;
    const std::vector<Plane>& planes_;
    std::unique_ptr<VekDecodeCBProgrState_JPEG2K, FreeState> state_;
    VekSize stateSize_{};
    std::vector<uint8_t> segment_;
};

}  // namespace

void decodeBlocks(const TileLayout& layout, const PictureSize& size, const TileParameters& parameters,
                  const TileData& data, const Wanted& wanted, const std::vector<Plane>& planes, Crew& crew)
{
    std::vector<size_t> numbers;
    for (size_t i = 0; i < layout.blocks.size(); ++i) {
        const BlockPlace& place = layout.blocks[i];
        if (place.component < planes.size() &&
            place.resolution + wanted.droppedResolutions <= parameters.components[place.component].style.levels)
            numbers.push_back(i);
    }
    const auto count = static_cast<int>(numbers.size());
    crew.run((count + blocksAtOnce - 1) / blocksAtOnce, [&](int item) {
        BlockDecoder decoder(layout, size, parameters, data, planes);
        for (int i = item * blocksAtOnce; i < std::min(count, (item + 1) * blocksAtOnce); ++i)
            decoder.decode(numbers[static_cast<size_t>(i)]);
    });
}

}  // namespace vekpix::jpeg2000
