#include "jpeg/transcoder.h"

#include <algorithm>
#include <vector>

#include "error.h"
#include "jpeg/marker_writer.h"
#include "jpeg/markers.h"
#include "jpeg/picture.h"
#include "jpeg/store_reader.h"
#include "jpeg/store_writer.h"

namespace vekpix::jpeg {

namespace {

bool isKept(int marker) { return (marker >= APP0 && marker <= APP15) || marker == COM; }

// Application segments and comments in front of the first scan, as they are.
void copySegments(std::span<const uint8_t> file, ByteSink& output)
{
    MarkerReader markers(file, [&](const Segment& segment) {
        if (isKept(segment.marker))
            output.write(file.subspan(segment.position, 2 + segment.length));
    });
    markers.advanceToScan();
}

// The frame with its quantisation tables in as few slots as they need: a file may have changed one between its scans.
Frame writeQuantTables(const Picture& picture, ByteSink& output)
{
    Frame frame = picture.frame;
    std::vector<QuantSteps> tables;
    for (size_t i = 0; i < frame.components.size(); ++i) {
        const QuantSteps* steps = picture.quantSteps(i);
        QuantSteps ones;
        ones.fill(1);
        const QuantSteps& wanted = steps ? *steps : ones;
        const auto found = std::ranges::find(tables, wanted);
        frame.components[i].quantTable = static_cast<int>(found - tables.begin());
        if (found != tables.end())
            continue;
        writeQuantTable(output, frame.components[i].quantTable, wanted);
        tables.push_back(wanted);
    }
    return frame;
}

ScanScript scriptFor(const Picture& picture, const TranscodeOptions& options)
{
    ScanScript script = options.scans;
    if (script.empty())
        script =
            options.progressive ? progressiveScript(picture.frame, picture.colours) : sequentialScript(picture.frame);
    if (checkScanScript(script, picture.frame) != options.progressive)
        throw Error(options.progressive ? "the scan script is one of a sequential file"
                                        : "the scan script is one of a progressive file");
    if (!isComplete(script, picture.frame))
        throw Error("the scan script leaves coefficients out");
    return script;
}

}  // namespace

int heightOf(std::span<const uint8_t> file)
{
    MarkerReader markers(file);
    markers.advanceToScan();
    return markers.frame().height;
}

void transcode(std::span<const uint8_t> file, ByteSink& output, const TranscodeOptions& options)
{
    const Picture picture = readHeaders(file);
    if (picture.frame.lossless)
        throw Error("a lossless file has no coefficients to be transcoded");
    if (picture.frame.bits != 8)
        throw Error("files of more than 8 bits cannot be transcoded");
    const ScanScript script = scriptFor(picture, options);
    CoefficientStore store(picture.frame);
    readScans(file, picture.scans, store, options.threads);
    simplifyPadding(store);

    writeStart(output);
    copySegments(file, output);
    Frame frame = writeQuantTables(picture, output);
    frame.baseline = true;
    frame.progressive = options.progressive;
    PassReport report(options.onRows, frame.height, script.size());
    writeScans({frame, picture.colours, store}, script,
               {options.restartInterval, options.optimizeTables, options.threads, [&] { report.advance(); }}, output);
    writeEnd(output);
}

}  // namespace vekpix::jpeg
