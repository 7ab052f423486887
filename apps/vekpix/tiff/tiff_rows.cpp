#include "tiff/tiff_rows.h"

#include <optional>
#include <vector>

#include "error.h"
#include "io/input_file.h"
#include "tiff/decoder.h"

namespace vekpix::tiff {

namespace {

class TiffRows : public RowReader {
public:
    explicit TiffRows(const std::string& path) : path_(path), file_(readFile(path))
    {
        reading(path_, [&] { decoder_.emplace(file_); });
        shape_ = decoder_->shape();
    }

    void readRows(uint8_t* pixels, size_t step, int rows) override
    {
        reading(path_, [&] { decoder_->readRows(pixels, step, rows); });
    }

private:
    std::string path_;
    std::vector<uint8_t> file_;
    std::optional<Decoder> decoder_;
};

}  // namespace

std::unique_ptr<RowReader> openTiff(const std::string& path) { return std::make_unique<TiffRows>(path); }

}  // namespace vekpix::tiff
