// The tables that ITU T.81 gives as examples in its Annex K, and most encoders use.
#ifndef VEKPIX_JPEG_STANDARD_TABLES_H
#define VEKPIX_JPEG_STANDARD_TABLES_H

#include <array>
#include <cstdint>

namespace vekpix::jpeg {

// 64 steps in the order of a DQT segment: zig-zag.
using QuantizerSteps = std::array<uint8_t, 64>;

// A Huffman table as a DHT segment carries it.
struct CodeLists {
    std::array<uint8_t, 16> lengthCounts{};
    std::array<uint8_t, 256> symbols{};  // in order of code length

    int symbolCount() const;
    bool operator==(const CodeLists&) const = default;
};

extern const QuantizerSteps standardLuminanceSteps;    // Table K.1
extern const QuantizerSteps standardChrominanceSteps;  // Table K.2

extern const CodeLists standardLuminanceDc;    // Table K.3
extern const CodeLists standardChrominanceDc;  // Table K.4
extern const CodeLists standardLuminanceAc;    // Table K.5
extern const CodeLists standardChrominanceAc;  // Table K.6

}  // namespace vekpix::jpeg

#endif
