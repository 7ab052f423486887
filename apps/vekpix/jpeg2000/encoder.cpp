#include "jpeg2000/encoder.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "error.h"
#include "jpeg2000/band_scale.h"
#include "jpeg2000/codestream_writer.h"
#include "jpeg2000/forward_transform.h"
#include "jpeg2000/jp2_boxes.h"
#include "jpeg2000/rate_allocation.h"
#include "jpeg2000/wavelet_norms.h"

namespace vekpix::jpeg2000 {

namespace {

constexpr int mostFractionPlanes = 6;
constexpr int mostPlanes = 31;
constexpr int guardBits = 3;  // one more than usual: chrominance of the RCT has a bit more
constexpr int rowsAtOnce = 64;

double targetError(const EncodeOptions& options, int bits)
{
    const double peak = std::ldexp(1.0, bits) - 1;
    const double squared = peak * peak * std::pow(10.0, -*options.psnr / 10);
    constexpr double rounding = 1.0 / 12;  // of decoded samples to integers
    return std::max(squared - rounding, squared / 4);
}

// The error that quantisation makes in the picture is about that of a uniform one with steps of this size.
double pictureStep(const EncodeOptions& options, int bits)
{
    const double usual = std::ldexp(1.0, bits - 8);
    if (!options.psnr)
        return usual;
    constexpr double share = 0.1;  // of the error that may be
    return std::min(usual, std::sqrt(12 * share * targetError(options, bits)));
}

StepSize stepFor(double step, Orientation orientation, int bits)
{
    int exponent = 0;
    const double mantissa = std::frexp(step, &exponent) * 2;  // 1 .. 2
    StepSize result;
    result.exponent = bits + gainLog(orientation) - (exponent - 1);
    result.mantissa = std::min(2047, static_cast<int>(std::lround((mantissa - 1) * 2048)));
    // Samples of the deepest levels are few, but must not have more planes than code-blocks can.
    constexpr int finest = mostPlanes - guardBits;
    if (result.exponent > finest)
        result = {finest, 0};
    return result;
}

class Encoder {
public:
    Encoder(RowReader& picture, const EncodeOptions& options)
        : picture_(picture),
          options_(options),
          reversible_(!options.bitsPerPixel && !options.psnr),
          crew_(options.threads),
          encoders_(1 << options.blockSizeLog, 1 << options.blockSizeLog, options.blockStyle, reversible_)
    {
        const Shape& shape = picture.shape();
        if (shape.channels != 1 && shape.channels != 3)
            throw Error("JPEG 2000 files are made of grey and colour pictures only");
        size_.x1 = shape.width;
        size_.y1 = shape.height;
        size_.tileWidth = options.tileWidth > 0 ? options.tileWidth : shape.width;
        size_.tileHeight = options.tileHeight > 0 ? options.tileHeight : shape.height;
        size_.components.assign(static_cast<size_t>(shape.channels), {shape.bits, false, 1, 1});
        constexpr int64_t mostTiles = 65535;
        if (ceilDiv(size_.x1, size_.tileWidth) * ceilDiv(size_.y1, size_.tileHeight) > mostTiles)
            throw Error("the format has no room for so many tiles");
        setParameters();
    }

    void encode(ByteSink& file)
    {
        for (int row = 0; row < size_.tilesHigh(); ++row) encodeTileRow(row);
        writeFile(file);
    }

private:
    int bits() const { return picture_.shape().bits; }

    void setParameters()
    {
        parameters_.progression = options_.progression;
        parameters_.layers = options_.layers;
        parameters_.componentTransform = size_.components.size() == 3;
        ComponentParameters component;
        CodingStyle& style = component.style;
        style.levels = options_.levels;
        style.blockWidthLog = style.blockHeightLog = options_.blockSizeLog;
        style.blockStyle = options_.blockStyle;
        style.reversible = reversible_;
        style.precinctWidthLog.fill(15);
        style.precinctHeightLog.fill(15);
        Quantization& quantization = component.quantization;
        quantization.guardBits = guardBits;
        quantization.kind = reversible_ ? StepSizes::None : StepSizes::Expounded;
        quantization.steps[0] = bandStep(Orientation::LL, style.levels);
        for (int r = 1; r <= style.levels; ++r)
            for (const Orientation orientation : {Orientation::HL, Orientation::LH, Orientation::HH})
                quantization.steps[static_cast<size_t>(3 * (r - 1) + static_cast<int>(orientation))] =
                    bandStep(orientation, style.levels - r + 1);
        parameters_.components.assign(size_.components.size(), component);
    }

    StepSize bandStep(Orientation orientation, int level) const
    {
        if (reversible_)
            return {bits() + gainLog(orientation), 0};
        return stepFor(pictureStep(options_, bits()) / waveletNorm(false, orientation, level), orientation, bits());
    }

    BandCoding bandCoding(int component, const Band& band) const
    {
        const Quantization& quantization = parameters_.components[0].quantization;
        BandCoding coding;
        coding.planes = bandPlanes(quantization, band);
        double norm = waveletNorm(reversible_, band.orientation, band.level);
        if (parameters_.componentTransform)
            norm *= componentNorm(reversible_, component);
        if (!reversible_) {
            const double step = stepSize(band, quantization.steps[static_cast<size_t>(band.index)], bits());
            coding.fractionPlanes = std::min(mostFractionPlanes, mostPlanes - coding.planes);
            coding.scale = static_cast<float>(std::ldexp(1.0, coding.fractionPlanes - fractionBits(bits())) / step);
            norm *= step;
        }
        coding.weight = norm * norm;
        return coding;
    }

    void encodeTileRow(int row)
    {
        const TileArea first = tileArea(size_, row * size_.tilesWide());
        const size_t step = planeStep(static_cast<size_t>(picture_.width()));
        const size_t height = static_cast<size_t>(first.y1 - first.y0);
        samples_.resize(step * height * size_.components.size());
        std::vector<Plane> planes;
        for (size_t c = 0; c < size_.components.size(); ++c)
            planes.push_back({samples_.data() + c * step * height, step});
        readRows(static_cast<int>(height), planes);
        for (int column = 0; column < size_.tilesWide(); ++column) {
            const int tile = row * size_.tilesWide() + column;
            std::vector<Plane> tilePlanes = planes;
            for (Plane& plane : tilePlanes) plane.samples = plane.at(static_cast<int>(tileArea(size_, tile).x0), 0);
            encodeTile(tile, tilePlanes);
        }
        if (options_.onRows)
            options_.onRows(static_cast<int>(height));
    }

    void readRows(int height, const std::vector<Plane>& planes)
    {
        const Shape& shape = picture_.shape();
        std::vector<uint8_t> pixels;
        for (int y = 0; y < height; y += rowsAtOnce) {
            const int rows = std::min(rowsAtOnce, height - y);
            size_t step = shape.rowBytes();
            const uint8_t* source = picture_.takeRows(rows, step);
            if (source == nullptr) {
                pixels.resize(step * static_cast<size_t>(rowsAtOnce));
                picture_.readRows(pixels.data(), step, rows);
                source = pixels.data();
            }
            storeRows(shape, source, step, rows, reversible_, planes, y, crew_);
        }
    }

    void encodeTile(int tile, const std::vector<Plane>& planes)
    {
        CodedTile coded;
        coded.layout = layOutTile(size_, parameters_, tile, INT32_MAX);
        coded.blocks.resize(coded.layout.blocks.size());
        forwardWavelets(coded.layout, parameters_, planes, crew_);
        std::vector<size_t> all(coded.blocks.size());
        std::iota(all.begin(), all.end(), size_t{0});
        if (options_.bitsPerPixel && size_.tileCount() == 1) {
            const auto rest = std::stable_partition(
                all.begin(), all.end(), [&](size_t number) { return isSample(coded.layout.blocks[number], number); });
            encodeBlocks(coded, planes, {all.begin(), rest}, 0);
            encodeBlocks(coded, planes, {rest, all.end()}, lowestPlaneOfUse(coded, {all.begin(), rest}));
        } else {
            encodeBlocks(coded, planes, all, 0);
        }
        tiles_.push_back(std::move(coded));
    }

    void encodeBlocks(CodedTile& tile, const std::vector<Plane>& planes, const std::vector<size_t>& numbers,
                      int lowestPlane)
    {
        crew_.run(static_cast<int>(numbers.size()), [&](int item) {
            const size_t number = numbers[static_cast<size_t>(item)];
            const BlockPlace& place = tile.layout.blocks[number];
            const Band& band = tile.layout.components[place.component].resolutions[place.resolution].bands[place.band];
            tile.blocks[number] = encoders_.encode(planes[place.component], place, band.orientation,
                                                   bandCoding(place.component, band), lowestPlane);
        });
    }

    // To find out which planes will not be wanted anyway, all blocks of coarse resolutions and some of fine ones are
    // coded first.
    bool isSample(const BlockPlace& place, size_t number) const
    {
        return place.resolution + 1 < options_.levels || number * 5 % sampleInterval == 0;
    }

    int lowestPlaneOfUse(const CodedTile& tile, const std::vector<size_t>& sample) const
    {
        SlopeSearch search;
        for (const size_t number : sample) {
            const bool isCoarse = tile.layout.blocks[number].resolution + 1 < options_.levels;
            search.add(tile.blocks[number], isCoarse ? 1 : sampleInterval);
        }
        search.sort();
        constexpr double caution = 4;
        const double slope = search.slopeForBytes(targetBytes()) / caution;
        int lowest = mostPlanes;
        for (const size_t number : sample) {
            const CodedBlock& block = tile.blocks[number];
            const int planes = (block.passes() + 2) / 3;
            for (const Cut& cut : block.cuts)
                if (cut.slope >= slope)
                    lowest = std::min(lowest, planes - (cut.passes + 2) / 3);
        }
        return lowest == mostPlanes ? 0 : lowest;
    }

    double targetBytes() const
    {
        return *options_.bitsPerPixel / 8 * static_cast<double>(size_.x1) * static_cast<double>(size_.y1);
    }

    RateTarget rateTarget(size_t headerBytes) const
    {
        RateTarget target;
        if (options_.bitsPerPixel)
            target.bytes = std::max(0.0, targetBytes() - static_cast<double>(headerBytes));
        if (options_.psnr)
            target.distortion = targetError(options_, bits()) * static_cast<double>(size_.x1) *
                                static_cast<double>(size_.y1) * static_cast<double>(size_.components.size());
        return target;
    }

    void writeFile(ByteSink& file) const
    {
        std::vector<uint8_t> out = mainHeader(size_, parameters_);
        const size_t fixed = out.size() + tiles_.size() * tilePartHeaderBytes + endBytes;
        const size_t boxes = options_.jp2 ? jp2Header(size_, fixed).size() : 0;
        const auto layers = allocateLayers(tiles_, parameters_, rateTarget(fixed + boxes));
        for (size_t t = 0; t < tiles_.size(); ++t) {
            PacketWriter writer(tiles_[t].layout, parameters_, tiles_[t].blocks);
            std::vector<uint8_t> packets;
            forEachPacket(tiles_[t].layout, parameters_, [&](const Packet& packet) {
                writer.write(packet, layers[t][static_cast<size_t>(packet.layer)], true, packets);
                return true;
            });
            appendTilePartHeader(out, static_cast<int>(t), packets.size());
            out.insert(out.end(), packets.begin(), packets.end());
        }
        appendEnd(out);
        if (options_.jp2)
            file.write(jp2Header(size_, out.size()));
        file.write(out);
    }

    static constexpr int sampleInterval = 8;

    RowReader& picture_;
    const EncodeOptions& options_;
    bool reversible_;
    Crew crew_;
    BlockEncoders encoders_;
    PictureSize size_;
    TileParameters parameters_;
    std::vector<int32_t> samples_;
    std::vector<CodedTile> tiles_;
};

}  // namespace

void encode(RowReader& picture, ByteSink& file, const EncodeOptions& options)
{
    Encoder(picture, options).encode(file);
}

}  // namespace vekpix::jpeg2000
