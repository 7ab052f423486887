// The next level of mipmaps: half the width and height, rounded down, at least 1.
#ifndef VEKPIX_DDS_HALF_SIZE_H
#define VEKPIX_DDS_HALF_SIZE_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vekpix::dds {

// A pixel is the mean of the area that it covers, exact and rounded to the nearest: of 2 x 2 pixels, or of up to 3 in a
// direction in which the size is odd, those at the ends in part. With four channels colours count by their alpha, so
// that what is transparent leaves no fringes; where all is transparent they count alike.
class HalfSize {
public:
    HalfSize(int width, int height, int channels);

    int width() const { return across_.to; }
    int height() const { return down_.to; }
    // Takes the next row, and stores a row of the result at `half` if it completes one: then true.
    bool takeRow(const uint8_t* row, uint8_t* half);

private:
    // `from` pixels become `to`. In units in which a pixel of the source is `unit` wide, one of the result is `span`.
    struct Direction {
        explicit Direction(int size);
        int from;
        int to;
        int64_t unit;
        int64_t span;
    };

    void sumAcross(const uint8_t* row);
    void addRow(uint64_t weight);
    void storeRow(uint8_t* half) const;

    Direction across_;
    Direction down_;
    size_t channels_;
    size_t sums_;      // of a pixel: of its channels; with alpha, also of colours by alpha
    int64_t top_ = 0;  // of the next row
    std::vector<uint64_t> row_;
    std::vector<uint64_t> total_;
};

}  // namespace vekpix::dds

#endif
