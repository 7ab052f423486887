// The marker segments of a JPEG file (ITU T.81, Annex B) as values: frame, tables, scans. Everything that a file of the
// wrong kind or a damaged one can get wrong in them ends here, as an Error; what comes out can be relied upon.
#ifndef VEKPIX_JPEG_MARKER_READER_H
#define VEKPIX_JPEG_MARKER_READER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jpeg/colour_model.h"
#include "vekj.h"

namespace vekpix::jpeg {

constexpr int maxComponents = 4;
constexpr int tableSlots = 4;       // per table class: quantisation, DC, AC
constexpr int maxBlocksInMcu = 10;  // T.81, B.2.3

inline int divideUp(int dividend, int divisor) { return (dividend + divisor - 1) / divisor; }

// 64 steps in zig-zag order, as a DQT segment carries them; those of 16 bits are read if they fit.
using QuantSteps = std::array<uint8_t, 64>;

// The two lists of a DHT segment, and the decoder's table made of them.
struct HuffmanTable {
    std::array<uint8_t, 16> codesOfLength{};
    std::array<uint8_t, 256> symbols{};
    int symbolCount = 0;

    const VekDecodeHuffmanSpec* decoderTable() const { return decoderTable_.get(); }
    void buildDecoderTable();

private:
    std::shared_ptr<VekDecodeHuffmanSpec> decoderTable_;
};

struct FrameComponent {
    int id = 0;
    int horizontalSampling = 1;
    int verticalSampling = 1;
    int quantTable = 0;
};

struct Frame {
    bool baseline = true;      // SOF0
    bool progressive = false;  // SOF2
    bool lossless = false;     // SOF3; if none of these, SOF1
    int bits = 8;              // of a sample
    int width = 0;
    int height = 0;
    std::vector<FrameComponent> components;

    int maxHorizontalSampling() const;
    int maxVerticalSampling() const;
    int mcusPerRow() const;
    int mcuRows() const;
    // Samples of a component without the blocks' padding (T.81, A.1.1).
    int componentWidth(size_t index) const;
    int componentHeight(size_t index) const;
};

// One component of a scan with the tables that were in force when the scan began. Progressive and lossless scans have
// only those Huffman tables that they need.
struct ScanComponent {
    int index = 0;  // in Frame::components
    int dcTableSlot = 0;
    int acTableSlot = 0;
    std::shared_ptr<const HuffmanTable> dcTable;
    std::shared_ptr<const HuffmanTable> acTable;
    std::shared_ptr<const QuantSteps> quantSteps;
};

struct Scan {
    std::vector<ScanComponent> components;
    // What of the blocks a progressive scan codes (T.81, G.1.1): the coefficients from spectralBegin to spectralEnd in
    // zig-zag order, and of these the bits from `high` (exclusive; 0: from the top) down to `low` (inclusive).
    int spectralBegin = 0;
    int spectralEnd = 63;
    int high = 0;
    int low = 0;
    // How a lossless scan predicts its samples, and how many low bits it leaves out (T.81, H.1.2).
    int predictor = 1;
    int pointTransform = 0;
    int restartInterval = 0;  // MCUs; 0 without restart markers
    size_t dataBegin = 0;     // first byte of the entropy-coded data in the file
};

// One marker segment, for listings.
struct Segment {
    int marker = 0;       // second byte of the marker
    size_t position = 0;  // of the marker's 0xFF
    size_t length = 0;    // as the segment tells it; 0 for markers that stand alone
};

// Reads a file's markers from the front. advanceToScan() goes up to and including the next SOS header;
// skipScanData() passes over the entropy-coded data behind it.
class MarkerReader {
public:
    using SegmentListener = std::function<void(const Segment&)>;

    explicit MarkerReader(std::span<const uint8_t> file, SegmentListener listener = {});

    // Reads segments up to and including the next scan header; no value if the file ends, by an EOI or without one.
    std::optional<Scan> advanceToScan();
    // Moves behind the entropy-coded data that begins at the reader's position. Returns the number of restart markers
    // in it.
    size_t skipScanData();
    // Whether the scans so far code every coefficient down to its lowest bit.
    bool everythingTold() const;

    const Frame& frame() const;
    ColourModel colourModel() const;
    bool hasJfif() const { return jfif_; }
    std::optional<int> adobeTransform() const { return adobeTransform_; }
    bool endMarkerSeen() const { return endMarkerSeen_; }
    size_t position() const { return position_; }

private:
    using LowestBits = std::array<std::optional<int>, 64>;  // that have been coded of each coefficient

    void report(int marker, size_t length) const;
    void readTables(int marker, std::span<const uint8_t> body);
    void readQuantTables(std::span<const uint8_t> body);
    void readHuffmanTables(std::span<const uint8_t> body);
    void readFrame(int marker, std::span<const uint8_t> body);
    void readRestartInterval(std::span<const uint8_t> body);
    void readApplicationData(int marker, std::span<const uint8_t> body);
    Scan readScan(std::span<const uint8_t> body);
    void findTables(const Scan& scan, ScanComponent& component) const;
    void markTold(const Scan& scan);
    std::optional<int> nextMarker();
    std::span<const uint8_t> segmentBody(int marker);

    std::span<const uint8_t> file_;
    size_t position_ = 0;
    SegmentListener listener_;
    std::optional<Frame> frame_;
    std::array<std::shared_ptr<const QuantSteps>, tableSlots> quant_;
    std::array<std::shared_ptr<const HuffmanTable>, tableSlots> dc_;
    std::array<std::shared_ptr<const HuffmanTable>, tableSlots> ac_;
    std::array<LowestBits, maxComponents> told_{};
    int restartInterval_ = 0;
    bool jfif_ = false;
    bool afterScan_ = false;
    bool endMarkerSeen_ = false;
    std::optional<int> adobeTransform_;
};

// "DQT", "SOF0", "APP1", "RST3"; "marker 0x02" for those without a name.
std::string markerName(int marker);

}  // namespace vekpix::jpeg

#endif
