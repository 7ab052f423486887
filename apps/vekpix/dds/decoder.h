// One picture of a DDS file becomes pixels, band by band.
#ifndef VEKPIX_DDS_DECODER_H
#define VEKPIX_DDS_DECODER_H

#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "dds/block_decoder.h"
#include "image/rows.h"

namespace vekpix::dds {

struct DecodeOptions {
    int level = 0;
    std::optional<Face> face;  // of a cube: the first that the file holds
    uint32_t layer = 0;        // of an array
    bool alpha = true;         // keeps alpha where the format has it
    bool ycocg = false;        // takes BC3 for Y, Co, Cg and their scale, whatever the file tells
    int threads = 1;
};

// A texture and the picture of it that the options choose. An Error if it is not there, or not whole.
struct Chosen {
    Texture texture;
    Surface surface;
};
Chosen choose(std::span<const uint8_t> file, const DecodeOptions& options);

// Textures of 8-bit channels, from the top: BC4 gives grey, BC5 red and green with no blue. The file's bytes must
// outlive the decoder.
class Decoder {
public:
    Decoder(std::span<const uint8_t> file, const DecodeOptions& options);

    const Shape& shape() const { return shape_; }
    int bandRows() const { return bandRows_; }
    // Stores the next band at `pixels`, its rows `step` bytes apart. Returns its number of rows, 0 behind the last.
    int readBand(uint8_t* pixels, size_t step);

private:
    Decoder(const Chosen& chosen, std::span<const uint8_t> file, const DecodeOptions& options);
    void storeRow(const uint8_t* decoded, uint8_t* pixels) const;

    static constexpr int bandRows_ = 64;

    Format format_;
    Shape shape_;
    BlockDecoder blocks_;
    int nextRow_ = 0;
    std::vector<uint8_t> decoded_;
};

}  // namespace vekpix::dds

#endif
