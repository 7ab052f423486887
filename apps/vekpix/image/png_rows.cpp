#include "image/png_rows.h"

#include <png.h>

#include <array>
#include <cstdio>
#include <optional>

#include "error.h"
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

// Over white, to the nearest.
uint8_t overWhite(uint8_t colour, uint8_t alpha)
{
    return static_cast<uint8_t>((colour * alpha + 255 * (255 - alpha) + 127) / 255);
}

class PngReader : public RowReader {
public:
    explicit PngReader(const std::string& path) : file_(path), failure_(path + ": no sound PNG picture: ")
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
            uint8_t* target = hasAlpha_ ? withAlpha_.data() : row;
            failure_.run(png_, [&] { png_read_row(png_, target, nullptr); });
            if (hasAlpha_)
                flatten(withAlpha_.data(), row);
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
        const int fileChannels = png_get_channels(png_, info_);
        hasAlpha_ = fileChannels % 2 == 0;
        shape_.channels = fileChannels - (hasAlpha_ ? 1 : 0);
        if (hasAlpha_)
            withAlpha_.resize(static_cast<size_t>(width()) * static_cast<size_t>(fileChannels));
        if (passes_ > 1)
            readInterlaced();
    }

    // The passes of an interlaced picture touch all its rows, so it is read as a whole.
    void readInterlaced()
    {
        const int channels = shape_.channels + (hasAlpha_ ? 1 : 0);
        Raster raw(Shape{width(), height(), channels});
        for (int pass = 0; pass < passes_; ++pass)
            for (int y = 0; y < height(); ++y) failure_.run(png_, [&] { png_read_row(png_, raw.row(y), nullptr); });
        raw.shape.channels = shape_.channels;
        if (hasAlpha_)
            for (int y = 0; y < height(); ++y)  // rows only move towards the front
                flatten(raw.pixels.data() + withAlpha_.size() * static_cast<size_t>(y), raw.row(y));
        whole_ = std::move(raw);
        wholeRows_.emplace(*whole_);
    }

    void flatten(const uint8_t* from, uint8_t* to) const
    {
        const auto channels = static_cast<size_t>(shape_.channels);
        for (size_t x = 0; x < static_cast<size_t>(width()); ++x, from += channels + 1, to += channels) {
            const uint8_t alpha = from[channels];
            for (size_t c = 0; c < channels; ++c) to[c] = overWhite(from[c], alpha);
        }
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
    PngFailure failure_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    int passes_ = 1;
    bool hasAlpha_ = false;
    std::vector<uint8_t> withAlpha_;
    std::optional<Raster> whole_;
    std::optional<MemoryRows> wholeRows_;
};

class PngWriter : public RowWriter {
public:
    PngWriter(const Shape& shape, ByteSink& sink) : sink_(sink), failure_("cannot write a PNG picture: ")
    {
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, &failure_, PngFailure::onError, PngFailure::onWarning);
        info_ = png_ ? png_create_info_struct(png_) : nullptr;
        if (!info_) {
            png_destroy_write_struct(&png_, &info_);
            throw std::bad_alloc();
        }
        try {
            failure_.run(png_, [&] { start(shape); });
        } catch (...) {
            png_destroy_write_struct(&png_, &info_);
            throw;
        }
    }

    ~PngWriter() override { png_destroy_write_struct(&png_, &info_); }

    void writeRows(const uint8_t* pixels, size_t step, int rows) override
    {
        failure_.run(png_, [&] {
            for (int y = 0; y < rows; ++y) png_write_row(png_, pixels + step * static_cast<size_t>(y));
        });
    }

    void finish() override
    {
        failure_.run(png_, [&] { png_write_end(png_, nullptr); });
    }

private:
    static constexpr int compressionLevel = 3;  // higher ones cost far more time than they save room on photographs

    void start(const Shape& shape)
    {
        png_set_write_fn(png_, this, onWrite, onFlush);
        png_set_IHDR(png_, info_, static_cast<png_uint_32>(shape.width), static_cast<png_uint_32>(shape.height), 8,
                     shape.channels == 1 ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_set_compression_level(png_, compressionLevel);
        png_write_info(png_, info_);
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

    ByteSink& sink_;
    PngFailure failure_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
};

}  // namespace

std::unique_ptr<RowReader> openPng(const std::string& path) { return std::make_unique<PngReader>(path); }

std::unique_ptr<RowWriter> makePngWriter(const Shape& shape, ByteSink& sink)
{
    return std::make_unique<PngWriter>(shape, sink);
}

}  // namespace vekpix
