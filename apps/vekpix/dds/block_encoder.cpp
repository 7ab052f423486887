#include "dds/block_encoder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "dds/ycocg.h"
#include "library_status.h"
#include "vekj.h"

namespace vekpix::dds {

namespace {

constexpr int blockSide = 4;

// The block at (x, y), the last column and row repeated.
std::array<uint8_t, 64> gather(const uint8_t* pixels, size_t step, int x, int y, int width, int rows)
{
    std::array<uint8_t, 64> block;
    for (int i = 0; i < 16; ++i) {
        const auto column = static_cast<size_t>(std::min(x + i % blockSide, width - 1));
        const auto row = static_cast<size_t>(std::min(y + i / blockSide, rows - 1));
        std::memcpy(&block[4 * static_cast<size_t>(i)], pixels + row * step + 4 * column, 4);
    }
    return block;
}

}  // namespace

BlockEncoder::BlockEncoder(Format format, std::vector<int> modes, int threads)
    : format_(format), modes_(std::move(modes)), crew_(threads)
{
}

void BlockEncoder::encode(const uint8_t* pixels, size_t step, int width, int rows, uint8_t* blocks)
{
    const int pieceBlocks = format_ == Format::Bc7 ? 16 : 1024;  // their search takes its time
    const int blocksWide = (width + blockSide - 1) / blockSide;
    const int blocksHigh = (rows + blockSide - 1) / blockSide;
    const int piecesWide = (blocksWide + pieceBlocks - 1) / pieceBlocks;
    const size_t pixelBytes = static_cast<size_t>(format_ == Format::YCoCgBc3 ? 3 : codedChannels(format_));
    crew_.run(piecesWide * blocksHigh, [&](int item) {
        const int y = item / piecesWide;
        const int first = item % piecesWide * pieceBlocks;
        const auto place = static_cast<size_t>(y) * static_cast<size_t>(blocksWide) + static_cast<size_t>(first);
        encodePiece(
            {pixels + static_cast<size_t>(y * blockSide) * step + static_cast<size_t>(first * blockSide) * pixelBytes,
             step, std::min(pieceBlocks * blockSide, width - first * blockSide),
             std::min(blockSide, rows - y * blockSide), blocks + place * blockBytes(format_)});
    });
}

void BlockEncoder::encodePiece(const Piece& piece) const
{
    const VekSize size = {piece.width, piece.rows};
    const auto step = static_cast<uint32_t>(piece.step);
    switch (format_) {
        case Format::Bc1:
            expectOk(vekiTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(piece.pixels, step, size, piece.blocks), "DXT1");
            return;
        case Format::Bc2:
            expectOk(vekiTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R(piece.pixels, step, size, piece.blocks), "DXT3");
            return;
        case Format::Bc3:
            expectOk(vekiTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(piece.pixels, step, size, piece.blocks), "DXT5");
            return;
        case Format::Bc4:
            expectOk(vekiTextureEncodeBlock_BC4_8u_C1R(piece.pixels, step, size, piece.blocks), "BC4");
            return;
        case Format::Bc5:
            expectOk(vekiTextureEncodeBlockFromRG_BC5_8u_C2C1R(piece.pixels, step, size, piece.blocks), "BC5");
            return;
        case Format::YCoCgBc3: {
            const size_t rowBytes = 3 * static_cast<size_t>(piece.width);
            std::vector<uint8_t> chroma(rowBytes * static_cast<size_t>(piece.rows));
            for (size_t y = 0; y < static_cast<size_t>(piece.rows); ++y)
                ycocgFromRgb(piece.pixels + y * piece.step, chroma.data() + y * rowBytes,
                             static_cast<size_t>(piece.width));
            expectOk(vekiTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(chroma.data(), static_cast<uint32_t>(rowBytes), size,
                                                                   piece.blocks),
                     "YCoCg DXT5");
            return;
        }
        case Format::Bc7:
            encodeBc7(piece);
            return;
        case Format::Bc6hUnsigned:
        case Format::Bc6hSigned:
            break;
    }
    throw std::logic_error("BC6H blocks are not written");
}

void BlockEncoder::encodeBc7(const Piece& piece) const
{
    uint8_t* block = piece.blocks;
    for (int x = 0; x < piece.width; x += blockSide, block += 16) {
        const std::array<uint8_t, 64> pixels = gather(piece.pixels, piece.step, x, 0, piece.width, piece.rows);
        int least = std::numeric_limits<int>::max();
        for (const int mode : modes_) {
            std::array<uint8_t, 16> candidate;
            int error = 0;
            expectOk(vekiTextureEncodeBlock4x4FromRGBA_BC7_8u_C4C1R(pixels.data(), 16, candidate.data(), &error, mode),
                     "BC7");
            if (error >= least)
                continue;
            least = error;
            std::copy(candidate.begin(), candidate.end(), block);
            if (error == 0)
                break;
        }
    }
}

}  // namespace vekpix::dds
