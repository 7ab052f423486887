#include "jpeg2000/rate_allocation.h"

#include <algorithm>
#include <cmath>

namespace vekpix::jpeg2000 {

namespace {

constexpr double noSlope = 0;  // everything
constexpr double mostHalvings = 6;

uint32_t bytesOf(const CodedBlock& block, int passes)
{
    return passes == 0 ? 0 : block.passEnds[static_cast<size_t>(passes - 1)];
}

int passesAbove(const CodedBlock& block, double slope)
{
    const auto end = std::partition_point(block.cuts.begin(), block.cuts.end(),
                                          [slope](const Cut& cut) { return cut.slope >= slope; });
    return end == block.cuts.begin() ? 0 : std::prev(end)->passes;
}

class Allocation {
public:
    Allocation(const std::vector<CodedTile>& tiles, const TileParameters& parameters)
        : tiles_(tiles), layers_(tiles.size())
    {
        for (const CodedTile& tile : tiles) {
            writers_.emplace_back(tile.layout, parameters, tile.blocks);
            for (const CodedBlock& block : tile.blocks) search_.add(block);
        }
        search_.sort();
    }

    // The bytes of the packets of the next layer if it goes down to a slope.
    double bytesOfNextLayer(double slope) const
    {
        double bytes = 0;
        for (size_t t = 0; t < tiles_.size(); ++t) {
            PacketWriter trial = writers_[t];
            bytes += writeLayer(trial, t, passesDownTo(t, slope));
        }
        return bytes;
    }

    double slopeForDistortion(double distortion) const { return search_.slopeForDistortion(distortion); }

    // A slope down to which the next layer does not make all layers larger than `bytes`. What headers take is known
    // only when the bodies are: so the bytes that all bodies may take are searched for, each time with the last error
    // taken off, but well within what is known to fit and not to fit.
    double slopeForBytes(double bytes) const
    {
        constexpr int attempts = 12;
        constexpr double goodEnough = 1.0 / 2000;
        double slope = HUGE_VAL;
        double fits = 0, fitsNot = bytes;
        double bodies = bytes - bytesSoFar_ - bytesOfNextLayer(HUGE_VAL);
        for (int i = 0; i < attempts && fitsNot - fits > 1; ++i) {
            const double candidate = search_.slopeForBytes(std::max(0.0, bodies));
            const double left = bytes - bytesSoFar_ - bytesOfNextLayer(candidate);
            if (left >= 0) {
                slope = candidate;
                fits = bodies;
                if (left < bytes * goodEnough)
                    break;
            } else {
                fitsNot = bodies;
            }
            const double margin = (fitsNot - fits) / 16;
            bodies = std::clamp(bodies + left, fits + margin, fitsNot - margin);
        }
        return slope;
    }

    void addLayer(double slope)
    {
        for (size_t t = 0; t < tiles_.size(); ++t) {
            LayerPasses passes = passesDownTo(t, slope);
            bytesSoFar_ += writeLayer(writers_[t], t, passes);
            layers_[t].push_back(std::move(passes));
        }
    }

    std::vector<std::vector<LayerPasses>> takeLayers() { return std::move(layers_); }

private:
    LayerPasses passesDownTo(size_t tile, double slope) const
    {
        const std::vector<CodedBlock>& blocks = tiles_[tile].blocks;
        LayerPasses passes(blocks.size());
        for (size_t b = 0; b < blocks.size(); ++b) {
            const int before = layers_[tile].empty() ? 0 : layers_[tile].back()[b];
            const int chosen = slope == noSlope ? blocks[b].passes() : passesAbove(blocks[b], slope);
            passes[b] = std::max(before, chosen);
        }
        return passes;
    }

    double writeLayer(PacketWriter& writer, size_t tile, const LayerPasses& passes) const
    {
        std::vector<uint8_t> headers;
        double bytes = 0;
        const int layer = static_cast<int>(layers_[tile].size());
        const TileLayout& layout = tiles_[tile].layout;
        for (size_t c = 0; c < layout.components.size(); ++c)
            for (size_t r = 0; r < layout.components[c].resolutions.size(); ++r)
                for (size_t k = 0; k < layout.components[c].resolutions[r].precincts.size(); ++k) {
                    headers.clear();
                    const Packet packet = {static_cast<int>(c), static_cast<int>(r), static_cast<int>(k), layer};
                    bytes += static_cast<double>(writer.write(packet, passes, false, headers));
                    bytes += static_cast<double>(headers.size());
                }
        return bytes;
    }

    const std::vector<CodedTile>& tiles_;
    SlopeSearch search_;
    std::vector<PacketWriter> writers_;  // behind the layers so far
    std::vector<std::vector<LayerPasses>> layers_;
    double bytesSoFar_ = 0;
};

}  // namespace

void SlopeSearch::add(const CodedBlock& block, double times)
{
    Cut before;
    for (const Cut& cut : block.cuts) {
        const double bytes = bytesOf(block, cut.passes) - static_cast<double>(bytesOf(block, before.passes));
        steps_.push_back({cut.slope, bytes * times, (cut.distortion - before.distortion) * times});
        before = cut;
    }
    leftover_ += block.leftover * times;
}

void SlopeSearch::sort()
{
    std::sort(steps_.begin(), steps_.end(), [](const Step& a, const Step& b) { return a.slope > b.slope; });
    for (size_t i = 1; i < steps_.size(); ++i) {
        steps_[i].bytes += steps_[i - 1].bytes;
        steps_[i].distortion += steps_[i - 1].distortion;
    }
}

double SlopeSearch::slopeForBytes(double bytes) const
{
    const auto end =
        std::partition_point(steps_.begin(), steps_.end(), [bytes](const Step& step) { return step.bytes <= bytes; });
    if (end == steps_.begin())
        return HUGE_VAL;
    return std::prev(end)->slope;
}

double SlopeSearch::slopeForDistortion(double distortion) const
{
    if (steps_.empty())
        return noSlope;
    const double taken = leftover_ + steps_.back().distortion - distortion;
    const auto end = std::partition_point(steps_.begin(), steps_.end(),
                                          [taken](const Step& step) { return step.distortion < taken; });
    return end == steps_.end() ? noSlope : end->slope;
}

std::vector<std::vector<LayerPasses>> allocateLayers(const std::vector<CodedTile>& tiles,
                                                     const TileParameters& parameters, const RateTarget& target)
{
    Allocation allocation(tiles, parameters);
    double lastSlope = noSlope;
    if (target.distortion)
        lastSlope = allocation.slopeForDistortion(*target.distortion);
    const int layers = parameters.layers;
    const double total = target.bytes ? *target.bytes : layers > 1 ? allocation.bytesOfNextLayer(lastSlope) : 0;
    const double halving = layers > 1 ? std::min(1.0, mostHalvings / (layers - 1)) : 1.0;
    for (int layer = 0; layer < layers - 1; ++layer)
        allocation.addLayer(allocation.slopeForBytes(total * std::exp2(-halving * (layers - 1 - layer))));
    if (target.bytes)
        lastSlope = allocation.slopeForBytes(*target.bytes);
    allocation.addLayer(lastSlope);
    return allocation.takeLayers();
}

}  // namespace vekpix::jpeg2000
