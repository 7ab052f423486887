// Which passes of which code-blocks go into which quality layer: post-compression rate-distortion optimisation.
#ifndef VEKPIX_JPEG2000_RATE_ALLOCATION_H
#define VEKPIX_JPEG2000_RATE_ALLOCATION_H

#include <cstdint>
#include <optional>
#include <vector>

#include "jpeg2000/packet_writer.h"

namespace vekpix::jpeg2000 {

struct CodedTile {
    TileLayout layout;
    std::vector<CodedBlock> blocks;
};

// Of all cuts of some blocks the best for a number of bytes, or for a distortion: those above a slope.
class SlopeSearch {
public:
    // A block counts `times` times.
    void add(const CodedBlock& block, double times = 1);
    void sort();

    // The lowest slope down to which cuts take no more than `bytes`.
    double slopeForBytes(double bytes) const;
    // The highest slope down to which cuts leave no more than `distortion`.
    double slopeForDistortion(double distortion) const;

private:
    struct Step {
        double slope;
        double bytes;       // that the cut adds to the one before, then: the sum down to this slope
        double distortion;  // likewise
    };

    std::vector<Step> steps_;
    double leftover_ = 0;
};

struct RateTarget {
    std::optional<double> bytes;       // of all packets
    std::optional<double> distortion;  // squared error of the picture
};

// Passes of each block of a tile up to and including a layer.
using LayerPasses = std::vector<int>;

// For each tile its layers. Without a target the last layer has everything; the layers before halve the bytes, from
// layer to layer, or if there are many they share six halvings.
std::vector<std::vector<LayerPasses>> allocateLayers(const std::vector<CodedTile>& tiles,
                                                     const TileParameters& parameters, const RateTarget& target);

}  // namespace vekpix::jpeg2000

#endif
