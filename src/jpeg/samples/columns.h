// Columns of a row of pixels, and the way in which a kernel of 32 columns is run along a row of any width.
#ifndef VEK_JPEG_SAMPLES_COLUMNS_H
#define VEK_JPEG_SAMPLES_COLUMNS_H

#include <array>
#include <cstdint>
#include <cstring>
#include <tuple>
#include <type_traits>
#include <utility>

#include "frame/vec.h"

namespace q3 {

constexpr int columnsPerBlock = 32;

// Where column 0 lies in each of `Planes` planes, of `PixelBytes` bytes a sample, one sample for `ColumnsPerSample`
// columns.
template <typename Byte, int Planes, int PixelBytes, int ColumnsPerSample>
struct Columns {
    std::array<Byte*, Planes> p;

    Byte* operator[](int plane) const { return p[static_cast<size_t>(plane)]; }
    Columns at(int column) const
    {
        // Not a loop: the pointers have to stay in registers.
        const int64_t bytes = int64_t{column / ColumnsPerSample} * PixelBytes;
        return [&]<size_t... I>(std::index_sequence<I...>) { return Columns{{(p[I] + bytes)...}}; }
        (std::make_index_sequence<Planes>());
    }
    static constexpr size_t bytesOf(int columns)
    {
        return static_cast<size_t>(columns / ColumnsPerSample * PixelBytes);
    }
};
template <int Planes, int PixelBytes = 1>
using Source = Columns<const uint8_t, Planes, PixelBytes, 1>;
template <int Planes, int PixelBytes = 1>
using Destination = Columns<uint8_t, Planes, PixelBytes, 1>;
using ChromaSource = Columns<const uint8_t, 2, 1, 2>;
using ChromaDestination = Columns<uint8_t, 2, 1, 2>;

// Room for one block of columns, for the end of a row.
template <typename T>
class BlockBuffer;
template <typename Byte, int Planes, int PixelBytes, int ColumnsPerSample>
class BlockBuffer<Columns<Byte, Planes, PixelBytes, ColumnsPerSample>> {
public:
    using Operand = Columns<Byte, Planes, PixelBytes, ColumnsPerSample>;

    Operand columns()
    {
        Operand all{};
        for (size_t i = 0; i < Planes; ++i) all.p[i] = bytes_[i].data();
        return all;
    }
    void copyFrom(Operand src, int count)
    {
        if constexpr (std::is_const_v<Byte>)
            for (size_t i = 0; i < Planes; ++i) std::memcpy(bytes_[i].data(), src.p[i], Operand::bytesOf(count));
    }
    void copyTo(Operand dst, int count) const
    {
        if constexpr (!std::is_const_v<Byte>)
            for (size_t i = 0; i < Planes; ++i) std::memcpy(dst.p[i], bytes_[i].data(), Operand::bytesOf(count));
    }

private:
    alignas(32) std::array<std::array<uint8_t, Operand::bytesOf(columnsPerBlock)>, Planes> bytes_{};
};

// Runs kernel(operands...), which makes 32 columns, on `count` columns. The last few go through buffers: nothing
// outside the columns is touched, and a source may be its own destination.
template <typename Kernel, typename... Operands>
inline void forEachBlock(int count, const Kernel& kernel, Operands... operands)
{
    int x = 0;
    for (; x <= count - columnsPerBlock; x += columnsPerBlock) kernel(operands.at(x)...);
    if (x == count)
        return;
    std::tuple<BlockBuffer<Operands>...> buffers;
    std::apply(
        [&](auto&... buffer) {
            (buffer.copyFrom(operands.at(x), count - x), ...);
            kernel(buffer.columns()...);
            (buffer.copyTo(operands.at(x), count - x), ...);
        },
        buffers);
}

}  // namespace q3

#endif
