// Tables, blocks and streams for the tests of the Huffman coder.
#ifndef VEK_TESTS_JPEG_ENTROPY_HUFFMAN_FIXTURES_H
#define VEK_TESTS_JPEG_ENTROPY_HUFFMAN_FIXTURES_H

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "jpeg/entropy/decoder_state.h"
#include "jpeg/entropy/encoder_state.h"
#include "jpeg/entropy/huffman_tables.h"
#include "reference/jpeg/huffman.h"
#include "support/generators.h"
#include "vekj/jpeg_entropy.h"

namespace huffman {

using Block = std::array<int16_t, 64>;

inline model::HuffmanLists lists(std::initializer_list<int> bits, std::initializer_list<int> vals)
{
    model::HuffmanLists l;
    size_t i = 0;
    for (const int b : bits) l.bits[i++] = static_cast<uint8_t>(b);
    i = 0;
    for (const int v : vals) l.vals[i++] = static_cast<uint8_t>(v);
    return l;
}

// ITU T.81, Tables K.3 and K.5: luminance.
inline model::HuffmanLists luminanceDc()
{
    return lists({0, 1, 5, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
}
inline model::HuffmanLists luminanceAc()
{
    return lists(
        {0, 2, 1, 3, 3, 2, 4, 3, 5, 5, 4, 4, 0, 0, 1, 0x7D},
        {0x01, 0x02, 0x03, 0x00, 0x04, 0x11, 0x05, 0x12, 0x21, 0x31, 0x41, 0x06, 0x13, 0x51, 0x61, 0x07, 0x22, 0x71,
         0x14, 0x32, 0x81, 0x91, 0xA1, 0x08, 0x23, 0x42, 0xB1, 0xC1, 0x15, 0x52, 0xD1, 0xF0, 0x24, 0x33, 0x62, 0x72,
         0x82, 0x09, 0x0A, 0x16, 0x17, 0x18, 0x19, 0x1A, 0x25, 0x26, 0x27, 0x28, 0x29, 0x2A, 0x34, 0x35, 0x36, 0x37,
         0x38, 0x39, 0x3A, 0x43, 0x44, 0x45, 0x46, 0x47, 0x48, 0x49, 0x4A, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59,
         0x5A, 0x63, 0x64, 0x65, 0x66, 0x67, 0x68, 0x69, 0x6A, 0x73, 0x74, 0x75, 0x76, 0x77, 0x78, 0x79, 0x7A, 0x83,
         0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x8A, 0x92, 0x93, 0x94, 0x95, 0x96, 0x97, 0x98, 0x99, 0x9A, 0xA2, 0xA3,
         0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9, 0xAA, 0xB2, 0xB3, 0xB4, 0xB5, 0xB6, 0xB7, 0xB8, 0xB9, 0xBA, 0xC2, 0xC3,
         0xC4, 0xC5, 0xC6, 0xC7, 0xC8, 0xC9, 0xCA, 0xD2, 0xD3, 0xD4, 0xD5, 0xD6, 0xD7, 0xD8, 0xD9, 0xDA, 0xE1, 0xE2,
         0xE3, 0xE4, 0xE5, 0xE6, 0xE7, 0xE8, 0xE9, 0xEA, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7, 0xF8, 0xF9, 0xFA});
}

// A code that the encoder accepts, of random lengths, for `symbols` different symbols in random order.
inline model::HuffmanLists randomLists(support::Random& random, int symbols)
{
    std::array<int, 256> counts{};
    std::array<int, 256> order{};
    for (int i = 0; i < 256; ++i) order[static_cast<size_t>(i)] = i;
    for (size_t i = 255; i > 0; --i) std::swap(order[i], order[random.in<size_t>(0, i)]);
    for (int i = 0; i < symbols; ++i)
        counts[static_cast<size_t>(order[static_cast<size_t>(i)])] = 1 << random.in(0, random.in(0, 16));
    model::HuffmanLists result;
    int numVals = 0;
    model::optimalLists(counts, result, numVals);
    return result;
}

struct Tables {
    model::HuffmanLists dcLists, acLists;
    VekEncodeHuffmanSpec encodeDc{}, encodeAc{};
    VekDecodeHuffmanSpec decodeDc{}, decodeAc{};
    model::EncodeTable modelEncodeDc{}, modelEncodeAc{};
    model::DecodeTable modelDecodeDc{}, modelDecodeAc{};

    Tables(const model::HuffmanLists& dc, const model::HuffmanLists& ac) : dcLists(dc), acLists(ac)
    {
        vekiEncodeHuffmanSpecInit_JPEG_8u(dc.bits.data(), dc.vals.data(), &encodeDc);
        vekiEncodeHuffmanSpecInit_JPEG_8u(ac.bits.data(), ac.vals.data(), &encodeAc);
        vekiDecodeHuffmanSpecInit_JPEG_8u(dc.bits.data(), dc.vals.data(), &decodeDc);
        vekiDecodeHuffmanSpecInit_JPEG_8u(ac.bits.data(), ac.vals.data(), &decodeAc);
        model::buildEncodeTable(dc, modelEncodeDc);
        model::buildEncodeTable(ac, modelEncodeAc);
        model::buildDecodeTable(dc, modelDecodeDc);
        model::buildDecodeTable(ac, modelDecodeAc);
    }
};

inline Tables annexK() { return {luminanceDc(), luminanceAc()}; }

// Blocks as a stream, padded, without a marker behind it.
inline std::vector<uint8_t> streamOf(const std::vector<Block>& blocks, const Tables& tables)
{
    model::Output out;
    out.bytes.resize(blocks.size() * 600 + 16);
    model::EncoderState state;
    int16_t dc = 0;
    for (const Block& block : blocks)
        EXPECT_EQ(vekStsOk, model::encodeBlock(block, out, dc, tables.modelEncodeDc, tables.modelEncodeAc, state));
    model::flush(out, state);
    out.bytes.resize(static_cast<size_t>(out.position));
    return out.bytes;
}

// Ones and zeros as bytes, the last one padded with ones.
inline std::vector<uint8_t> bytesOf(std::string bits)
{
    while (bits.size() % 8 != 0) bits += '1';
    std::vector<uint8_t> bytes(bits.size() / 8);
    for (size_t i = 0; i < bits.size(); ++i) bytes[i / 8] = static_cast<uint8_t>(bytes[i / 8] << 1 | (bits[i] == '1'));
    return bytes;
}

// Blocks as quantisation leaves them (kind 0, 1), with many and large coefficients (2), and of any value (3).
inline Block randomBlock(support::Random& random, int kind)
{
    Block block{};
    block[0] = kind == 3 ? random.extreme<int16_t>() : random.in<int16_t>(-1000, 1000);
    const int last = kind == 0 ? random.in(0, 8) : random.in(0, 63);
    for (int k = 1; k <= last; ++k) {
        int16_t& v = block[static_cast<size_t>(model::zigzag[static_cast<size_t>(k)])];
        if (kind < 2 && random.chance(60))
            continue;
        if (kind == 2 && random.chance(20))
            continue;
        if (kind == 3 && random.chance(50))
            continue;
        v = kind == 3   ? random.extreme<int16_t>()
            : kind == 2 ? random.in<int16_t>(-1023, 1023)
                        : static_cast<int16_t>(random.in(-3, 3));
    }
    return block;
}

}  // namespace huffman

#endif
