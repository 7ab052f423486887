// Damaged TIFF files end in a picture or in an Error of one line, and never take memory that their length does not
// account for.
#include <gtest/gtest.h>

#include <new>
#include <sstream>
#include <string>

#include "error.h"
#include "support/guarded_buffer.h"
#include "support/sanitizers.h"
#include "tiff/decoder.h"
#include "tiff/describe.h"
#include "tiff_files.h"

using support::Bytes;
using support::TiffFile;
namespace tiff = vekpix::tiff;

namespace {

enum class End { Picture, Refused };

// Decodes and describes.
End endOf(const Bytes& file)
{
    support::GuardedBytes memory(file.size());
    std::copy(file.begin(), file.end(), memory.data());
    const std::span<const uint8_t> bytes(memory.data(), file.size());
    bool refused = false;
    try {
        std::ostringstream text;
        tiff::describe(bytes, text);
    } catch (const vekpix::Error& error) {
        refused = true;
    }
    try {
        tiff::Decoder decoder(bytes);
        EXPECT_FALSE(refused);
        EXPECT_LE(decoder.shape().rowBytes() * static_cast<size_t>(decoder.height()), 64 * file.size());
        Bytes band(decoder.shape().rowBytes() * static_cast<size_t>(decoder.bandRows()));
        while (decoder.readBand(band.data(), decoder.shape().rowBytes()) != 0) {
        }
    } catch (const vekpix::Error& error) {
        const std::string line = error.what();
        EXPECT_EQ(std::string::npos, line.find('\n'));
        EXPECT_FALSE(line.empty());
        return End::Refused;
    }
    return End::Picture;
}

std::vector<Bytes> samples()
{
    std::vector<Bytes> files;
    for (const int bits : {8, 16})
        for (const bool packed : {false, true})
            for (const bool other : {false, true}) {
                const int channels = other ? 3 : 1;
                files.push_back(TiffFile(support::drawnRaster(13, 5, channels, bits),
                                         {.bigEndian = other, .packed = packed, .separate = other, .rowsPerStrip = 2})
                                    .bytes());
            }
    return files;
}

}  // namespace

TEST(TiffDamage, EveryTruncationIsRefused)
{
    for (const Bytes& file : samples()) {
        EXPECT_EQ(End::Picture, endOf(file));
        for (size_t length = 0; length < file.size(); ++length)
            EXPECT_EQ(End::Refused, endOf({file.begin(), file.begin() + static_cast<ptrdiff_t>(length)})) << length;
    }
}

TEST(TiffDamage, EveryByteMayHaveAnyValue)
{
    for (const Bytes& file : samples())
        for (size_t i = 0; i < file.size(); ++i)
            for (const int value : {0, 255, file[i] ^ 1, file[i] ^ 128, 1, 2, 3, 4, 8, 127, 128, 129, 254}) {
                if (support::underSanitizer && value != 0 && value != 255 && value != (file[i] ^ 128))
                    continue;
                Bytes damaged = file;
                damaged[i] = static_cast<uint8_t>(value);
                SCOPED_TRACE(testing::Message() << "byte " << i << " is " << value);
                endOf(damaged);
            }
}

TEST(TiffDamage, NoiseBehindTheHeader)
{
    std::mt19937 engine(3);
    for (int i = 0; i < 2000; ++i) {
        Bytes file = {'I', 'I', 42, 0, 8, 0, 0, 0, static_cast<uint8_t>(engine() % 20), 0};
        for (unsigned n = engine() % 300; n > 0; --n)
            file.push_back(static_cast<uint8_t>(engine() % 3 == 0 ? engine() : engine() % 4));
        endOf(file);
    }
}
