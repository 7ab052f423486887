#include "jpeg/decoder.h"

#include <algorithm>
#include <string>

#include "error.h"
#include "jpeg/band_source.h"
#include "jpeg/markers.h"

namespace vekpix::jpeg {

namespace {

// Each block takes two codes of at least one bit: a file too short for that cannot hold its picture. This bounds the
// time that a file of a given length can take.
void checkPlausible(const Picture& picture)
{
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
        if (blocks * 2 > static_cast<uint64_t>(picture.file.size() - scan.dataBegin) * 8)
            throw Error("truncated JPEG file: too short for a picture of " + std::to_string(picture.frame.width) +
                        " x " + std::to_string(picture.frame.height));
    }
}

Picture readHeaders(std::span<const uint8_t> file)
{
    Picture picture;
    picture.file = file;
    MarkerReader markers(file);
    while (std::optional<Scan> scan = markers.advanceToScan()) {
        picture.scans.push_back(std::move(*scan));
        if (markers.everyComponentScanned())
            break;
        markers.skipScanData();
    }
    if (picture.scans.empty())
        throw Error("damaged JPEG file: no picture in it");
    if (!markers.everyComponentScanned())
        throw Error("damaged JPEG file: a component has no scan");
    picture.frame = markers.frame();
    picture.colours = markers.colourModel();
    picture.inverted = markers.adobeTransform().has_value();
    checkPlausible(picture);
    return picture;
}

}  // namespace

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

Decoder::Decoder(std::span<const uint8_t> file, const DecodeOptions& options)
{
    if (options.scale != 1 && options.scale != 2 && options.scale != 4 && options.scale != 8)
        throw Error("the scale must be 1, 2, 4 or 8");
    const Picture picture = readHeaders(file);
    width_ = divideUp(picture.frame.width, options.scale);
    height_ = divideUp(picture.frame.height, options.scale);
    channels_ = picture.colours == ColourModel::Grey ? 1 : 3;
    source_ = makeMcuBands(picture, options);
    if (!source_)
        source_ = makePlaneBands(picture, options);
}

Decoder::~Decoder() = default;

int Decoder::bandRows() const { return source_->bandRows(); }

int Decoder::readBand(uint8_t* pixels, size_t step)
{
    const int rows = std::min(source_->bandRows(), height_ - nextRow_);
    if (rows <= 0)
        return 0;
    source_->readBand(pixels, step, rows);
    nextRow_ += rows;
    if (nextRow_ == height_ && source_->markerBehind() == DNL)
        throw Error("JPEG files that tell their height behind the first scan (DNL) are not supported");
    return rows;
}

}  // namespace vekpix::jpeg
