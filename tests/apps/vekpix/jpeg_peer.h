// The independent JPEG codec that the application is measured against, and pictures to code with it.
#ifndef VEK_TESTS_VEKPIX_JPEG_PEER_H
#define VEK_TESTS_VEKPIX_JPEG_PEER_H

#include <array>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace peer {

struct Picture {
    int width = 0;
    int height = 0;
    int channels = 0;
    std::vector<uint8_t> pixels;  // rows without gaps

    uint8_t at(int x, int y, int channel) const
    {
        return pixels[(static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) *
                          static_cast<size_t>(channels) +
                      static_cast<size_t>(channel)];
    }
};

enum class Scene {
    Soft,   // slopes and discs in the middle of the range, as photographs have them
    Harsh,  // full-range edges and noise: samples beyond 0 .. 255 before they are clipped
};

// A picture of the project's own drawing; the same for the same arguments.
Picture draw(int width, int height, int channels, Scene scene, uint64_t seed = 1);

enum class Stored { Grey, YCbCr, Rgb, Cmyk, Ycck };

// A scan of a progressive file: coefficients from `begin` to `end` in zig-zag order, bits from `high` down to `low`.
struct Scan {
    std::vector<int> components;
    int begin = 0;
    int end = 0;
    int high = 0;
    int low = 0;
};

struct WriteOptions {
    int quality = 90;
    Stored stored = Stored::YCbCr;
    std::vector<std::pair<int, int>> sampling =
        {};                   // horizontal and vertical, per component; empty for 1 x 1 throughout
    int restartInterval = 0;  // MCUs
    bool optimise = false;
    bool interleaved = true;
    bool progressive = false;      // with the peer's own scans
    std::vector<Scan> scans = {};  // or with these
    bool extended = false;         // SOF1, with four tables of each class where the components allow
    bool jfif = true;
    bool adobe = false;
};

std::vector<uint8_t> write(const Picture& picture, const WriteOptions& options);

enum class Chroma { Smooth, Replicated };

// Pixels by the exact integer transform, reduced by 1, 2, 4 or 8. Four components come as they are stored, as inks.
Picture read(std::span<const uint8_t> file, int scale = 1, Chroma chroma = Chroma::Smooth);

struct Coefficients {
    struct Component {
        int blocksWide = 0;
        int blocksHigh = 0;
        std::vector<std::array<int16_t, 64>> blocks;
    };
    std::vector<Component> components;
};

Coefficients readCoefficients(std::span<const uint8_t> file);

}  // namespace peer

#endif
