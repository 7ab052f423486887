#include "jpeg/decoder.h"

#include <algorithm>
#include <string>

#include "error.h"
#include "jpeg/band_source.h"
#include "jpeg/markers.h"

namespace vekpix::jpeg {

Decoder::Decoder(std::span<const uint8_t> file, const DecodeOptions& options)
{
    if (options.scale != 1 && options.scale != 2 && options.scale != 4 && options.scale != 8)
        throw Error("the scale must be 1, 2, 4 or 8");
    const Picture picture = readHeaders(file);
    const size_t components = picture.frame.components.size();
    shape_ = {divideUp(picture.frame.width, options.scale), divideUp(picture.frame.height, options.scale),
              components == 1                   ? 1
              : components == 4 && options.inks ? 4
                                                : 3,
              picture.frame.bits};
    if (picture.frame.lossless)
        source_ = makeLosslessBands(picture, options);
    else
        source_ = picture.frame.progressive ? makeProgressiveBands(picture, options) : makeMcuBands(picture, options);
    if (!source_)
        source_ = makePlaneBands(picture, options);
}

Decoder::~Decoder() = default;

int Decoder::bandRows() const { return source_->bandRows(); }

int Decoder::readBand(uint8_t* pixels, size_t step)
{
    const int rows = std::min(source_->bandRows(), height() - nextRow_);
    if (rows <= 0)
        return 0;
    source_->readBand(pixels, step, rows);
    nextRow_ += rows;
    if (nextRow_ == height() && source_->markerBehind() == DNL)
        throw Error("JPEG files that tell their height behind the first scan (DNL) are not supported");
    return rows;
}

}  // namespace vekpix::jpeg
