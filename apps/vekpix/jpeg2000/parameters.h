// What the headers of a JPEG 2000 code-stream tell (ISO/IEC 15444-1, Annex A): sizes, coding style, quantisation.
#ifndef VEKPIX_JPEG2000_PARAMETERS_H
#define VEKPIX_JPEG2000_PARAMETERS_H

#include <array>
#include <cstdint>
#include <vector>

namespace vekpix::jpeg2000 {

constexpr int maxLevels = 32;
constexpr int maxBands = 3 * maxLevels + 1;

struct ComponentSize {
    int bits = 8;
    bool isSigned = false;
    int dx = 1;  // sample distances on the reference grid
    int dy = 1;
    bool operator==(const ComponentSize&) const = default;
};

// The image and its tiles on the reference grid.
struct PictureSize {
    int64_t x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    int64_t tileX0 = 0, tileY0 = 0;
    int64_t tileWidth = 0, tileHeight = 0;
    std::vector<ComponentSize> components;

    int tilesWide() const { return static_cast<int>((x1 - tileX0 + tileWidth - 1) / tileWidth); }
    int tilesHigh() const { return static_cast<int>((y1 - tileY0 + tileHeight - 1) / tileHeight); }
    int tileCount() const { return tilesWide() * tilesHigh(); }
};

enum class Progression { Lrcp, Rlcp, Rpcl, Pcrl, Cprl };

// Code-block styles, as headers have them.
enum BlockStyle : int {
    styleBypass = 0x01,
    styleReset = 0x02,
    styleTermAll = 0x04,
    styleCausal = 0x08,
    stylePredictableTermination = 0x10,
    styleSegmentationSymbols = 0x20,
};

struct CodingStyle {
    int levels = 5;
    int blockWidthLog = 6;
    int blockHeightLog = 6;
    int blockStyle = 0;
    bool reversible = true;
    // Logarithms of the precincts' sizes, of each resolution.
    std::array<uint8_t, maxLevels + 1> precinctWidthLog{};
    std::array<uint8_t, maxLevels + 1> precinctHeightLog{};
    bool operator==(const CodingStyle&) const = default;
};

enum class StepSizes { None, Derived, Expounded };

struct StepSize {
    int exponent = 0;
    int mantissa = 0;  // in units of 1 / 2048, above 1
    bool operator==(const StepSize&) const = default;
};

struct Quantization {
    StepSizes kind = StepSizes::None;
    int guardBits = 2;
    // Of LL, then HL, LH, HH of each resolution from the second.
    std::array<StepSize, maxBands> steps{};
    bool operator==(const Quantization&) const = default;
};

struct ComponentParameters {
    CodingStyle style;
    Quantization quantization;
    int regionShift = 0;  // of a region of interest
    bool operator==(const ComponentParameters&) const = default;
};

// A change of the progression order (POC).
struct ProgressionRange {
    Progression order = Progression::Lrcp;
    int firstResolution = 0;
    int endResolution = maxLevels + 1;
    int firstComponent = 0;
    int endComponent = 16384;
    int endLayer = 65535;
    bool operator==(const ProgressionRange&) const = default;
};

struct TileParameters {
    Progression progression = Progression::Lrcp;
    int layers = 1;
    bool componentTransform = false;
    bool packetMarkers = false;  // SOP before packets may be
    bool headerMarkers = false;  // EPH behind packet headers
    std::vector<ComponentParameters> components;
    std::vector<ProgressionRange> changes;
    bool operator==(const TileParameters&) const = default;
};

constexpr int64_t ceilDiv(int64_t a, int64_t b) { return (a + b - 1) / b; }
constexpr int64_t ceilShift(int64_t a, int shift) { return (a + (int64_t{1} << shift) - 1) >> shift; }

}  // namespace vekpix::jpeg2000

#endif
