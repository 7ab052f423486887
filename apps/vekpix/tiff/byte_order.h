// Numbers of a TIFF file, which tells its own byte order.
#ifndef VEKPIX_TIFF_BYTE_ORDER_H
#define VEKPIX_TIFF_BYTE_ORDER_H

#include <bit>
#include <cstdint>
#include <cstring>

namespace vekpix::tiff {

enum class ByteOrder { Little, Big };

constexpr bool isForeign(ByteOrder order)
{
    return (order == ByteOrder::Big) != (std::endian::native == std::endian::big);
}

inline uint16_t inOrder(uint16_t value, ByteOrder order) { return isForeign(order) ? __builtin_bswap16(value) : value; }
inline uint32_t inOrder(uint32_t value, ByteOrder order) { return isForeign(order) ? __builtin_bswap32(value) : value; }

template <class Number>
Number load(const uint8_t* bytes, ByteOrder order)
{
    Number value = 0;
    std::memcpy(&value, bytes, sizeof value);
    return inOrder(value, order);
}

template <class Number>
void store(uint8_t* bytes, Number value, ByteOrder order)
{
    value = inOrder(value, order);
    std::memcpy(bytes, &value, sizeof value);
}

// Exchanges the bytes of words, if the order is not the machine's.
inline void reorderWords(uint8_t* bytes, size_t words, ByteOrder order)
{
    if (!isForeign(order))
        return;
    for (size_t i = 0; i < words; ++i)
        store(bytes + 2 * i, load<uint16_t>(bytes + 2 * i, ByteOrder::Little), ByteOrder::Big);
}

}  // namespace vekpix::tiff

#endif
