// Decoding a file in memory as the tests want it.
#ifndef VEK_TESTS_VEKPIX_DECODE_SUPPORT_H
#define VEK_TESTS_VEKPIX_DECODE_SUPPORT_H

#include <algorithm>

#include "jpeg/decoder.h"
#include "jpeg_peer.h"

namespace support {

inline peer::Picture decode(std::span<const uint8_t> file, const vekpix::jpeg::DecodeOptions& options = {})
{
    vekpix::jpeg::Decoder decoder(file, options);
    peer::Picture picture{decoder.width(), decoder.height(), decoder.channels(), {}};
    const size_t step = decoder.shape().rowBytes();
    size_t filled = 0;
    for (;;) {  // memory grows with what is decoded: a file may claim any size
        const size_t rows = static_cast<size_t>(std::min(decoder.bandRows(), picture.height));
        picture.pixels.resize((filled + rows) * step);
        const int read = decoder.readBand(picture.pixels.data() + filled * step, step);
        filled += static_cast<size_t>(read);
        if (read == 0)
            break;
    }
    picture.pixels.resize(filled * step);
    return picture;
}

}  // namespace support

#endif
