// Models of one level of the wavelet transform of a whole tile-component, line by line (ISO/IEC 15444-1, Annex F).
#ifndef VEK_TESTS_REFERENCE_JPEG2K_WAVELET_TILE_H
#define VEK_TESTS_REFERENCE_JPEG2K_WAVELET_TILE_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace model {

enum class Filter { Reversible53, Irreversible97 };

// A line in natural order to its low-pass samples followed by its high-pass ones, and back. The phase is the parity of
// the first sample's position.
std::vector<int16_t> forwardLine(Filter filter, const std::vector<int16_t>& line, int phase);
std::vector<int32_t> forwardLine(Filter filter, const std::vector<int32_t>& line, int phase);
std::vector<int16_t> inverseLine(Filter filter, const std::vector<int16_t>& line, int phase);
std::vector<int32_t> inverseLine(Filter filter, const std::vector<int32_t>& line, int phase);

// A block of rows, in place: all columns, then all rows; or back.
template <typename T>
struct Block {
    int width, height;
    std::vector<T> samples;

    T& at(int x, int y)
    {
        return samples[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
};
template <typename T>
void forwardTile(Filter filter, Block<T>& block, int phaseX, int phaseY);
template <typename T>
void inverseTile(Filter filter, Block<T>& block, int phaseX, int phaseY);

}  // namespace model

#endif
