#include "jpeg/jpeg_rows.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

#include "error.h"
#include "io/input_file.h"
#include "jpeg/decoder.h"

namespace vekpix::jpeg {

namespace {

class JpegRows : public RowReader {
public:
    JpegRows(const std::string& path, const DecodeOptions& options) : path_(path), file_(readFile(path))
    {
        named([&] { decoder_.emplace(file_, options); });
        shape_ = decoder_->shape();
        band_.resize(shape_.rowBytes() * static_cast<size_t>(decoder_->bandRows()));
    }

    void readRows(uint8_t* pixels, size_t step, int rows) override
    {
        for (int y = 0; y < rows; ++y) {
            if (next_ == bandRows_) {
                named([&] { bandRows_ = decoder_->readBand(band_.data(), shape_.rowBytes()); });
                next_ = 0;
            }
            std::memcpy(pixels + step * static_cast<size_t>(y),
                        band_.data() + shape_.rowBytes() * static_cast<size_t>(next_++), shape_.rowBytes());
        }
    }

private:
    // Calls `work`; its Error also tells the file.
    template <class Work>
    void named(const Work& work) const
    {
        try {
            work();
        } catch (const Error& error) {
            throw Error(path_ + ": " + error.what());
        }
    }

    std::string path_;
    std::vector<uint8_t> file_;
    std::optional<Decoder> decoder_;
    std::vector<uint8_t> band_;
    int bandRows_ = 0;
    int next_ = 0;
};

}  // namespace

std::unique_ptr<RowReader> openJpeg(const std::string& path, const DecodeOptions& options)
{
    return std::make_unique<JpegRows>(path, options);
}

}  // namespace vekpix::jpeg
