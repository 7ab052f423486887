#include "jpeg/marker_reader.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "error.h"
#include "jpeg/markers.h"

namespace vekpix::jpeg {

namespace {

// Walks through the bytes of one segment.
class SegmentCursor {
public:
    SegmentCursor(std::span<const uint8_t> body, const char* name) : rest_(body), name_(name) {}

    bool atEnd() const { return rest_.empty(); }
    int byte() { return take(1)[0]; }
    int word()
    {
        const auto bytes = take(2);
        return bytes[0] << 8 | bytes[1];
    }
    std::span<const uint8_t> take(size_t count)
    {
        if (rest_.size() < count)
            throw Error(std::string("damaged JPEG file: the ") + name_ + " segment is too short");
        const auto taken = rest_.first(count);
        rest_ = rest_.subspan(count);
        return taken;
    }
    void expectEnd() const
    {
        if (!rest_.empty())
            throw Error(std::string("damaged JPEG file: the ") + name_ + " segment is too long");
    }

private:
    std::span<const uint8_t> rest_;
    const char* name_;
};

bool beginsWith(std::span<const uint8_t> body, std::string_view text)
{
    return body.size() >= text.size() && std::memcmp(body.data(), text.data(), text.size()) == 0;
}

bool standsAlone(int marker) { return marker == TEM || (marker >= RST0 && marker <= EOI); }

[[noreturn]] void refuseProcess(int marker)
{
    const std::string name = markerName(marker);
    if ((marker >= SOF5 && marker <= SOF7) || marker == DHP || marker == EXP)
        throw Error("hierarchical JPEG (" + name + ") is not supported");
    throw Error("arithmetic-coded JPEG (" + name + ") is not supported");
}

// T.81, G.1.1.1: DC alone, for any components, or AC of one component; bits from the top, or one more of them.
void checkProgression(const Scan& scan)
{
    const bool dc = scan.spectralBegin == 0;
    const int mostLow = 13;
    if (dc ? scan.spectralEnd != 0 : scan.spectralEnd < scan.spectralBegin || scan.spectralEnd > 63)
        throw Error("damaged JPEG file: impossible coefficients of a progressive scan");
    if (!dc && scan.components.size() != 1)
        throw Error("damaged JPEG file: several components in a progressive scan of AC coefficients");
    if ((scan.high != 0 && scan.low != scan.high - 1) || scan.low > mostLow)
        throw Error("damaged JPEG file: impossible bits of a progressive scan");
}

bool isRefusedProcess(int marker)
{
    return (marker >= SOF5 && marker <= SOF15 && marker != DHT && marker != JPG) || marker == DHP || marker == EXP;
}

}  // namespace

std::string markerName(int marker)
{
    switch (marker) {
        case TEM:
            return "TEM";
        case DHT:
            return "DHT";
        case JPG:
            return "JPG";
        case DAC:
            return "DAC";
        case SOI:
            return "SOI";
        case EOI:
            return "EOI";
        case SOS:
            return "SOS";
        case DQT:
            return "DQT";
        case DNL:
            return "DNL";
        case DRI:
            return "DRI";
        case DHP:
            return "DHP";
        case EXP:
            return "EXP";
        case COM:
            return "COM";
        default:
            break;
    }
    if (marker >= SOF0 && marker <= SOF15)
        return "SOF" + std::to_string(marker - SOF0);
    if (marker >= RST0 && marker <= RST7)
        return "RST" + std::to_string(marker - RST0);
    if (marker >= APP0 && marker <= APP15)
        return "APP" + std::to_string(marker - APP0);
    char text[16];
    std::snprintf(text, sizeof text, "marker 0x%02X", static_cast<unsigned>(marker) & 0xFF);
    return text;
}

void HuffmanTable::buildDecoderTable()
{
    VekDecodeHuffmanSpec* table = nullptr;
    const VekStatus status = vekiDecodeHuffmanSpecInitAlloc_JPEG_8u(codesOfLength.data(), symbols.data(), &table);
    if (table != nullptr)
        decoderTable_.reset(table, [](VekDecodeHuffmanSpec* p) { vekiDecodeHuffmanSpecFree_JPEG_8u(p); });
    if (status == vekStsNullPointer)
        throw std::bad_alloc();
    if (status != vekStsOk)
        throw Error("damaged JPEG file: invalid Huffman table");
}

int Frame::maxHorizontalSampling() const
{
    int most = 1;
    for (const FrameComponent& component : components) most = std::max(most, component.horizontalSampling);
    return most;
}

int Frame::maxVerticalSampling() const
{
    int most = 1;
    for (const FrameComponent& component : components) most = std::max(most, component.verticalSampling);
    return most;
}

int Frame::mcusPerRow() const { return divideUp(width, 8 * maxHorizontalSampling()); }

int Frame::mcuRows() const { return divideUp(height, 8 * maxVerticalSampling()); }

int Frame::componentWidth(size_t index) const
{
    return divideUp(width * components[index].horizontalSampling, maxHorizontalSampling());
}

int Frame::componentHeight(size_t index) const
{
    return divideUp(height * components[index].verticalSampling, maxVerticalSampling());
}

MarkerReader::MarkerReader(std::span<const uint8_t> file, SegmentListener listener)
    : file_(file), listener_(std::move(listener))
{
    if (file.size() < 2 || file[0] != 0xFF || file[1] != SOI)
        throw Error("not a JPEG file");
    position_ = 2;
    report(SOI, 0);
}

// Called with the position right behind the marker.
void MarkerReader::report(int marker, size_t length) const
{
    if (listener_)
        listener_({marker, position_ - 2, length});
}

bool MarkerReader::everythingTold() const
{
    const auto isWhole = [](const LowestBits& bits) {
        return std::ranges::all_of(bits, [](std::optional<int> lowest) { return lowest == 0; });
    };
    return std::ranges::all_of(std::span(told_).first(frame().components.size()), isWhole);
}

const Frame& MarkerReader::frame() const
{
    if (!frame_)
        throw Error("damaged JPEG file: no frame header");
    return *frame_;
}

// The marker at the position, which moves behind it; no value at the end of the file. Behind entropy-coded data
// whatever is left of it is passed over; between segments nothing but fill bytes may stand.
std::optional<int> MarkerReader::nextMarker()
{
    while (position_ < file_.size()) {
        if (file_[position_] != 0xFF) {
            if (!afterScan_)
                throw Error("damaged JPEG file: a marker is missing at byte " + std::to_string(position_));
            ++position_;
            continue;
        }
        size_t code = position_ + 1;
        while (code < file_.size() && file_[code] == 0xFF) ++code;
        if (code == file_.size())
            break;
        if (file_[code] == 0) {
            if (!afterScan_)
                throw Error("damaged JPEG file: a marker is missing at byte " + std::to_string(position_));
            position_ = code + 1;
            continue;
        }
        position_ = code + 1;
        return file_[code];
    }
    position_ = file_.size();
    return std::nullopt;
}

std::span<const uint8_t> MarkerReader::segmentBody(int marker)
{
    if (file_.size() - position_ < 2)
        throw Error("truncated JPEG file: it ends in the " + markerName(marker) + " segment");
    const size_t length = static_cast<size_t>(file_[position_]) << 8 | file_[position_ + 1];
    if (length < 2)
        throw Error("damaged JPEG file: impossible length of the " + markerName(marker) + " segment");
    if (file_.size() - position_ < length)
        throw Error("truncated JPEG file: it ends in the " + markerName(marker) + " segment");
    report(marker, length);
    const auto body = file_.subspan(position_ + 2, length - 2);
    position_ += length;
    return body;
}

std::optional<Scan> MarkerReader::advanceToScan()
{
    while (const std::optional<int> marker = nextMarker()) {
        if (standsAlone(*marker)) {
            if (*marker == SOI || (!afterScan_ && *marker >= RST0 && *marker <= RST7))
                throw Error("damaged JPEG file: misplaced " + markerName(*marker));
            report(*marker, 0);
            if (*marker == EOI) {
                endMarkerSeen_ = true;
                return std::nullopt;
            }
            continue;
        }
        if (isRefusedProcess(*marker))
            refuseProcess(*marker);
        const auto body = segmentBody(*marker);
        afterScan_ = false;
        if (*marker == SOS) {
            Scan scan = readScan(body);
            afterScan_ = true;
            return scan;
        }
        if (*marker == DNL)
            throw Error("JPEG files that tell their height behind the first scan (DNL) are not supported");
        readTables(*marker, body);
    }
    return std::nullopt;
}

void MarkerReader::readTables(int marker, std::span<const uint8_t> body)
{
    if (marker == DQT)
        readQuantTables(body);
    else if (marker == DHT)
        readHuffmanTables(body);
    else if (marker >= SOF0 && marker <= SOF3)
        readFrame(marker, body);
    else if (marker == DRI)
        readRestartInterval(body);
    else
        readApplicationData(marker, body);
}

void MarkerReader::readQuantTables(std::span<const uint8_t> body)
{
    SegmentCursor cursor(body, "DQT");
    while (!cursor.atEnd()) {
        const int kind = cursor.byte();
        if (kind >> 4 > 1 || (kind & 15) >= tableSlots)
            throw Error("damaged JPEG file: impossible kind of quantisation table");
        auto table = std::make_shared<QuantSteps>();
        for (uint8_t& step : *table) {
            const int value = kind >> 4 == 0 ? cursor.byte() : cursor.word();
            if (value > 255)
                throw Error("quantisation steps above 255 are not supported");
            step = static_cast<uint8_t>(value);
        }
        if (std::find(table->begin(), table->end(), 0) != table->end())
            throw Error("damaged JPEG file: a quantisation step of 0");
        quant_[static_cast<size_t>(kind & 15)] = std::move(table);
    }
}

void MarkerReader::readHuffmanTables(std::span<const uint8_t> body)
{
    SegmentCursor cursor(body, "DHT");
    while (!cursor.atEnd()) {
        const int kind = cursor.byte();
        const int tableClass = kind >> 4;
        if (tableClass > 1 || (kind & 15) >= tableSlots)
            throw Error("damaged JPEG file: impossible kind of Huffman table");
        auto table = std::make_shared<HuffmanTable>();
        const auto counts = cursor.take(16);
        std::copy(counts.begin(), counts.end(), table->codesOfLength.begin());
        int codeSpace = 0;  // in 16-bit codes
        for (int length = 1; length <= 16; ++length) {
            const int count = counts[static_cast<size_t>(length - 1)];
            table->symbolCount += count;
            codeSpace += count << (16 - length);
        }
        if (table->symbolCount > 256 || codeSpace > 1 << 16)
            throw Error("damaged JPEG file: invalid Huffman table");
        const auto symbols = cursor.take(static_cast<size_t>(table->symbolCount));
        std::copy(symbols.begin(), symbols.end(), table->symbols.begin());
        const int largestDcCategory = 16;
        if (tableClass == 0 && std::any_of(symbols.begin(), symbols.end(), [](int s) { return s > largestDcCategory; }))
            throw Error("damaged JPEG file: invalid Huffman table");
        table->buildDecoderTable();
        (tableClass == 0 ? dc_ : ac_)[static_cast<size_t>(kind & 15)] = std::move(table);
    }
}

void MarkerReader::readFrame(int marker, std::span<const uint8_t> body)
{
    if (frame_)
        throw Error("damaged JPEG file: a second frame header");
    SegmentCursor cursor(body, "SOF");
    Frame frame;
    frame.baseline = marker == SOF0;
    frame.progressive = marker == SOF2;
    frame.lossless = marker == SOF3;
    frame.bits = cursor.byte();
    const bool deep = frame.lossless ? frame.bits > 8 && frame.bits <= 16 : marker == SOF1 && frame.bits == 12;
    if (frame.bits != 8 && !deep)
        throw Error((frame.progressive ? "progressive JPEG files of "
                     : frame.lossless  ? "lossless JPEG files of "
                                       : "JPEG files of ") +
                    std::to_string(frame.bits) + "-bit samples are not supported");
    frame.height = cursor.word();
    frame.width = cursor.word();
    if (frame.height == 0)
        throw Error("JPEG files that tell their height behind the first scan (DNL) are not supported");
    if (frame.width == 0)
        throw Error("damaged JPEG file: a width of 0");
    const int count = cursor.byte();
    if (count != 1 && count != 3 && count != 4)
        throw Error("JPEG files of " + std::to_string(count) + " components are not supported");
    for (int i = 0; i < count; ++i) {
        FrameComponent component;
        component.id = cursor.byte();
        const int sampling = cursor.byte();
        component.horizontalSampling = sampling >> 4;
        component.verticalSampling = sampling & 15;
        component.quantTable = cursor.byte();
        if (component.horizontalSampling < 1 || component.horizontalSampling > 4 || component.verticalSampling < 1 ||
            component.verticalSampling > 4)
            throw Error("damaged JPEG file: impossible sampling factors");
        if (component.quantTable >= tableSlots)
            throw Error("damaged JPEG file: impossible quantisation table number");
        for (const FrameComponent& other : frame.components)
            if (other.id == component.id)
                throw Error("damaged JPEG file: two components of one name");
        frame.components.push_back(component);
    }
    cursor.expectEnd();
    if (frame.lossless && count > 1 && (frame.maxHorizontalSampling() > 1 || frame.maxVerticalSampling() > 1))
        throw Error("lossless JPEG files with subsampled components are not supported");
    frame_ = std::move(frame);
}

void MarkerReader::readRestartInterval(std::span<const uint8_t> body)
{
    SegmentCursor cursor(body, "DRI");
    restartInterval_ = cursor.word();
    cursor.expectEnd();
}

void MarkerReader::readApplicationData(int marker, std::span<const uint8_t> body)
{
    using namespace std::string_view_literals;
    if (marker == APP0 && beginsWith(body, "JFIF\0"sv))
        jfif_ = true;
    const size_t adobeLength = 12;
    if (marker == APP14 && body.size() >= adobeLength && beginsWith(body, "Adobe"))
        adobeTransform_ = body[adobeLength - 1];
}

Scan MarkerReader::readScan(std::span<const uint8_t> body)
{
    if (!frame_)
        throw Error("damaged JPEG file: a scan before the frame header");
    SegmentCursor cursor(body, "SOS");
    Scan scan;
    scan.restartInterval = restartInterval_;
    const size_t count = static_cast<size_t>(cursor.byte());
    if (count < 1 || count > frame_->components.size())
        throw Error("damaged JPEG file: impossible number of components in a scan");
    int blocksInMcu = 0;
    for (size_t i = 0; i < count; ++i) {
        const int id = cursor.byte();
        const int tables = cursor.byte();
        const auto found = std::find_if(frame_->components.begin(), frame_->components.end(),
                                        [id](const FrameComponent& c) { return c.id == id; });
        if (found == frame_->components.end())
            throw Error("damaged JPEG file: a scan of an unknown component");
        ScanComponent component;
        component.index = static_cast<int>(found - frame_->components.begin());
        component.dcTableSlot = tables >> 4;
        component.acTableSlot = tables & 15;
        component.quantSteps = quant_[static_cast<size_t>(found->quantTable)];
        if (!component.quantSteps && !frame_->lossless)
            throw Error("damaged JPEG file: a scan without its quantisation table");
        for (const ScanComponent& other : scan.components)
            if (other.index == component.index)
                throw Error("damaged JPEG file: a component is coded twice");
        blocksInMcu += found->horizontalSampling * found->verticalSampling;
        scan.components.push_back(std::move(component));
    }
    if (count > 1 && blocksInMcu > maxBlocksInMcu)
        throw Error("damaged JPEG file: too many blocks in an MCU");
    const int begin = cursor.byte();
    const int end = cursor.byte();
    const int bits = cursor.byte();
    cursor.expectEnd();
    if (frame_->progressive) {  // without a meaning in a sequential scan
        scan.spectralBegin = begin;
        scan.spectralEnd = end;
        scan.high = bits >> 4;
        scan.low = bits & 15;
        checkProgression(scan);
    }
    if (frame_->lossless) {
        scan.predictor = begin;
        scan.pointTransform = bits & 15;
        if (begin < 1 || begin > 7 || end != 0 || bits >> 4 != 0 || scan.pointTransform >= frame_->bits)
            throw Error("damaged JPEG file: impossible prediction of a lossless scan");
    }
    for (ScanComponent& component : scan.components) findTables(scan, component);
    markTold(scan);
    scan.dataBegin = position_;
    return scan;
}

void MarkerReader::findTables(const Scan& scan, ScanComponent& component) const
{
    const auto find = [](const auto& tables, int slot) {
        if (slot >= tableSlots)
            throw Error("damaged JPEG file: impossible Huffman table number");
        if (!tables[static_cast<size_t>(slot)])
            throw Error("damaged JPEG file: a scan without its Huffman table");
        return tables[static_cast<size_t>(slot)];
    };
    const bool needsDc = scan.spectralBegin == 0 && scan.high == 0;
    const bool needsAc = scan.spectralEnd != 0 && !frame_->lossless;
    if (needsDc) {
        component.dcTable = find(dc_, component.dcTableSlot);
        const std::span symbols =
            std::span(component.dcTable->symbols).first(static_cast<size_t>(component.dcTable->symbolCount));
        const int largestCategory = frame_->lossless ? 16 : 15;
        if (std::any_of(symbols.begin(), symbols.end(), [&](int s) { return s > largestCategory; }))
            throw Error("damaged JPEG file: invalid Huffman table");
    }
    if (needsAc)
        component.acTable = find(ac_, component.acTableSlot);
}

// Each coefficient comes once from the top, in a sequential frame with all its bits, and once more for each bit below
// (T.81, G.1.1.1).
void MarkerReader::markTold(const Scan& scan)
{
    for (const ScanComponent& component : scan.components) {
        LowestBits& bits = told_[static_cast<size_t>(component.index)];
        for (int k = scan.spectralBegin; k <= scan.spectralEnd; ++k) {
            std::optional<int>& lowest = bits[static_cast<size_t>(k)];
            const bool first = scan.high == 0 && !lowest;
            const bool next = scan.high != 0 && lowest == scan.high;
            if (!first && !next)
                throw Error(frame_->progressive ? "damaged JPEG file: progressive scans out of their order"
                                                : "damaged JPEG file: a component is coded twice");
            lowest = scan.low;
        }
    }
}

size_t MarkerReader::skipScanData()
{
    size_t restarts = 0;
    while (position_ < file_.size()) {
        const void* found = std::memchr(file_.data() + position_, 0xFF, file_.size() - position_);
        if (found == nullptr)
            break;
        const size_t at = static_cast<size_t>(static_cast<const uint8_t*>(found) - file_.data());
        size_t code = at + 1;
        while (code < file_.size() && file_[code] == 0xFF) ++code;
        if (code == file_.size())
            break;
        if (file_[code] != 0 && !(file_[code] >= RST0 && file_[code] <= RST7)) {
            position_ = at;
            return restarts;
        }
        restarts += file_[code] != 0;
        position_ = code + 1;
    }
    position_ = file_.size();
    return restarts;
}

ColourModel MarkerReader::colourModel() const
{
    const std::vector<FrameComponent>& components = frame().components;
    if (components.size() == 1)
        return ColourModel::Grey;
    if (components.size() == 4)
        return adobeTransform_ == 2 ? ColourModel::Ycck : ColourModel::Cmyk;
    if (jfif_)
        return ColourModel::YCbCr;
    if (adobeTransform_)
        return *adobeTransform_ == 0 ? ColourModel::Rgb : ColourModel::YCbCr;
    const bool namedRgb = components[0].id == 'R' && components[1].id == 'G' && components[2].id == 'B';
    return namedRgb || frame().lossless ? ColourModel::Rgb : ColourModel::YCbCr;
}

}  // namespace vekpix::jpeg
