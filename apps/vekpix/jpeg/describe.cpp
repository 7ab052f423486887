#include "jpeg/describe.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <set>
#include <string>
#include <utility>

#include "jpeg/marker_reader.h"
#include "vekj.h"

namespace vekpix::jpeg {

namespace {

const char* nameOf(ColourModel colours)
{
    switch (colours) {
        case ColourModel::Grey:
            return "grey";
        case ColourModel::Rgb:
            return "RGB";
        case ColourModel::Cmyk:
            return "CMYK";
        case ColourModel::Ycck:
            return "YCCK";
        default:
            return "YCbCr";
    }
}

void describeSegment(const Segment& segment, std::ostream& out)
{
    out << "  " << std::left << std::setw(12) << markerName(segment.marker) << "at byte " << segment.position;
    if (segment.length != 0)
        out << ", " << segment.length << " bytes";
    out << '\n';
}

void describeFrame(const MarkerReader& markers, std::ostream& out)
{
    const Frame& frame = markers.frame();
    out << "frame: "
        << (frame.progressive ? "progressive"
            : frame.lossless  ? "lossless"
            : frame.baseline  ? "baseline"
                              : "extended sequential")
        << ", " << frame.width << " x " << frame.height << ", " << frame.bits << " bits, "
        << nameOf(markers.colourModel()) << '\n';
    for (const FrameComponent& component : frame.components)
        out << "  component " << component.id << ": sampling " << component.horizontalSampling << "x"
            << component.verticalSampling << ", quantisation table " << component.quantTable << '\n';
}

void describeHuffmanTable(const char* name, int slot, const HuffmanTable& table, std::ostream& out)
{
    out << "  " << name << " table " << slot << ": " << table.symbolCount << " codes, by length";
    for (const int count : table.codesOfLength) out << ' ' << count;
    out << '\n';
}

void describeQuantTable(int slot, const QuantSteps& steps, std::ostream& out)
{
    out << "  quantisation table " << slot << ":\n";
    std::array<uint16_t, 64> rows;
    vekiQuantInvTableInit_JPEG_8u16u(steps.data(), rows.data());
    for (size_t i = 0; i < rows.size(); ++i)
        out << (i % 8 == 0 ? "   " : "") << std::right << std::setw(4) << rows[i] << (i % 8 == 7 ? "\n" : "");
}

// The tables of a scan, each once although several components or scans use it: `told` has those of the scans before.
void describeTables(const Scan& scan, const Frame& frame, std::set<const void*>& told, std::ostream& out)
{
    for (const ScanComponent& component : scan.components) {
        const FrameComponent& inFrame = frame.components[static_cast<size_t>(component.index)];
        if (component.quantSteps && told.insert(component.quantSteps.get()).second)
            describeQuantTable(inFrame.quantTable, *component.quantSteps, out);
        if (component.dcTable && told.insert(component.dcTable.get()).second)
            describeHuffmanTable("DC", component.dcTableSlot, *component.dcTable, out);
        if (component.acTable && told.insert(component.acTable.get()).second)
            describeHuffmanTable("AC", component.acTableSlot, *component.acTable, out);
    }
}

void describeProgression(const Scan& scan, std::ostream& out)
{
    out << "  coefficients " << scan.spectralBegin << " to " << scan.spectralEnd << ", bits ";
    if (scan.high == 0)
        out << "from the top";
    else
        out << "from " << scan.high - 1;
    out << " down to " << scan.low << '\n';
}

void describeScan(const Scan& scan, const Frame& frame, size_t bytes, size_t restarts, std::set<const void*>& told,
                  std::ostream& out)
{
    out << "scan: components";
    for (const ScanComponent& component : scan.components)
        out << ' ' << frame.components[static_cast<size_t>(component.index)].id;
    out << ", " << bytes << " bytes of data, ";
    if (scan.restartInterval == 0)
        out << "no restart interval\n";
    else
        out << "restart interval of " << scan.restartInterval << " MCUs, " << restarts << " restart markers\n";
    if (frame.progressive)
        describeProgression(scan, out);
    if (frame.lossless)
        out << "  predictor " << scan.predictor << ", point transform " << scan.pointTransform << '\n';
    for (const ScanComponent& component : scan.components) {
        const char* separator = ": ";
        out << "  component " << frame.components[static_cast<size_t>(component.index)].id;
        if (component.dcTable)
            out << std::exchange(separator, ", ") << "DC table " << component.dcTableSlot;
        if (component.acTable)
            out << separator << "AC table " << component.acTableSlot;
        out << '\n';
    }
    describeTables(scan, frame, told, out);
}

}  // namespace

void describe(std::span<const uint8_t> file, std::ostream& out)
{
    out << "JPEG, " << file.size() << " bytes\nmarkers:\n";
    struct ScanFound {
        Scan scan;
        size_t bytes;
        size_t restarts;
    };
    std::vector<ScanFound> scans;
    MarkerReader markers(file, [&out](const Segment& segment) { describeSegment(segment, out); });
    while (const std::optional<Scan> scan = markers.advanceToScan()) {
        const size_t restarts = markers.skipScanData();
        scans.push_back({*scan, markers.position() - scan->dataBegin, restarts});
    }
    if (!markers.endMarkerSeen())
        out << "  no end marker\n";
    else if (markers.position() < file.size())
        out << "  " << file.size() - markers.position() << " bytes behind the end marker\n";
    describeFrame(markers, out);
    std::set<const void*> told;
    for (const ScanFound& found : scans)
        describeScan(found.scan, markers.frame(), found.bytes, found.restarts, told, out);
}

}  // namespace vekpix::jpeg
