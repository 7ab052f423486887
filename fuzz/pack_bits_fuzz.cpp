// PackBits rows of any bytes, rooms and lengths: both functions as their models, the bytes behind untouched; what is
// packed comes back.
#include <algorithm>
#include <vector>

#include "input.h"
#include "reference/tiff/pack_bits.h"
#include "vekj.h"

namespace {

using fuzz::require;
using Row = std::vector<uint8_t>;

constexpr uint8_t untouched = 0xA5;

// Unpacks from any place; the memory of the source ends where it does, unless the byte behind it is to be read.
void unpack(Row packed, int begin, int length)
{
    const auto size = static_cast<int>(packed.size());
    const model::Unpacked expected = model::unpack(packed, begin, length, 0x5C);
    if (expected.position > size)
        packed.push_back(0x5C);
    packed.shrink_to_fit();
    Row row(static_cast<size_t>(length), untouched);
    int position = begin;
    require(vekiUnpackBitsRow_TIFF_8u_C1(packed.data(), &position, size, row.data(), length) == expected.status);
    require(position == expected.position);
    Row whole = expected.bytes;
    whole.resize(row.size(), untouched);
    require(row == whole);
}

void pack(const Row& row, int room)
{
    Row packed(static_cast<size_t>(room), untouched);
    int position = 0;
    const VekStatus status =
        vekiPackBitsRow_TIFF_8u_C1(row.data(), static_cast<int>(row.size()), packed.data(), &position, room);
    Row expected;
    bool fits = true;
    for (const Row& packet : model::packetsOf(row)) {
        fits = fits && expected.size() + packet.size() <= packed.size();
        if (fits)
            expected.insert(expected.end(), packet.begin(), packet.end());
    }
    require(status == (fits ? vekStsOk : vekStsTiffRowFormat));
    require(position == static_cast<int>(expected.size()));
    require(std::equal(expected.begin(), expected.end(), packed.begin()));
    if (!fits)
        return;
    require(std::all_of(packed.begin() + position, packed.end(), [](uint8_t byte) { return byte == untouched; }));
    unpack(expected, 0, static_cast<int>(row.size()));
}

// Short input stands for long rows, too: each byte tells the length of a run, and the next one its value.
Row stretched(const Row& bytes)
{
    Row row;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) row.insert(row.end(), 1 + bytes[i] % 200U, bytes[i + 1]);
    return row;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Bytes bytes(data, size);
    const int number = 1 + (bytes.next() << 8 | bytes.next()) % 12000;
    const int begin = bytes.next();
    const Row rest = bytes.rest();
    if (rest.empty())
        return 0;
    unpack(rest, 0, number);
    unpack(rest, begin % (static_cast<int>(rest.size()) + 1), number);
    pack(rest, number);
    if (const Row row = stretched(rest); !row.empty())
        pack(row, number);
    return 0;
}
