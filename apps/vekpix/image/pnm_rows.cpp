#include "image/pnm_rows.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "error.h"
#include "io/input_file.h"

namespace vekpix {

namespace {

constexpr int maxSize = 1 << 24;  // width and height; keeps every product of them in range

class PnmReader : public RowReader {
public:
    explicit PnmReader(const std::string& path) : file_(path)
    {
        readMagic();
        shape_.width = readNumber(1, maxSize, "width");
        shape_.height = readNumber(1, maxSize, "height");
        maxValue_ = readNumber(1, 65535, "maximal value");  // and the one white-space character behind it
        samplesBegin_ = file_.position();
        if (!plain_ && file_.size() && samplesBegin_) {
            const uint64_t left = *file_.size() - static_cast<uint64_t>(*samplesBegin_);
            if (left < fileRowBytes() * static_cast<uint64_t>(height()))
                failShort();
        }
    }

    void readRows(uint8_t* pixels, size_t step, int rows) override
    {
        if (!plain_ && maxValue_ == 255 && step == shape_.rowBytes()) {
            readBytes({pixels, step * static_cast<size_t>(rows)});
            return;
        }
        for (int y = 0; y < rows; ++y) readRow({pixels + step * static_cast<size_t>(y), shape_.rowBytes()});
    }

    bool rewind() override
    {
        if (!file_.size() || !samplesBegin_)
            return false;
        file_.seek(*samplesBegin_);
        return true;
    }

private:
    [[noreturn]] void fail(const std::string& what) const { throw Error(file_.path() + ": " + what); }
    [[noreturn]] void failShort() const { fail("the file ends before its picture does"); }

    void readMagic()
    {
        const int letter = file_.get();
        const int kind = file_.get();
        if (letter != 'P' || (kind != '2' && kind != '3' && kind != '5' && kind != '6'))
            fail("no PPM or PGM picture");
        plain_ = kind <= '3';
        shape_.channels = kind == '2' || kind == '5' ? 1 : 3;
    }

    static bool isSpace(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

    // The next character outside comments, which run from '#' to the end of the line.
    int getOutsideComments()
    {
        int c = file_.get();
        if (c == '#')
            do c = file_.get();
            while (c != '\n' && c != '\r' && c != EOF);
        return c;
    }

    // A decimal number, after white space and comments, and one character behind it.
    int readNumber(int least, int most, const char* what)
    {
        int c = getOutsideComments();
        while (isSpace(c)) c = getOutsideComments();
        if (c == EOF)
            failShort();
        if (c < '0' || c > '9')
            fail(std::string("no number where its ") + what + " should stand");
        int value = 0;
        for (; c >= '0' && c <= '9'; c = getOutsideComments()) value = std::min(10 * value + (c - '0'), maxSize + 1);
        if (value < least || value > most)
            fail(std::string("its ") + what + " is outside " + std::to_string(least) + " .. " + std::to_string(most));
        return value;
    }

    uint64_t fileRowBytes() const { return uint64_t{shape_.rowBytes()} * (maxValue_ > 255 ? 2 : 1); }

    void readBytes(std::span<uint8_t> bytes)
    {
        if (file_.read(bytes) != bytes.size())
            failShort();
    }

    // maxValue_ becomes 255; to the nearest.
    uint8_t toByte(int value) const
    {
        return static_cast<uint8_t>((std::min(value, maxValue_) * 255 + maxValue_ / 2) / maxValue_);
    }

    void readRow(std::span<uint8_t> row)
    {
        if (plain_) {
            for (uint8_t& sample : row) sample = toByte(readNumber(0, maxValue_, "sample"));
        } else if (maxValue_ > 255) {
            wide_.resize(2 * row.size());
            readBytes(wide_);
            for (size_t i = 0; i < row.size(); ++i) row[i] = toByte(wide_[2 * i] << 8 | wide_[2 * i + 1]);
        } else {
            readBytes(row);
            if (maxValue_ != 255)
                for (uint8_t& sample : row) sample = toByte(sample);
        }
    }

    InputFile file_;
    bool plain_ = false;
    int maxValue_ = 0;
    std::optional<long> samplesBegin_;
    std::vector<uint8_t> wide_;
};

class PnmWriter : public RowWriter {
public:
    PnmWriter(const Shape& shape, int fileChannels, ByteSink& sink)
        : shape_(shape), fileChannels_(fileChannels), sink_(sink)
    {
        if (fileChannels < shape.channels)
            throw Error("a PGM file holds grey pictures only");
        const std::string header = "P" + std::string(fileChannels == 1 ? "5" : "6") + "\n" +
                                   std::to_string(shape.width) + " " + std::to_string(shape.height) + "\n255\n";
        sink_.write({reinterpret_cast<const uint8_t*>(header.data()), header.size()});
    }

    void writeRows(const uint8_t* pixels, size_t step, int rows) override
    {
        for (int y = 0; y < rows; ++y) {
            const std::span row(pixels + step * static_cast<size_t>(y), shape_.rowBytes());
            if (fileChannels_ == shape_.channels)
                sink_.write(row);
            else
                writeGreyAsColour(row);
        }
    }

    void finish() override {}

private:
    void writeGreyAsColour(std::span<const uint8_t> row)
    {
        colour_.clear();
        for (const uint8_t grey : row) colour_.insert(colour_.end(), 3, grey);
        sink_.write(colour_);
    }

    Shape shape_;
    int fileChannels_;
    ByteSink& sink_;
    std::vector<uint8_t> colour_;
};

}  // namespace

std::unique_ptr<RowReader> openPnm(const std::string& path) { return std::make_unique<PnmReader>(path); }

std::unique_ptr<RowWriter> makePnmWriter(const Shape& shape, int fileChannels, ByteSink& sink)
{
    return std::make_unique<PnmWriter>(shape, fileChannels, sink);
}

}  // namespace vekpix
