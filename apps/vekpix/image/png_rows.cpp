#include "image/png_rows.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <optional>
#include <vector>

#include "error.h"
#include "image/depth_rows.h"
#include "image/memory_rows.h"
#include "io/input_file.h"

namespace vekpix {

namespace {

// libpng leaves a failing call by longjmp, which runs no destructor; so every call goes through run(), whose argument
// owns nothing, and becomes an exception there. Callbacks keep their own exceptions off libpng's frames by throwing
// nothing: they note the failure and let libpng fail.
class PngFailure {
public:
    explicit PngFailure(std::string name) : name_(std::move(name)) {}

    template <class Call>
    void run(png_structp png, const Call& call)
    {
        if (setjmp(png_jmpbuf(png)) != 0)
            raise();
        call();
    }

    void keep(std::exception_ptr exception) { exception_ = std::move(exception); }

    [[noreturn]] static void onError(png_structp png, png_const_charp message)
    {
        auto* self = static_cast<PngFailure*>(png_get_error_ptr(png));
        std::snprintf(self->message_.data(), self->message_.size(), "%s", message);
        png_longjmp(png, 1);
    }
    static void onWarning(png_structp, png_const_charp) {}

private:
    [[noreturn]] void raise() const
    {
        if (exception_)
            std::rethrow_exception(exception_);
        throw Error(name_ + message_.data());
    }

    std::string name_;
    std::exception_ptr exception_;
    std::array<char, 200> message_{};
};

class PngReader : public RowReader {
public:
    PngReader(const std::string& path, SampleDepth depth)
        : file_(path), depth_(depth), failure_(path + ": no sound PNG picture: ")
    {
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, &failure_, PngFailure::onError, PngFailure::onWarning);
        info_ = png_ ? png_create_info_struct(png_) : nullptr;
        if (!info_) {
            png_destroy_read_struct(&png_, &info_, nullptr);
            throw std::bad_alloc();
        }
        try {
            start();
        } catch (...) {
            png_destroy_read_struct(&png_, &info_, nullptr);
            throw;
        }
    }

    ~PngReader() override { png_destroy_read_struct(&png_, &info_, nullptr); }

    void readRows(uint8_t* pixels, size_t step, int rows) override
    {
        if (whole_) {
            wholeRows_->readRows(pixels, step, rows);
            return;
        }
        for (int y = 0; y < rows; ++y) {
            uint8_t* row = pixels + step * static_cast<size_t>(y);
            failure_.run(png_, [&] { png_read_row(png_, row, nullptr); });
            finishRow(row);
        }
    }

private:
    static constexpr uint64_t mostPixelBytesPerFileByte = 1032;  // by deflate

    void start()
    {
        failure_.run(png_, [&] {
            png_set_read_fn(png_, this, onRead);
            png_read_info(png_, info_);
            png_set_expand(png_);
            if (depth_ == SampleDepth::AsStored && png_get_bit_depth(png_, info_) == 16)
                keepSixteen();
            else
                png_set_scale_16(png_);
            shape_.width = static_cast<int>(png_get_image_width(png_, info_));
            shape_.height = static_cast<int>(png_get_image_height(png_, info_));
            passes_ = png_set_interlace_handling(png_);
        });
        const uint64_t rawBits = uint64_t{png_get_channels(png_, info_)} * png_get_bit_depth(png_, info_);
        const uint64_t rawBytes = (rawBits * static_cast<uint64_t>(width()) + 7) / 8 * static_cast<uint64_t>(height());
        if (file_.size() && rawBytes / mostPixelBytesPerFileByte > *file_.size())
            throw Error(file_.path() + ": the file is too short for its picture");
        failure_.run(png_, [&] { png_read_update_info(png_, info_); });
        shape_.channels = png_get_channels(png_, info_);
        shape_.alpha = shape_.channels % 2 == 0;
        if (passes_ > 1)
            readInterlaced();
    }

    // The passes of an interlaced picture touch all its rows, so it is read as a whole.
    void readInterlaced()
    {
        whole_.emplace(shape_);
        for (int pass = 0; pass < passes_; ++pass)
            for (int y = 0; y < height(); ++y) failure_.run(png_, [&] { png_read_row(png_, whole_->row(y), nullptr); });
        for (int y = 0; y < height(); ++y) finishRow(whole_->row(y));
        wholeRows_.emplace(*whole_);
    }

    // Samples of 16 bits, of which the picture may tell how many are significant: the high ones.
    void keepSixteen()
    {
        png_set_swap(png_);  // to the machine's order
        shape_.bits = 16;
        png_color_8p significant = nullptr;
        if (png_get_sBIT(png_, info_, &significant) == PNG_INFO_sBIT) {
            const bool grey = (png_get_color_type(png_, info_) & PNG_COLOR_MASK_COLOR) == 0;
            const int most =
                grey ? significant->gray : std::max({significant->red, significant->green, significant->blue});
            shape_.bits = std::clamp(most, 9, 16);
        }
    }

    // Takes the significant bits of each sample.
    void finishRow(uint8_t* row) const
    {
        const int shift = 16 - shape_.bits;
        if (shape_.bits == 8 || shift == 0)
            return;
        for (size_t i = 0; i < shape_.rowSamples(); ++i) setSample(row, i, 2, sampleAt(row, i, 2) >> shift);
    }

    static void onRead(png_structp png, png_bytep bytes, size_t length)
    {
        auto* self = static_cast<PngReader*>(png_get_io_ptr(png));
        size_t got = 0;
        try {
            got = self->file_.read({bytes, length});
        } catch (...) {
            self->failure_.keep(std::current_exception());
        }
        if (got != length)
            png_error(png, "the file ends before its picture does");
    }

    InputFile file_;
    SampleDepth depth_;
    PngFailure failure_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    int passes_ = 1;
    std::optional<Raster> whole_;
    std::optional<MemoryRows> wholeRows_;
};

class PngWriter : public RowWriter {
public:
    PngWriter(const Shape& shape, ByteSink& sink) : shape_(shape), sink_(sink), failure_("cannot write a PNG picture: ")
    {
        if (shape.inks())
            throw Error("a PNG file holds no picture of inks");
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, &failure_, PngFailure::onError, PngFailure::onWarning);
        info_ = png_ ? png_create_info_struct(png_) : nullptr;
        if (!info_) {
            png_destroy_write_struct(&png_, &info_);
            throw std::bad_alloc();
        }
        try {
            failure_.run(png_, [&] { start(); });
        } catch (...) {
            png_destroy_write_struct(&png_, &info_);
            throw;
        }
    }

    ~PngWriter() override { png_destroy_write_struct(&png_, &info_); }

    void writeRows(const uint8_t* pixels, size_t step, int rows) override
    {
        for (int y = 0; y < rows; ++y) {
            const uint8_t* row = pixels + step * static_cast<size_t>(y);
            if (shape_.bits > 8)
                row = widened(row);
            failure_.run(png_, [&] { png_write_row(png_, row); });
        }
    }

    void finish() override
    {
        failure_.run(png_, [&] { png_write_end(png_, nullptr); });
    }

private:
    static constexpr int compressionLevel = 3;  // higher ones cost far more time than they save room on photographs

    void start()
    {
        png_set_write_fn(png_, this, onWrite, onFlush);
        png_set_IHDR(png_, info_, static_cast<png_uint_32>(shape_.width), static_cast<png_uint_32>(shape_.height),
                     shape_.bits > 8 ? 16 : 8,
                     (shape_.colours() == 3 ? PNG_COLOR_MASK_COLOR : 0) | (shape_.alpha ? PNG_COLOR_MASK_ALPHA : 0),
                     PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_set_compression_level(png_, compressionLevel);
        if (shape_.bits > 8 && shape_.bits < 16) {
            const auto bits = static_cast<png_byte>(shape_.bits);
            const png_color_8 significant = {bits, bits, bits, bits, bits};
            png_set_sBIT(png_, info_, &significant);
        }
        png_write_info(png_, info_);
        if (shape_.bits > 8)
            png_set_swap(png_);  // from the machine's order
    }

    // Samples in all 16 bits: their high bits come again in the low ones.
    const uint8_t* widened(const uint8_t* row)
    {
        words_.resize(shape_.rowSamples());
        std::memcpy(words_.data(), row, shape_.rowBytes());
        const int up = 16 - shape_.bits;
        const int down = shape_.bits - up;
        for (uint16_t& word : words_) word = static_cast<uint16_t>(word << up | word >> down);
        return reinterpret_cast<const uint8_t*>(words_.data());
    }

    static void onWrite(png_structp png, png_bytep bytes, size_t length)
    {
        auto* self = static_cast<PngWriter*>(png_get_io_ptr(png));
        bool written = false;
        try {
            self->sink_.write({bytes, length});
            written = true;
        } catch (...) {
            self->failure_.keep(std::current_exception());
        }
        if (!written)
            png_error(png, "the file cannot be written");
    }
    static void onFlush(png_structp) {}

    Shape shape_;
    ByteSink& sink_;
    std::vector<uint16_t> words_;
    PngFailure failure_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
};

}  // namespace

std::unique_ptr<RowReader> openPng(const std::string& path, SampleDepth depth)
{
    return std::make_unique<PngReader>(path, depth);
}

std::unique_ptr<RowWriter> makePngWriter(const Shape& shape, ByteSink& sink)
{
    return std::make_unique<PngWriter>(shape, sink);
}

}  // namespace vekpix
