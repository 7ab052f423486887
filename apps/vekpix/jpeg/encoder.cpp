#include "jpeg/encoder.h"

#include <algorithm>
#include <optional>
#include <string>

#include "error.h"
#include "image/memory_rows.h"
#include "jpeg/entropy_writer.h"
#include "jpeg/lossless_encoder.h"
#include "jpeg/marker_writer.h"
#include "jpeg/mcu_transform.h"
#include "jpeg/scan_passes.h"
#include "jpeg/standard_tables.h"
#include "jpeg/store_writer.h"
#include "library_status.h"

namespace vekpix::jpeg {

namespace {

constexpr int maxSize = 65535;  // columns, rows, MCUs of a restart interval: 16-bit fields (T.81, B.2.2 and B.2.4.4)

void checkRange(const char* what, int value, int least, int most)
{
    if (value < least || value > most)
        throw Error(std::string(what) + " must be between " + std::to_string(least) + " and " + std::to_string(most) +
                    ", not " + std::to_string(value));
}

void checkSize(const Shape& picture)
{
    if (picture.width < 1 || picture.height < 1)
        throw Error("the picture is empty");
    if (picture.width > maxSize || picture.height > maxSize)
        throw Error("the picture has " + std::to_string(picture.width) + " x " + std::to_string(picture.height) +
                    " pixels; a JPEG file holds 65535 x 65535 at most");
}

void checkLossless(const Shape& picture, const EncodeOptions& options)
{
    checkSize(picture);
    checkRange("the predictor", options.predictor, 1, 7);
    checkRange("the point transform", options.pointTransform, 0, picture.bits - 1);
    checkRange("the restart interval in rows", options.restartInterval, 0, maxSize / picture.width);
    if (storesCoefficients(options) || options.grey)
        throw Error("a lossless file has one scan of all colours");
}

void check(const Shape& picture, const EncodeOptions& options)
{
    checkRange("the quality", options.quality, 1, 100);
    if (picture.bits != 8 && picture.bits != 12)
        throw Error("samples of " + std::to_string(picture.bits) + " bits cannot be coded by this process");
    if (picture.bits != 8 && storesCoefficients(options))
        throw Error("samples of more than 8 bits are coded in one sequential scan only");
    checkRange("the restart interval", options.restartInterval, 0, maxSize);
    if (options.threads < 1)
        throw Error("at least one thread must work");
    if (picture.channels == 4 && options.grey)
        throw Error("a picture of inks has no luminance to be coded alone");
    checkSize(picture);
}

QuantizerSteps scaled(QuantizerSteps steps, int quality)
{
    expectOk(vekiQuantFwdRawTableInit_JPEG_8u(steps.data(), quality), "quantisation table");
    return steps;
}

// The same rows, from a source that can be read once more.
class Rewindable {
public:
    explicit Rewindable(RowReader& source) : rows_(&source)
    {
        if (source.rewind())
            return;
        picture_ = readPicture(source);
        rows_ = &memory_.emplace(*picture_);
    }
    RowReader& rows() { return *rows_; }

private:
    RowReader* rows_;
    std::optional<Raster> picture_;
    std::optional<MemoryRows> memory_;
};

void encodeScans(RowReader& picture, ByteSink& file, const McuTransform& transform,
                 const std::array<QuantizerSteps, 2>& steps, const EncodeOptions& options)
{
    const McuLayout& layout = transform.layout();
    Frame frame = frameOf(layout);
    const ScanScript script = options.scans.empty() ? progressiveScript(frame, layout.colours) : options.scans;
    frame.progressive = checkScanScript(script, frame);
    if (options.progressive && !frame.progressive)
        throw Error("the scan script is one of a sequential file");
    CoefficientStore store(frame);
    storeCoefficients(picture, transform, options, store);
    simplifyPadding(store);
    writeBeginning(file, layout, steps);
    PassReport report(options.onRows, layout.picture.height, script.size());
    writeScans({frame, layout.colours, store}, script,
               {options.restartInterval, options.optimizeTables, options.threads, [&] { report.advance(); }}, file);
    writeEnd(file);
}

}  // namespace

void encode(RowReader& picture, ByteSink& file, const EncodeOptions& options)
{
    if (options.lossless) {
        checkLossless(picture.shape(), options);
        Rewindable rewindable(picture);
        encodeLossless(rewindable.rows(), file, options);
        return;
    }
    check(picture.shape(), options);
    const McuLayout layout(picture.shape(), options);
    const ScanLayout scan = {layout, options.restartInterval, int64_t{layout.mcusPerRow()} * layout.mcuRows()};
    const std::array<QuantizerSteps, 2> steps = {scaled(standardLuminanceSteps, options.quality),
                                                 scaled(standardChrominanceSteps, options.quality)};
    const McuTransform transform(layout, steps[0], steps[1]);
    if (storesCoefficients(options)) {
        encodeScans(picture, file, transform, steps, options);
        return;
    }

    ScanTables lists = {{standardLuminanceDc, standardChrominanceDc}, {standardLuminanceAc, standardChrominanceAc}};
    RowReader* rows = &picture;
    std::optional<Rewindable> again;
    if (makesTables(picture.shape(), options)) {
        rows = &again.emplace(picture).rows();
        lists = countSymbols(*rows, transform, scan, options).optimalTables();
        rows->rewind();
    }
    writeHeaders(file, layout, steps, lists, options.restartInterval);
    writeScan(*rows, transform, scan, EncoderTables(lists), options, file);
    writeEnd(file);
}

}  // namespace vekpix::jpeg
