// Damaged, truncated, odd and hostile files: an Error with one line, or a picture; never more time or memory than the
// file can justify.
#include <gtest/gtest.h>

#include <sys/resource.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "decode_support.h"
#include "error.h"
#include "jpeg/decoder.h"
#include "jpeg/describe.h"
#include "jpeg/marker_reader.h"
#include "jpeg/markers.h"
#include "jpeg_peer.h"
#include "support/sanitizers.h"

using peer::Picture;
using peer::Scene;
using peer::Stored;
using Bytes = std::vector<uint8_t>;

namespace {

// The message of the Error that decoding ends with; empty if there is none.
std::string failure(const Bytes& file, const vekpix::jpeg::DecodeOptions& options = {})
{
    try {
        support::decode(file, options);
    } catch (const vekpix::Error& error) {
        EXPECT_EQ(std::string::npos, std::string(error.what()).find('\n'));
        EXPECT_NE(std::string(), error.what());
        return error.what();
    }
    return {};
}

bool fails(const Bytes& file, const std::string& words, const vekpix::jpeg::DecodeOptions& options = {})
{
    const std::string message = failure(file, options);
    if (message.find(words) != std::string::npos)
        return true;
    ADD_FAILURE() << "\"" << message << "\" does not tell \"" << words << "\"";
    return false;
}

size_t find(const Bytes& file, int marker)
{
    size_t found = file.size();
    vekpix::jpeg::MarkerReader markers(file, [&](const vekpix::jpeg::Segment& segment) {
        if (segment.marker == marker && found == file.size())
            found = segment.position;
    });
    while (markers.advanceToScan()) markers.skipScanData();
    return found;
}

Bytes with(Bytes file, size_t position, int value)
{
    file.at(position) = static_cast<uint8_t>(value);
    return file;
}

Bytes inserted(Bytes file, size_t position, const Bytes& bytes)
{
    file.insert(file.begin() + static_cast<std::ptrdiff_t>(position), bytes.begin(), bytes.end());
    return file;
}

Bytes smallFile(bool restarts = false)
{
    return peer::write(peer::draw(40, 24, 3, Scene::Soft),
                       {.quality = 50, .sampling = {{2, 2}, {1, 1}, {1, 1}}, .restartInterval = restarts ? 2 : 0});
}

Bytes smallScans()
{
    return peer::write(peer::draw(19, 13, 3, Scene::Soft), {.quality = 50,
                                                            .sampling = {{1, 2}, {1, 1}, {1, 1}},
                                                            .restartInterval = 1,
                                                            .optimise = true,
                                                            .interleaved = false});
}

// Reads the file in every way, without a care for the outcome.
void readAnyhow(const Bytes& file)
{
    failure(file);
    failure(file, {8, 1});
    std::ostringstream text;
    try {
        vekpix::jpeg::describe(file, text);
    } catch (const vekpix::Error&) {
    }
}

long peakKilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

}  // namespace

TEST(JpegDamage, EveryTruncationEndsInOneLine)
{
    for (const Bytes& file : {smallFile(), smallFile(true), smallScans()}) {
        const Bytes whole = support::decode(file).pixels;
        for (size_t length = 0; length < file.size(); ++length) {
            const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
            if (failure(cut).empty()) {
                ASSERT_GE(length + 4, file.size());  // nothing but the end marker and padding is missing
                ASSERT_TRUE(whole == support::decode(cut).pixels);
            }
        }
    }
}

TEST(JpegDamage, EveryTruncationOnSeveralThreads)
{
    const Bytes file = peer::write(peer::draw(40, 80, 3, Scene::Soft), {.quality = 40, .restartInterval = 5});
    for (size_t length = 0; length + 4 < file.size(); length += 3) {
        const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
        ASSERT_NE("", failure(cut, {1, 3}));
    }
}

TEST(JpegDamage, EveryByteChanged)
{
    for (const Bytes& file : {smallFile(true), smallScans()})
        for (size_t i = 0; i < file.size(); ++i)
            for (const int value : {0x00, 0xFF, file[i] ^ 0x01, file[i] ^ 0x80, file[i] + 1, 0xD9})
                readAnyhow(with(file, i, value));
}

TEST(JpegDamage, EveryByteRemovedOrDoubled)
{
    const Bytes file = smallFile(true);
    for (size_t i = 0; i < file.size(); ++i) {
        Bytes shorter = file;
        shorter.erase(shorter.begin() + static_cast<std::ptrdiff_t>(i));
        readAnyhow(shorter);
        readAnyhow(inserted(file, i, {file[i]}));
    }
}

TEST(JpegDamage, NotAJpegFile)
{
    EXPECT_TRUE(fails({}, "not a JPEG file"));
    EXPECT_TRUE(fails({0xFF}, "not a JPEG file"));
    EXPECT_TRUE(fails({'P', '6', '\n'}, "not a JPEG file"));
    EXPECT_TRUE(fails({0xFF, 0xD8}, "no picture"));
    EXPECT_TRUE(fails({0xFF, 0xD8, 0xFF, 0xD9}, "no picture"));
}

TEST(JpegDamage, MissingEndMarkerAndTrailingBytesAreNoDamage)
{
    const Bytes file = smallFile();
    const Bytes pixels = support::decode(file).pixels;
    const Bytes noEnd(file.begin(), file.end() - 2);
    const Bytes halfEnd(file.begin(), file.end() - 1);
    EXPECT_TRUE(pixels == support::decode(noEnd).pixels);
    EXPECT_TRUE(pixels == support::decode(halfEnd).pixels);
    EXPECT_TRUE(pixels == support::decode(inserted(file, file.size(), Bytes(1000, 0xFF))).pixels);
    EXPECT_TRUE(pixels == support::decode(inserted(file, file.size(), {0xFF, 0xC0, 1, 2, 3})).pixels);
    EXPECT_TRUE(pixels == support::decode(inserted(noEnd, noEnd.size(), {0, 1, 2, 3})).pixels);
}

TEST(JpegDamage, FillBytesBeforeMarkersAreNoDamage)
{
    const Bytes file = smallFile(true);
    const Bytes pixels = support::decode(file).pixels;
    EXPECT_TRUE(pixels == support::decode(inserted(file, find(file, vekpix::jpeg::DHT), {0xFF, 0xFF})).pixels);
    EXPECT_TRUE(pixels == support::decode(inserted(file, file.size() - 2, {0xFF, 0xFF, 0xFF})).pixels);
    size_t restart = find(file, vekpix::jpeg::SOS);
    while (!(file[restart] == 0xFF && file[restart + 1] == 0xD0)) ++restart;
    EXPECT_TRUE(pixels == support::decode(inserted(file, restart, {0xFF, 0xFF})).pixels);
}

TEST(JpegDamage, OtherProcessesAreRefusedByName)
{
    const Bytes file = smallFile();
    const size_t frame = find(file, vekpix::jpeg::SOF0);
    EXPECT_TRUE(fails(with(file, frame + 1, 0xC3), "lossless"));  // which has no DCT
    EXPECT_TRUE(fails(with(file, frame + 1, 0xC5), "hierarchical"));
    EXPECT_TRUE(fails(with(file, frame + 1, 0xC9), "arithmetic"));
    EXPECT_TRUE(fails(with(file, frame + 4, 12), "12-bit samples"));
    EXPECT_TRUE(fails(inserted(file, 2, {0xFF, 0xDE, 0, 2}), "hierarchical"));
    EXPECT_TRUE(fails(inserted(file, 2, {0xFF, 0xCC, 0, 2}), "arithmetic"));
}

TEST(JpegDamage, QuantisationStepsAbove255AreRefused)
{
    const Bytes file = smallFile();
    EXPECT_TRUE(fails(with(file, find(file, vekpix::jpeg::DQT) + 4, 0x10), "quantisation steps above 255"));
    EXPECT_TRUE(fails(with(file, find(file, vekpix::jpeg::DQT) + 5, 0), "quantisation step of 0"));
}

TEST(JpegDamage, HeightBehindTheScanIsRefused)
{
    Bytes file = smallFile();
    const size_t frame = find(file, vekpix::jpeg::SOF0);
    EXPECT_TRUE(fails(with(with(file, frame + 5, 0), frame + 6, 0), "DNL"));
    EXPECT_TRUE(fails(inserted(file, file.size() - 2, {0xFF, 0xDC, 0, 4, 0, 24}), "DNL"));
}

TEST(JpegDamage, FrameErrors)
{
    const Bytes file = smallFile();
    const size_t frame = find(file, vekpix::jpeg::SOF0);
    EXPECT_TRUE(fails(with(with(file, frame + 7, 0), frame + 8, 0), "width of 0"));
    EXPECT_TRUE(fails(with(file, frame + 9, 2), "2 components"));
    EXPECT_TRUE(fails(with(file, frame + 9, 4), "too short"));
    EXPECT_TRUE(fails(with(file, frame + 11, 0x52), "sampling"));
    EXPECT_TRUE(fails(with(file, frame + 11, 0x20), "sampling"));
    EXPECT_TRUE(fails(with(file, frame + 11, 0x44), "too many blocks"));
    EXPECT_TRUE(fails(with(file, frame + 12, 4), "table number"));
    EXPECT_TRUE(fails(with(file, frame + 13, 1), "one name"));
}

TEST(JpegDamage, ScanErrors)
{
    const Bytes file = smallFile();
    const size_t scan = find(file, vekpix::jpeg::SOS);
    EXPECT_TRUE(fails(with(file, scan + 4, 0), "number of components"));
    EXPECT_TRUE(fails(with(file, scan + 4, 4), "number of components"));
    EXPECT_TRUE(fails(with(file, scan + 5, 9), "unknown component"));
    EXPECT_TRUE(fails(with(file, scan + 7, 1), "coded twice"));
    EXPECT_TRUE(fails(with(file, scan + 6, 0x40), "table number"));
    EXPECT_TRUE(fails(with(file, scan + 6, 0x20), "without its Huffman table"));
    const Bytes scans = smallScans();
    const size_t first = find(scans, vekpix::jpeg::SOS);
    EXPECT_TRUE(fails(Bytes(scans.begin(), scans.begin() + static_cast<std::ptrdiff_t>(first + 40)), "no scan"));
}

TEST(JpegDamage, InvalidHuffmanTables)
{
    const Bytes file = smallFile();
    const size_t table = find(file, vekpix::jpeg::DHT);
    EXPECT_TRUE(fails(with(file, table + 4, 0x05), "kind of Huffman table"));
    EXPECT_TRUE(fails(with(file, table + 5, 3), "invalid Huffman table"));    // three codes of one bit
    EXPECT_TRUE(fails(with(file, table + 21, 16), "invalid Huffman table"));  // DC category 16
}

TEST(JpegDamage, RestartMarkersOutOfOrder)
{
    const Bytes file = smallFile(true);
    size_t restart = find(file, vekpix::jpeg::SOS);
    while (!(file[restart] == 0xFF && file[restart + 1] == 0xD1)) ++restart;
    EXPECT_TRUE(fails(with(file, restart + 1, 0xD2), "RST2"));
    EXPECT_TRUE(fails(with(file, restart + 1, 0xD9), "EOI"));
    EXPECT_TRUE(fails(inserted(file, restart, Bytes(20, 0x55)), "too many data"));
    Bytes without = file;
    without.erase(without.begin() + static_cast<std::ptrdiff_t>(restart),
                  without.begin() + static_cast<std::ptrdiff_t>(restart + 2));
    EXPECT_NE("", failure(without));
    EXPECT_NE("", failure(without, {1, 4}));
}

// A file must have two bits for each block that it claims; a header alone costs nothing.
TEST(JpegDamage, HugeClaimsCostNothing)
{
    for (const bool scans : {false, true})
        for (const int scale : {1, 8}) {
            Bytes file = scans ? smallScans() : smallFile(true);
            const size_t frame = find(file, vekpix::jpeg::SOF0);
            for (size_t i = 5; i <= 8; ++i) file[frame + i] = 0xFF;
            const long before = peakKilobytes();
            const auto start = std::chrono::steady_clock::now();
            EXPECT_TRUE(fails(file, "too short for a picture of 65535 x 65535", {scale, 1}));
            EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
            if (!support::underSanitizer) {
                EXPECT_LT(peakKilobytes() - before, 8 * 1024);
            }
        }
}

// Two bits a block are the least that a file can spend: the picture comes in bands of a few rows, not whole.
TEST(JpegDamage, LargestPictureOfFewBytesTakesTheMemoryOfABand)
{
    Bytes file = peer::write(peer::draw(8, 8, 1, Scene::Soft), {.stored = Stored::Grey});
    const size_t table = find(file, vekpix::jpeg::DHT);
    const size_t frame = find(file, vekpix::jpeg::SOF0);
    Bytes head(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(table));
    head[frame + 5] = 0x20;  // 8192 rows of 65535
    head[frame + 6] = 0x00;
    head[frame + 7] = head[frame + 8] = 0xFF;
    for (const int kind : {0x00, 0x10}) {  // one code of one bit: category 0, end of block
        const Bytes oneCode = {0xFF, 0xC4, 0, 20, static_cast<uint8_t>(kind), 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                               0,    0,    0, 0};
        head.insert(head.end(), oneCode.begin(), oneCode.end());
    }
    const Bytes scan = {0xFF, 0xDA, 0, 8, 1, 1, 0x00, 0, 63, 0};
    head.insert(head.end(), scan.begin(), scan.end());
    head.resize(head.size() + 8192 * 1024 / 4);
    const long before = peakKilobytes();
    vekpix::jpeg::Decoder decoder(head, {});
    Bytes band(static_cast<size_t>(decoder.width()) * static_cast<size_t>(decoder.bandRows()));
    int rows = 0;
    while (const int read = decoder.readBand(band.data(), static_cast<size_t>(decoder.width()))) {
        rows += read;
        ASSERT_EQ(128, band[0]);
        ASSERT_EQ(128, band.back());
    }
    EXPECT_EQ(8192, rows);
    if (!support::underSanitizer) {
        EXPECT_LT(peakKilobytes() - before, 16 * 1024);
    }
}

// The fuzz target's seeds are whole pictures of every kind, so that its search begins behind the headers.
TEST(JpegDamage, SeedsOfTheFuzzTargetAreSound)
{
    int seeds = 0;
    for (const auto& entry : std::filesystem::directory_iterator(VEKPIX_SEEDS)) {
        std::ifstream in(entry.path(), std::ios::binary);
        const Bytes file{std::istreambuf_iterator<char>(in), {}};
        EXPECT_EQ("", failure(file)) << entry.path();
        ++seeds;
    }
    EXPECT_GE(seeds, 29);
}

TEST(JpegDescribe, TellsFrameTablesScansAndMarkers)
{
    Bytes file = smallScans();
    file.resize(file.size() + 5);
    std::ostringstream out;
    vekpix::jpeg::describe(file, out);
    const std::string text = out.str();
    for (const char* words :
         {"SOI         at byte 0", "APP0        at byte 2, 16 bytes", "baseline, 19 x 13, 8 bits, YCbCr",
          "component 1: sampling 1x2, quantisation table 0", "component 3: sampling 1x1, quantisation table 1",
          "scan: components 3,", "restart interval of 1 MCUs, 5 restart markers",
          "AC table 1: ", "5 bytes behind the end marker"})
        EXPECT_NE(std::string::npos, text.find(words)) << words << " not in\n" << text;
}
