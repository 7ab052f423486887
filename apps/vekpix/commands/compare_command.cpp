#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "dds/decoder.h"
#include "error.h"
#include "image/band_rows.h"
#include "image/depth_rows.h"
#include "image/formats.h"
#include "io/input_file.h"
#include "jpeg/decoder.h"
#include "jpeg2000/decoder.h"
#include "tiff/tiff_rows.h"
#include "vekcore.h"

namespace vekpix {

namespace {

struct CompareArguments {
    std::string first;
    std::string second;
};

struct Difference {
    int64_t squares = 0;
    int64_t samples = 0;
    int largest = 0;

    int bits = 8;

    void add(int a, int b)
    {
        const int difference = std::abs(a - b);
        squares += int64_t{difference} * difference;
        largest = std::max(largest, difference);
        ++samples;
    }
    void add(const Difference& other)
    {
        squares += other.squares;
        samples += other.samples;
        largest = std::max(largest, other.largest);
    }
    // Peak signal-to-noise ratio in decibels; infinite for equal pictures.
    double psnr() const
    {
        const double largestValue = (1 << bits) - 1;
        return 10 *
               std::log10(largestValue * largestValue * static_cast<double>(samples) / static_cast<double>(squares));
    }
};

template <class Decoder, class Options>
std::unique_ptr<RowReader> openCoded(const std::string& path, Options options)
{
    options.threads = ownGetNumThreads();
    return std::make_unique<BandRows<Decoder>>(path, options);
}

std::unique_ptr<RowReader> openAny(const std::string& path, bool inks)
{
    switch (formatOf(path)) {
        case ImageFormat::Jpeg: {
            jpeg::DecodeOptions options;
            options.inks = inks;
            return openCoded<jpeg::Decoder>(path, options);
        }
        case ImageFormat::Jpeg2000:
        case ImageFormat::Jp2:
            return openCoded<jpeg2000::Decoder>(path, jpeg2000::DecodeOptions());
        case ImageFormat::Dds: {
            dds::DecodeOptions options;
            options.alpha = false;
            return openCoded<dds::Decoder>(path, options);
        }
        case ImageFormat::Tiff:
            return tiff::openTiff(path);
        default:
            return openPicture(path, SampleDepth::AsStored);
    }
}

std::string sizeOf(const RowReader& picture)
{
    return std::to_string(picture.width()) + " x " + std::to_string(picture.height());
}

// Differences per channel, of pictures of the same bits. A grey picture beside a coloured one counts as one of equal
// colours.
std::vector<Difference> differences(RowReader& first, RowReader& second)
{
    constexpr int bandRows = 64;
    const auto channels = static_cast<size_t>(std::max(first.channels(), second.channels()));
    std::vector<Difference> sums(channels);
    for (Difference& sum : sums) sum.bits = first.shape().bits;
    const size_t bytes = first.shape().sampleBytes();
    std::array<std::vector<uint8_t>, 2> bands;
    const std::array<RowReader*, 2> pictures = {&first, &second};
    const std::array<size_t, 2> pixelStep = {static_cast<size_t>(first.channels()),
                                             static_cast<size_t>(second.channels())};
    for (int y = 0; y < first.height(); y += bandRows) {
        const int rows = std::min(bandRows, first.height() - y);
        for (size_t i = 0; i < 2; ++i) {
            bands[i].resize(pictures[i]->shape().rowBytes() * static_cast<size_t>(rows));
            pictures[i]->readRows(bands[i].data(), pictures[i]->shape().rowBytes(), rows);
        }
        const size_t pixels = static_cast<size_t>(first.width()) * static_cast<size_t>(rows);
        for (size_t c = 0; c < channels; ++c)
            for (size_t p = 0; p < pixels; ++p)
                sums[c].add(sampleAt(bands[0].data(), p * pixelStep[0] + std::min(c, pixelStep[0] - 1), bytes),
                            sampleAt(bands[1].data(), p * pixelStep[1] + std::min(c, pixelStep[1] - 1), bytes));
    }
    return sums;
}

void print(const char* channel, const Difference& difference)
{
    std::printf("%-8s  PSNR %6.2f dB  largest difference %d\n", channel, difference.psnr(), difference.largest);
}

void compare(const CompareArguments& arguments)
{
    // Beside a PAM file a JPEG file shows its inks, if it has any.
    const bool inks = formatOf(arguments.first) == ImageFormat::Pam || formatOf(arguments.second) == ImageFormat::Pam;
    std::unique_ptr<RowReader> first = openAny(arguments.first, inks);
    std::unique_ptr<RowReader> second = openAny(arguments.second, inks);
    if ((first->channels() == 4) != (second->channels() == 4))
        throw Error("only one of the pictures consists of inks: " +
                    (first->channels() == 4 ? arguments.first : arguments.second));
    if (first->width() != second->width() || first->height() != second->height())
        throw Error("the pictures differ in size: " + arguments.first + " has " + sizeOf(*first) + " pixels, " +
                    arguments.second + " has " + sizeOf(*second));
    const int bits = std::min(first->shape().bits, second->shape().bits);
    first = withBits(std::move(first), bits);
    second = withBits(std::move(second), bits);
    const std::vector<Difference> sums = differences(*first, *second);
    if (sums.size() == 1) {
        print("grey", sums[0]);
        return;
    }
    constexpr std::array<const char*, 3> lights = {"red", "green", "blue"};
    constexpr std::array<const char*, 4> inkNames = {"cyan", "magenta", "yellow", "black"};
    Difference all;
    all.bits = bits;
    for (size_t c = 0; c < sums.size(); ++c) {
        print(sums.size() == 4 ? inkNames[c] : lights[c], sums[c]);
        all.add(sums[c]);
    }
    print("all", all);
}

}  // namespace

void addCompareCommand(CLI::App& app)
{
    auto arguments = std::make_shared<CompareArguments>();
    CLI::App* command =
        app.add_subcommand("compare", "Compares two pictures of the same size, at the smaller of their depths.");
    command->add_option("first", arguments->first, "PNG, PPM, PGM, PAM, JPEG, JPEG 2000, DDS or TIFF file")->required();
    command->add_option("second", arguments->second, "PNG, PPM, PGM, PAM, JPEG, JPEG 2000, DDS or TIFF file")
        ->required();
    command->callback([arguments] { compare(*arguments); });
}

}  // namespace vekpix
