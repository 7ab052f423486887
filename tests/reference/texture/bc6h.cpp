#include <cstdlib>
#include <cstring>

#include "reference/texture/bptc.h"
#include "reference/texture/bptc_tables.h"

namespace model {
namespace {

// What each bit of a block is, from bit 0 up to the indices: three letters for the channel, the endpoint, and the
// number of the field's bit in hexadecimal. m is the mode, P the partition.
const char* const bitsOfMode[14] = {
    "m00m01G24B24B34R00R01R02R03R04R05R06R07R08R09G00G01G02G03G04G05G06G07G08G09B00B01B02B03B04"
    "B05B06B07B08B09R10R11R12R13R14G34G20G21G22G23G10G11G12G13G14B30G30G31G32G33B10B11B12B13B14"
    "B31B20B21B22B23R20R21R22R23R24B32R30R31R32R33R34B33P00P01P02P03P04",
    "m00m01G25G34G35R00R01R02R03R04R05R06B30B31B24G00G01G02G03G04G05G06B25B32G24B00B01B02B03B04"
    "B05B06B33B35B34R10R11R12R13R14R15G20G21G22G23G10G11G12G13G14G15G30G31G32G33B10B11B12B13B14"
    "B15B20B21B22B23R20R21R22R23R24R25R30R31R32R33R34R35P00P01P02P03P04",
    "m00m01m02m03m04R00R01R02R03R04R05R06R07R08R09G00G01G02G03G04G05G06G07G08G09B00B01B02B03B04"
    "B05B06B07B08B09R10R11R12R13R14R0AG20G21G22G23G10G11G12G13G0AB30G30G31G32G33B10B11B12B13B0A"
    "B31B20B21B22B23R20R21R22R23R24B32R30R31R32R33R34B33P00P01P02P03P04",
    "m00m01m02m03m04R00R01R02R03R04R05R06R07R08R09G00G01G02G03G04G05G06G07G08G09B00B01B02B03B04"
    "B05B06B07B08B09R10R11R12R13R0AG34G20G21G22G23G10G11G12G13G14G0AG30G31G32G33B10B11B12B13B0A"
    "B31B20B21B22B23R20R21R22R23B30B32R30R31R32R33G24B33P00P01P02P03P04",
    "m00m01m02m03m04R00R01R02R03R04R05R06R07R08R09G00G01G02G03G04G05G06G07G08G09B00B01B02B03B04"
    "B05B06B07B08B09R10R11R12R13R0AB24G20G21G22G23G10G11G12G13G0AB30G30G31G32G33B10B11B12B13B14"
    "B0AB20B21B22B23R20R21R22R23B31B32R30R31R32R33B34B33P00P01P02P03P04",
    "m00m01m02m03m04R00R01R02R03R04R05R06R07R08B24G00G01G02G03G04G05G06G07G08G24B00B01B02B03B04"
    "B05B06B07B08B34R10R11R12R13R14G34G20G21G22G23G10G11G12G13G14B30G30G31G32G33B10B11B12B13B14"
    "B31B20B21B22B23R20R21R22R23R24B32R30R31R32R33R34B33P00P01P02P03P04",
    "m00m01m02m03m04R00R01R02R03R04R05R06R07G34B24G00G01G02G03G04G05G06G07B32G24B00B01B02B03B04"
    "B05B06B07B33B34R10R11R12R13R14R15G20G21G22G23G10G11G12G13G14B30G30G31G32G33B10B11B12B13B14"
    "B31B20B21B22B23R20R21R22R23R24R25R30R31R32R33R34R35P00P01P02P03P04",
    "m00m01m02m03m04R00R01R02R03R04R05R06R07B30B24G00G01G02G03G04G05G06G07G25G24B00B01B02B03B04"
    "B05B06B07G35B34R10R11R12R13R14G34G20G21G22G23G10G11G12G13G14G15G30G31G32G33B10B11B12B13B14"
    "B31B20B21B22B23R20R21R22R23R24B32R30R31R32R33R34B33P00P01P02P03P04",
    "m00m01m02m03m04R00R01R02R03R04R05R06R07B31B24G00G01G02G03G04G05G06G07B25G24B00B01B02B03B04"
    "B05B06B07B35B34R10R11R12R13R14G34G20G21G22G23G10G11G12G13G14B30G30G31G32G33B10B11B12B13B14"
    "B15B20B21B22B23R20R21R22R23R24B32R30R31R32R33R34B33P00P01P02P03P04",
    "m00m01m02m03m04R00R01R02R03R04R05G34B30B31B24G00G01G02G03G04G05G25B25B32G24B00B01B02B03B04"
    "B05G35B33B35B34R10R11R12R13R14R15G20G21G22G23G10G11G12G13G14G15G30G31G32G33B10B11B12B13B14"
    "B15B20B21B22B23R20R21R22R23R24R25R30R31R32R33R34R35P00P01P02P03P04",
    "m00m01m02m03m04R00R01R02R03R04R05R06R07R08R09G00G01G02G03G04G05G06G07G08G09B00B01B02B03B04"
    "B05B06B07B08B09R10R11R12R13R14R15R16R17R18R19G10G11G12G13G14G15G16G17G18G19B10B11B12B13B14"
    "B15B16B17B18B19",
    "m00m01m02m03m04R00R01R02R03R04R05R06R07R08R09G00G01G02G03G04G05G06G07G08G09B00B01B02B03B04"
    "B05B06B07B08B09R10R11R12R13R14R15R16R17R18R0AG10G11G12G13G14G15G16G17G18G0AB10B11B12B13B14"
    "B15B16B17B18B0A",
    "m00m01m02m03m04R00R01R02R03R04R05R06R07R08R09G00G01G02G03G04G05G06G07G08G09B00B01B02B03B04"
    "B05B06B07B08B09R10R11R12R13R14R15R16R17R0BR0AG10G11G12G13G14G15G16G17G0BG0AB10B11B12B13B14"
    "B15B16B17B0BB0A",
    "m00m01m02m03m04R00R01R02R03R04R05R06R07R08R09G00G01G02G03G04G05G06G07G08G09B00B01B02B03B04"
    "B05B06B07B08B09R10R11R12R13R0FR0ER0DR0CR0BR0AG10G11G12G13G0FG0EG0DG0CG0BG0AB10B11B12B13B0F"
    "B0EB0DB0CB0BB0A"};
constexpr int baseBits[14] = {10, 7, 11, 11, 11, 9, 8, 8, 8, 6, 10, 11, 12, 16};
constexpr int otherBits[14][3] = {{5, 5, 5}, {6, 6, 6}, {5, 4, 4}, {4, 5, 4},    {4, 4, 5}, {5, 5, 5}, {6, 5, 5},
                                  {5, 6, 5}, {5, 5, 6}, {6, 6, 6}, {10, 10, 10}, {9, 9, 9}, {8, 8, 8}, {4, 4, 4}};
bool isTransformed(int mode) { return mode != 9 && mode != 10; }

int modeOf(int byte)
{
    if ((byte & 3) < 2)
        return byte & 3;
    return (byte & 3) == 2 ? 2 + (byte >> 2 & 7) : 10 + (byte >> 2 & 7);
}

int64_t signExtend(int64_t v, int bits) { return (v >> (bits - 1) & 1) != 0 ? v - (int64_t{1} << bits) : v; }

int64_t unquantiseUnsigned(int64_t x, int bits)
{
    if (bits >= 15 || x == 0)
        return x;
    if (x == (1 << bits) - 1)
        return 65535;
    return (x * 65536 + 32768) >> bits;
}
int64_t unquantiseSigned(int64_t x, int bits)
{
    if (bits >= 16)
        return x;
    const int64_t a = std::llabs(x);
    int64_t v = 0;
    if (a == (1 << (bits - 1)) - 1)
        v = 32767;
    else if (a != 0)
        v = (a * 32768 + 16384) >> (bits - 1);
    return x < 0 ? -v : v;
}

struct Fields {
    int64_t of[3][4] = {};  // of each channel: the base, and endpoints or differences
    int partition = 0;
};

// With signs where the mode has them.
Fields readFields(BlockReader& bits, int mode, bool isSigned)
{
    Fields fields;
    for (const char* p = bitsOfMode[mode]; *p != 0; p += 3) {
        const int bit = bits.take(1);
        const int number = p[2] <= '9' ? p[2] - '0' : p[2] - 'A' + 10;
        if (p[0] == 'P')
            fields.partition |= bit << number;
        else if (p[0] != 'm')
            fields.of[p[0] == 'R' ? 0 : p[0] == 'G' ? 1 : 2][p[1] - '0'] |= int64_t{bit} << number;
    }
    for (int c = 0; c < 3; ++c) {
        int64_t* const e = fields.of[c];
        if (isSigned)
            e[0] = signExtend(e[0], baseBits[mode]);
        for (int i = 1; i < 4; ++i)
            if (isSigned || isTransformed(mode))
                e[i] = signExtend(e[i], otherBits[mode][c]);
    }
    return fields;
}

}  // namespace

bool bc6hNeedsNoWrapping(const uint8_t* block, bool isSigned)
{
    const int mode = modeOf(block[0]);
    if (mode >= 14)
        return true;
    BlockReader bits(block);
    const Fields fields = readFields(bits, mode, isSigned);
    const int64_t lowest = -(int64_t{1} << (baseBits[mode] - 1));
    const int64_t largest = (int64_t{1} << (baseBits[mode] - (isSigned ? 1 : 0))) - 1;
    for (const int64_t(&e)[4] : fields.of)
        for (int i = 0; i < (mode < 10 ? 4 : 2); ++i) {
            const int64_t end = i > 0 && isTransformed(mode) ? e[0] + e[i] : e[i];
            if (isTransformed(mode) ? end < 0 || end > largest : isSigned && end == lowest)
                return false;
        }
    return true;
}

Bc6hBlock decodeBc6h(const uint8_t* block, bool isSigned)
{
    Bc6hBlock pixels{};
    const int mode = modeOf(block[0]);
    if (mode >= 14)
        return pixels;
    const int subsets = mode < 10 ? 2 : 1;
    BlockReader bits(block);
    auto [fields, partition] = readFields(bits, mode, isSigned);
    for (int64_t(&e)[4] : fields) {
        for (int i = 1; i < 4; ++i)
            if (isTransformed(mode)) {
                const int64_t s = e[0] + e[i];
                e[i] =
                    s < 0 ? s | ~((int64_t{1} << (baseBits[mode] + 1)) - 1) : s & ((int64_t{1} << baseBits[mode]) - 1);
            }
        for (int64_t& end : e)
            end = isSigned ? unquantiseSigned(end, baseBits[mode]) : unquantiseUnsigned(end, baseBits[mode]);
    }
    const int indexBits = subsets == 2 ? 3 : 4;
    for (int i = 0; i < 16; ++i) {
        const int index = bits.take(indexBits - (isAnchor(subsets, partition, i) ? 1 : 0));
        const int w = weightOf(indexBits, index);
        const int subset = subsetOf(subsets, partition, i);
        for (int c = 0; c < 3; ++c) {
            const int64_t a = fields[c][2 * subset], b = fields[c][2 * subset + 1];
            const int64_t sum = (b - a) * w + a * 64 + 32;
            uint16_t& value = pixels[static_cast<size_t>(i)][static_cast<size_t>(c)];
            if (isSigned) {
                const int64_t t = sum >> 6;
                const int64_t v = t >= 0 ? (t * 31) >> 5 : -((-t * 31) >> 5);
                value = static_cast<uint16_t>((v < 0 ? 0x8000 : 0) | std::llabs(v));
            } else {
                const uint32_t t = static_cast<uint32_t>(sum) >> 6;
                value = static_cast<uint16_t>((t * 31) >> 6);
            }
        }
    }
    return pixels;
}

}  // namespace model
