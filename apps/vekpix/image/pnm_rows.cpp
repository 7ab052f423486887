#include "image/pnm_rows.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>
#include <vector>

#include "error.h"
#include "io/input_file.h"

namespace vekpix {

namespace {

constexpr int maxSize = 1 << 24;  // width and height; keeps every product of them in range

class PnmReader : public RowReader {
public:
    PnmReader(const std::string& path, SampleDepth depth) : file_(path)
    {
        readMagic();
        if (arbitrary_) {
            readPamHeader();
        } else {
            shape_.width = readNumber(1, maxSize, "width");
            shape_.height = readNumber(1, maxSize, "height");
            maxValue_ = readNumber(1, mostValue, "maximal value");  // and the one white-space character behind it
        }
        if (depth == SampleDepth::AsStored)
            shape_.bits = std::max(8, static_cast<int>(std::bit_width(static_cast<unsigned>(maxValue_))));
        samplesBegin_ = file_.position();
        if (file_.size() && samplesBegin_) {
            const uint64_t left = *file_.size() - static_cast<uint64_t>(*samplesBegin_);
            if (left < leastFileBytes())
                failShort();
        }
    }

    void readRows(uint8_t* pixels, size_t step, int rows) override
    {
        if (!plain_ && maxValue_ == 255 && step == shape_.rowBytes()) {
            readBytes({pixels, step * static_cast<size_t>(rows)});
            return;
        }
        for (int y = 0; y < rows; ++y) readRow(pixels + step * static_cast<size_t>(y));
    }

    bool rewind() override
    {
        if (!file_.size() || !samplesBegin_)
            return false;
        file_.seek(*samplesBegin_);
        return true;
    }

private:
    static constexpr int mostValue = 65535;

    [[noreturn]] void fail(const std::string& what) const { throw Error(file_.path() + ": " + what); }
    [[noreturn]] void failShort() const { fail("the file ends before its picture does"); }

    void readMagic()
    {
        const int letter = file_.get();
        const int kind = file_.get();
        if (letter != 'P' || (kind != '2' && kind != '3' && kind != '5' && kind != '6' && kind != '7'))
            fail("no PPM, PGM or PAM picture");
        plain_ = kind <= '3';
        arbitrary_ = kind == '7';
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

    // A word, after white space and comments, and one character behind it.
    std::string readWord()
    {
        int c = getOutsideComments();
        while (isSpace(c)) c = getOutsideComments();
        std::string word;
        for (; c != EOF && !isSpace(c) && word.size() < longestWord; c = file_.get()) word += static_cast<char>(c);
        return word;
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

    void readPamHeader()
    {
        shape_.channels = 0;
        std::string tupleType;
        for (;;) {
            const std::string word = readWord();
            if (word == "ENDHDR")
                break;
            if (word == "WIDTH")
                shape_.width = readNumber(1, maxSize, "width");
            else if (word == "HEIGHT")
                shape_.height = readNumber(1, maxSize, "height");
            else if (word == "DEPTH")
                shape_.channels = readNumber(1, mostValue, "depth");
            else if (word == "MAXVAL")
                maxValue_ = readNumber(1, mostValue, "maximal value");
            else if (word == "TUPLTYPE")
                tupleType = readWord();
            else
                fail("damaged PAM header");
        }
        if (shape_.width == 0 || shape_.height == 0 || shape_.channels == 0 || maxValue_ == 0)
            fail("incomplete PAM header");
        if ((shape_.channels == 1 && (tupleType.empty() || tupleType == "GRAYSCALE" || tupleType == "BLACKANDWHITE")) ||
            (shape_.channels == 3 && (tupleType.empty() || tupleType == "RGB")) ||
            (shape_.channels == 4 && tupleType == "CMYK"))
            return;
        if ((shape_.channels == 2 && tupleType == "GRAYSCALE_ALPHA") ||
            (shape_.channels == 4 && tupleType == "RGB_ALPHA")) {
            shape_.alpha = true;
            return;
        }
        fail("PAM pictures of " + std::to_string(shape_.channels) + " channels" +
             (tupleType.empty() ? "" : " and type " + tupleType) + " are not supported");
    }

    // What the samples take in the file: of plain ones a digit each, and white space between them.
    uint64_t leastFileBytes() const
    {
        const uint64_t samples = uint64_t{shape_.rowSamples()} * static_cast<uint64_t>(height());
        return plain_ ? 2 * samples - 1 : samples * (maxValue_ > 255 ? 2 : 1);
    }

    void readBytes(std::span<uint8_t> bytes)
    {
        if (file_.read(bytes) != bytes.size())
            failShort();
    }

    // maxValue_ becomes the largest value of the bits; to the nearest.
    uint32_t scaled(int value) const
    {
        const uint32_t largest = (1U << shape_.bits) - 1;
        const auto most = static_cast<uint32_t>(maxValue_);
        return (std::min(static_cast<uint32_t>(value), most) * largest + most / 2) / most;
    }

    void store(uint8_t* row, size_t index, int value) const
    {
        const uint32_t sample = scaled(value);
        if (shape_.bits > 8) {
            const auto word = static_cast<uint16_t>(sample);
            std::memcpy(row + 2 * index, &word, sizeof word);
        } else {
            row[index] = static_cast<uint8_t>(sample);
        }
    }

    void readRow(uint8_t* row)
    {
        const size_t samples = shape_.rowSamples();
        if (plain_) {
            for (size_t i = 0; i < samples; ++i) store(row, i, readNumber(0, maxValue_, "sample"));
        } else if (maxValue_ > 255) {
            wide_.resize(2 * samples);
            readBytes(wide_);
            for (size_t i = 0; i < samples; ++i) store(row, i, wide_[2 * i] << 8 | wide_[2 * i + 1]);
        } else {
            readBytes({row, samples});
            if (maxValue_ != 255)
                for (size_t i = 0; i < samples; ++i) store(row, i, row[i]);
        }
    }

    static constexpr size_t longestWord = 64;

    InputFile file_;
    bool plain_ = false;
    bool arbitrary_ = false;
    int maxValue_ = 0;
    std::optional<long> samplesBegin_;
    std::vector<uint8_t> wide_;
};

class PnmWriter : public RowWriter {
public:
    PnmWriter(const Shape& shape, PnmKind kind, ByteSink& sink)
        : shape_(shape), copies_(kind == PnmKind::Ppm && shape.channels == 1 ? 3 : 1), sink_(sink)
    {
        if (kind == PnmKind::Pgm && shape.colours() != 1)
            throw Error("a PGM file holds grey pictures only");
        if (kind == PnmKind::Ppm && shape.inks())
            throw Error("a PPM file holds no picture of inks");
        if (kind != PnmKind::Pam && shape.alpha)
            throw Error("PGM and PPM files hold no alpha");
        const std::string width = std::to_string(shape.width);
        const std::string height = std::to_string(shape.height);
        const std::string largest = std::to_string((1 << shape.bits) - 1);
        std::string header;
        if (kind == PnmKind::Pam) {
            std::string type = shape.colours() == 1 ? "GRAYSCALE" : shape.colours() == 3 ? "RGB" : "CMYK";
            if (shape.alpha)
                type += "_ALPHA";
            header = "P7\nWIDTH " + width + "\nHEIGHT " + height + "\nDEPTH " + std::to_string(shape.channels) +
                     "\nMAXVAL " + largest + "\nTUPLTYPE " + type + "\nENDHDR\n";
        } else {
            header = (kind == PnmKind::Pgm ? "P5\n" : "P6\n") + width + " " + height + "\n" + largest + "\n";
        }
        sink_.write({reinterpret_cast<const uint8_t*>(header.data()), header.size()});
    }

    void writeRows(const uint8_t* pixels, size_t step, int rows) override
    {
        for (int y = 0; y < rows; ++y) {
            const std::span row(pixels + step * static_cast<size_t>(y), shape_.rowBytes());
            if (copies_ == 1 && shape_.bits == 8)
                sink_.write(row);
            else
                writeConverted(row);
        }
    }

    void finish() override {}

private:
    // Big-endian words; of a grey picture in colours, three times each sample.
    void writeConverted(std::span<const uint8_t> row)
    {
        bytes_.clear();
        const size_t sampleBytes = shape_.sampleBytes();
        for (size_t i = 0; i < row.size(); i += sampleBytes)
            for (int copy = 0; copy < copies_; ++copy)
                for (size_t byte = sampleBytes; byte-- > 0;) bytes_.push_back(row[i + byte]);
        sink_.write(bytes_);
    }

    Shape shape_;
    int copies_;
    ByteSink& sink_;
    std::vector<uint8_t> bytes_;
};

}  // namespace

std::unique_ptr<RowReader> openPnm(const std::string& path, SampleDepth depth)
{
    return std::make_unique<PnmReader>(path, depth);
}

std::unique_ptr<RowWriter> makePnmWriter(const Shape& shape, PnmKind kind, ByteSink& sink)
{
    return std::make_unique<PnmWriter>(shape, kind, sink);
}

}  // namespace vekpix
