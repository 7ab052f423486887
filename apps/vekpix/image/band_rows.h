// A coded file, whose decoder gives bands, as rows of pixels, to stand beside the other picture formats.
#ifndef VEKPIX_IMAGE_BAND_ROWS_H
#define VEKPIX_IMAGE_BAND_ROWS_H

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "error.h"
#include "image/rows.h"
#include "io/input_file.h"

namespace vekpix {

template <class Decoder>
class BandRows : public RowReader {
public:
    template <class Options>
    BandRows(const std::string& path, const Options& options) : path_(path), file_(readFile(path))
    {
        reading(path_, [&] { decoder_.emplace(file_, options); });
        shape_ = decoder_->shape();
        band_.resize(shape_.rowBytes() * static_cast<size_t>(decoder_->bandRows()));
    }

    void readRows(uint8_t* pixels, size_t step, int rows) override
    {
        for (int y = 0; y < rows; ++y) {
            if (next_ == bandRows_) {
                bandRows_ = reading(path_, [&] { return decoder_->readBand(band_.data(), shape_.rowBytes()); });
                next_ = 0;
            }
            std::memcpy(pixels + step * static_cast<size_t>(y),
                        band_.data() + shape_.rowBytes() * static_cast<size_t>(next_++), shape_.rowBytes());
        }
    }

private:
    std::string path_;
    std::vector<uint8_t> file_;
    std::optional<Decoder> decoder_;
    std::vector<uint8_t> band_;
    int bandRows_ = 0;
    int next_ = 0;
};

}  // namespace vekpix

#endif
