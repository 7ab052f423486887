// The probability states of the MQ coder (ISO/IEC 15444-1, Annex C) and the contexts of code-blocks (Annex D).
#ifndef VEK_JPEG2K_CODEBLOCK_MQ_STATES_H
#define VEK_JPEG2K_CODEBLOCK_MQ_STATES_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace q3 {

// Table C.2.
struct MqEstimate {
    uint16_t qe;
    uint8_t nextIfMps;
    uint8_t nextIfLps;
    bool switches;
};
constexpr std::array<MqEstimate, 47> owniEstimator_JPEG2K = {{
    {0x5601, 1, 1, true},    {0x3401, 2, 6, false},   {0x1801, 3, 9, false},   {0x0AC1, 4, 12, false},
    {0x0521, 5, 29, false},  {0x0221, 38, 33, false}, {0x5601, 7, 6, true},    {0x5401, 8, 14, false},
    {0x4801, 9, 14, false},  {0x3801, 10, 14, false}, {0x3001, 11, 17, false}, {0x2401, 12, 18, false},
    {0x1C01, 13, 20, false}, {0x1601, 29, 21, false}, {0x5601, 15, 14, true},  {0x5401, 16, 14, false},
    {0x5101, 17, 15, false}, {0x4801, 18, 16, false}, {0x3801, 19, 17, false}, {0x3401, 20, 18, false},
    {0x3001, 21, 19, false}, {0x2801, 22, 19, false}, {0x2401, 23, 20, false}, {0x2201, 24, 21, false},
    {0x1C01, 25, 22, false}, {0x1801, 26, 23, false}, {0x1601, 27, 24, false}, {0x1401, 28, 25, false},
    {0x1201, 29, 26, false}, {0x1101, 30, 27, false}, {0x0AC1, 31, 28, false}, {0x09C1, 32, 29, false},
    {0x08A1, 33, 30, false}, {0x0521, 34, 31, false}, {0x0441, 35, 32, false}, {0x02A1, 36, 33, false},
    {0x0221, 37, 34, false}, {0x0141, 38, 35, false}, {0x0111, 39, 36, false}, {0x0085, 40, 37, false},
    {0x0049, 41, 38, false}, {0x0025, 42, 39, false}, {0x0015, 43, 40, false}, {0x0009, 44, 41, false},
    {0x0005, 45, 42, false}, {0x0001, 45, 43, false}, {0x5601, 46, 46, false},
}};

// A state together with its more probable symbol in one word: Qe in the high half, the symbol in bit 0, and in bits 1
// to 7 and 8 to 14 where mqStates goes on after the more and after the less probable symbol.
constexpr std::array<uint32_t, 94> mqStates = [] {
    std::array<uint32_t, 94> t{};
    for (uint32_t i = 0; i < t.size(); ++i) {
        const MqEstimate& e = owniEstimator_JPEG2K[i / 2];
        const uint32_t mps = i % 2;
        const uint32_t afterMps = e.nextIfMps * 2U + mps;
        const uint32_t afterLps = e.nextIfLps * 2U + (e.switches ? 1 - mps : mps);
        t[i] = uint32_t{e.qe} << 16 | afterLps << 8 | afterMps << 1 | mps;
    }
    return t;
}();
constexpr uint32_t probabilityOf(uint32_t state) { return state & 0xFFFF0000; }  // scaled as the interval's width is
constexpr uint32_t symbolOf(uint32_t state) { return state & 1; }
// All ones or zeros tell whether it was the more probable symbol.
constexpr uint32_t stateAfter(uint32_t state, uint32_t isMps) { return mqStates[state >> (8 - (7 & isMps)) & 0x7F]; }
static_assert(mqStates[0] == 0x56010304 && symbolOf(stateAfter(mqStates[0], 0)) == 1);

// The contexts by number: the labels of Tables D.1 to D.4 plus 2 behind the two that stand alone.
constexpr uint32_t uniformContext = 0;
constexpr uint32_t runLengthContext = 1;
constexpr uint32_t firstZeroContext = 2;
constexpr uint32_t firstSignContext = 11;
constexpr uint32_t firstRefinementContext = 16;

using MqContexts = std::array<uint32_t, 19>;  // their states
constexpr MqContexts initialContexts = [] {
    MqContexts t{};
    for (uint32_t& state : t) state = mqStates[0];
    t[uniformContext] = mqStates[2 * 46];
    t[runLengthContext] = mqStates[2 * 3];
    t[firstZeroContext] = mqStates[2 * 4];
    return t;
}();

}  // namespace q3

#endif
