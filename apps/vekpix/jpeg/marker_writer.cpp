#include "jpeg/marker_writer.h"

#include <algorithm>
#include <vector>

#include "jpeg/markers.h"

namespace vekpix::jpeg {

namespace {

// A marker segment: its marker and length come first, and are known when its parameters are.
class SegmentBytes {
public:
    explicit SegmentBytes(Marker marker) : bytes_{0xFF, static_cast<uint8_t>(marker), 0, 0} {}

    SegmentBytes& byte(int value)
    {
        bytes_.push_back(static_cast<uint8_t>(value));
        return *this;
    }
    SegmentBytes& word(int value) { return byte(value >> 8).byte(value & 0xFF); }
    SegmentBytes& bytes(std::span<const uint8_t> values)
    {
        bytes_.insert(bytes_.end(), values.begin(), values.end());
        return *this;
    }

    void writeTo(ByteSink& sink)
    {
        const size_t length = bytes_.size() - 2;  // counts its own two bytes
        bytes_[2] = static_cast<uint8_t>(length >> 8);
        bytes_[3] = static_cast<uint8_t>(length);
        sink.write(bytes_);
    }

private:
    std::vector<uint8_t> bytes_;
};

void writeMarker(ByteSink& sink, Marker marker)
{
    const std::array<uint8_t, 2> bytes = {0xFF, static_cast<uint8_t>(marker)};
    sink.write(bytes);
}

void writeJfif(ByteSink& sink)
{
    SegmentBytes(APP0)
        .bytes(std::array<uint8_t, 5>{'J', 'F', 'I', 'F', 0})
        .word(0x0101)  // version 1.01
        .byte(0)       // the densities are an aspect ratio
        .word(1)
        .word(1)
        .word(0)  // no thumbnail
        .writeTo(sink);
}

// The application marker by which files tell colours that JFIF does not know: whether they are transformed.
void writeAdobe(ByteSink& sink, bool transformed)
{
    SegmentBytes(APP14)
        .bytes(std::array<uint8_t, 5>{'A', 'd', 'o', 'b', 'e'})
        .word(100)  // version
        .word(0)    // no flags
        .word(0)
        .byte(transformed ? 2 : 0)
        .writeTo(sink);
}

}  // namespace

void writeStart(ByteSink& sink) { writeMarker(sink, SOI); }

void writeColours(ByteSink& sink, ColourModel colours)
{
    if (colours == ColourModel::Grey || colours == ColourModel::YCbCr)
        writeJfif(sink);
    else
        writeAdobe(sink, colours == ColourModel::Ycck);
}

void writeQuantTable(ByteSink& sink, int slot, const QuantizerSteps& steps)
{
    SegmentBytes(DQT).byte(slot).bytes(steps).writeTo(sink);
}

void writeFrame(ByteSink& sink, const Frame& frame)
{
    SegmentBytes segment(frame.lossless ? SOF3 : frame.progressive ? SOF2 : frame.baseline ? SOF0 : SOF1);
    segment.byte(frame.bits).word(frame.height).word(frame.width).byte(static_cast<int>(frame.components.size()));
    for (const FrameComponent& c : frame.components)
        segment.byte(c.id).byte(c.horizontalSampling << 4 | c.verticalSampling).byte(c.quantTable);
    segment.writeTo(sink);
}

void writeHuffmanTable(ByteSink& sink, int tableClass, int slot, const CodeLists& lists)
{
    SegmentBytes(DHT)
        .byte(tableClass << 4 | slot)
        .bytes(lists.lengthCounts)
        .bytes(std::span(lists.symbols).first(static_cast<size_t>(lists.symbolCount())))
        .writeTo(sink);
}

void writeRestartInterval(ByteSink& sink, int mcus) { SegmentBytes(DRI).word(mcus).writeTo(sink); }

void writeScanHeader(ByteSink& sink, const ScanHeader& header)
{
    SegmentBytes scan(SOS);
    scan.byte(static_cast<int>(header.components.size()));
    for (const ScanHeader::Component& c : header.components) scan.byte(c.id).byte(c.dcSlot << 4 | c.acSlot);
    scan.byte(header.spectralBegin).byte(header.spectralEnd).byte(header.high << 4 | header.low);
    scan.writeTo(sink);
}

Frame frameOf(const McuLayout& layout)
{
    Frame frame;
    frame.width = layout.picture.width;
    frame.height = layout.picture.height;
    frame.bits = layout.picture.bits;
    frame.baseline = frame.bits == 8;
    for (int c = 0; c < layout.components(); ++c) {
        const bool chroma = layout.isChroma(static_cast<size_t>(c));
        const int id = layout.colours == ColourModel::Rgb ? "RGB"[c] : c + 1;
        frame.components.push_back(
            {id, chroma ? 1 : layout.mcuWidth() / 8, chroma ? 1 : layout.mcuHeight() / 8, chroma ? 1 : 0});
    }
    return frame;
}

void writeBeginning(ByteSink& sink, const McuLayout& layout, const std::array<QuantizerSteps, 2>& steps)
{
    writeStart(sink);
    writeColours(sink, layout.colours);
    writeQuantTable(sink, 0, steps[0]);
    if (layout.isChroma(1))
        writeQuantTable(sink, 1, steps[1]);
}

void writeHeaders(ByteSink& sink, const McuLayout& layout, const std::array<QuantizerSteps, 2>& steps,
                  const ScanTables& tables, int restartInterval)
{
    const Frame frame = frameOf(layout);
    writeBeginning(sink, layout, steps);
    writeFrame(sink, frame);
    for (int t = 0; t < (layout.isChroma(1) ? 2 : 1); ++t) {
        writeHuffmanTable(sink, dcTableClass, t, tables.dc[static_cast<size_t>(t)]);
        writeHuffmanTable(sink, acTableClass, t, tables.ac[static_cast<size_t>(t)]);
    }
    if (restartInterval != 0)
        writeRestartInterval(sink, restartInterval);
    ScanHeader scan;
    for (const FrameComponent& c : frame.components) scan.components.push_back({c.id, c.quantTable, c.quantTable});
    writeScanHeader(sink, scan);
}

void writeEnd(ByteSink& sink) { writeMarker(sink, EOI); }

}  // namespace vekpix::jpeg
