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

void writeHuffmanTable(ByteSink& sink, int classAndSlot, const CodeLists& lists)
{
    SegmentBytes(DHT)
        .byte(classAndSlot)
        .bytes(lists.lengthCounts)
        .bytes(std::span(lists.symbols).first(static_cast<size_t>(lists.symbolCount())))
        .writeTo(sink);
}

}  // namespace

void writeHeaders(ByteSink& sink, const McuLayout& layout, const std::array<QuantizerSteps, 2>& steps,
                  const ScanTables& tables, int restartInterval)
{
    const int components = layout.components();
    const int tableCount = layout.isChroma(1) ? 2 : 1;
    const bool rgb = layout.colours == ColourModel::Rgb;
    const auto idOf = [&](int component) { return rgb ? "RGB"[component] : component + 1; };
    const auto tableOf = [&](int component) { return layout.isChroma(static_cast<size_t>(component)) ? 1 : 0; };

    writeMarker(sink, SOI);
    if (rgb || layout.hasInks())
        writeAdobe(sink, layout.colours == ColourModel::Ycck);
    else
        writeJfif(sink);
    for (int t = 0; t < tableCount; ++t) SegmentBytes(DQT).byte(t).bytes(steps[static_cast<size_t>(t)]).writeTo(sink);

    SegmentBytes frame(SOF0);
    frame.byte(8).word(layout.picture.height).word(layout.picture.width).byte(components);
    const int luminanceSampling = (layout.mcuWidth() / 8) << 4 | layout.mcuHeight() / 8;
    for (int c = 0; c < components; ++c)
        frame.byte(idOf(c)).byte(tableOf(c) == 0 ? luminanceSampling : 0x11).byte(tableOf(c));
    frame.writeTo(sink);

    for (int t = 0; t < tableCount; ++t) {
        writeHuffmanTable(sink, t, tables.dc[static_cast<size_t>(t)]);
        writeHuffmanTable(sink, 0x10 | t, tables.ac[static_cast<size_t>(t)]);
    }
    if (restartInterval != 0)
        SegmentBytes(DRI).word(restartInterval).writeTo(sink);

    SegmentBytes scan(SOS);
    scan.byte(components);
    for (int c = 0; c < components; ++c) scan.byte(idOf(c)).byte(tableOf(c) == 0 ? 0x00 : 0x11);
    scan.byte(0).byte(63).byte(0);  // all coefficients at full precision
    scan.writeTo(sink);
}

void writeEnd(ByteSink& sink) { writeMarker(sink, EOI); }

}  // namespace vekpix::jpeg
