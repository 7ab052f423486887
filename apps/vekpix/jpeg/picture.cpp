#include "jpeg/picture.h"

#include <algorithm>
#include <string>
#include <utility>

#include "error.h"
#include "vekj.h"

namespace vekpix::jpeg {

namespace {

[[noreturn]] void failTooShort(const Frame& frame)
{
    throw Error("truncated JPEG file: too short for a picture of " + std::to_string(frame.width) + " x " +
                std::to_string(frame.height));
}

// Each sample takes a code of at least one bit.
void checkPlausibleLossless(const Picture& picture)
{
    for (const Scan& scan : picture.scans) {
        const uint64_t samples = scan.components.size() * static_cast<uint64_t>(picture.frame.width) *
                                 static_cast<uint64_t>(picture.frame.height);
        if (samples > uint64_t{picture.file.size() - scan.dataBegin} * 8)
            failTooShort(picture.frame);
    }
}

// Each block takes two codes of at least one bit; in a progressive file, one bit in each scan of its DC, but there may
// be none for many blocks in scans of AC. A file too short for that cannot hold its picture. This bounds the time that
// a file of a given length can take.
void checkPlausible(const Picture& picture)
{
    if (picture.frame.lossless) {
        checkPlausibleLossless(picture);
        return;
    }
    const uint64_t least = picture.frame.progressive ? 1 : 2;
    for (const Scan& scan : picture.scans) {
        uint64_t blocks = 0;
        if (scan.components.size() == 1) {
            const size_t index = static_cast<size_t>(scan.components[0].index);
            blocks = static_cast<uint64_t>(divideUp(picture.componentWidth(index), 8)) *
                     static_cast<uint64_t>(divideUp(picture.componentHeight(index), 8));
        } else {
            uint64_t blocksInMcu = 0;
            for (const ScanComponent& component : scan.components) {
                const FrameComponent& c = picture.frame.components[static_cast<size_t>(component.index)];
                blocksInMcu += static_cast<uint64_t>(c.horizontalSampling * c.verticalSampling);
            }
            blocks =
                blocksInMcu * static_cast<uint64_t>(picture.mcusPerRow()) * static_cast<uint64_t>(picture.mcuRows());
        }
        const size_t bytes = picture.file.size() - (scan.spectralBegin == 0 ? scan.dataBegin : 0);
        if (blocks * least > static_cast<uint64_t>(bytes) * 8)
            failTooShort(picture.frame);
    }
}

// A progressive file may leave out what it does not care to tell, if it goes on to its end.
void checkWhole(const MarkerReader& markers)
{
    if (markers.everythingTold())
        return;
    if (!markers.frame().progressive)
        throw Error("damaged JPEG file: a component has no scan");
    if (!markers.endMarkerSeen())
        throw Error("truncated JPEG file: it ends before its last scan");
}

}  // namespace

Picture readHeaders(std::span<const uint8_t> file)
{
    Picture picture;
    picture.file = file;
    MarkerReader markers(file);
    while (std::optional<Scan> scan = markers.advanceToScan()) {
        picture.scans.push_back(std::move(*scan));
        if (!markers.frame().progressive && markers.everythingTold())
            break;
        markers.skipScanData();
    }
    if (picture.scans.empty())
        throw Error("damaged JPEG file: no picture in it");
    checkWhole(markers);
    picture.frame = markers.frame();
    picture.colours = markers.colourModel();
    picture.inverted = markers.adobeTransform().has_value();
    checkPlausible(picture);
    return picture;
}

const QuantSteps* Picture::quantSteps(size_t index) const
{
    for (const Scan& scan : scans)
        for (const ScanComponent& component : scan.components)
            if (static_cast<size_t>(component.index) == index)
                return component.quantSteps.get();
    return nullptr;
}

void Picture::quantTable(size_t index, uint16_t* table) const
{
    if (const QuantSteps* steps = quantSteps(index))
        vekiQuantInvTableInit_JPEG_8u16u(steps->data(), table);
    else
        std::fill_n(table, 64, uint16_t{1});
}

}  // namespace vekpix::jpeg
