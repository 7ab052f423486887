// The bit writer of progressive AC scans. It keeps up to 63 bits in the state's buffer, the newest in bit 0; only a
// code that does not fit sends out whole bytes, 0xFF with a stuffed zero behind it.
#ifndef VEK_JPEG_ENTROPY_AC_BIT_WRITER_H
#define VEK_JPEG_ENTROPY_AC_BIT_WRITER_H

#include <algorithm>

#include "frame/checks.h"
#include "jpeg/entropy/big_endian.h"
#include "jpeg/entropy/encoder_state.h"
#include "jpeg/entropy/huffman_tables.h"

namespace q3 {

class AcBitWriter {
public:
    AcBitWriter(uint8_t* pDst, int dstLenBytes, int position, const VekEncodeHuffmanState& state)
        : dst_(pDst),
          length_(dstLenBytes),
          position_(position),
          count_(std::clamp(state.numBits, 0, mostBits)),
          bits_(state.bitBuffer)
    {  // the count of bits may be any in a state that was never initialised
    }

    void keep(int* pDstCurrPos, VekEncodeHuffmanState* pState) const
    {
        *pDstCurrPos = position_;
        pState->numBits = count_;
        pState->bitBuffer = bits_;
    }

    // The low `count` bits of `value`, at most 16.
    VekStatus put(uint32_t value, int count)
    {
        if (count_ + count > mostBits) [[unlikely]] {
            const VekStatus status = storeWholeBytes();
            if (status != vekStsOk)
                return status;
        }
        bits_ = bits_ << count | _bzhi_u32(value, static_cast<uint32_t>(count));
        count_ += count;
        return vekStsOk;
    }

    VekStatus putSymbol(const VekEncodeHuffmanSpec& table, int symbol)
    {
        const uint32_t entry = table.codes[symbol];
        VEK_CHECK(entry >> 16 != 0, vekStsJpegHuffmanTable);
        return put(entry & 0xFFFF, static_cast<int>(entry >> 16));
    }

    // The low `count` bits of `bits`, each as if put by itself.
    VekStatus putEach(uint64_t bits, int count)
    {
        while (count > 0) {
            if (count_ == mostBits) [[unlikely]] {
                const VekStatus status = storeWholeBytes();
                if (status != vekStsOk)
                    return status;
            }
            const int n = std::min(count, mostBits - count_);
            count -= n;
            bits_ = bits_ << n | _bzhi_u64(bits >> count, static_cast<uint32_t>(n));
            count_ += n;
        }
        return vekStsOk;
    }

    // Pads with 1 bits to a byte and sends everything out.
    VekStatus finish()
    {
        const int padding = -count_ & 7;
        bits_ = bits_ << padding | ((1U << padding) - 1);
        count_ += padding;
        return storeWholeBytes();
    }

private:
    static constexpr int mostBits = 63;

    [[gnu::always_inline]] VekStatus storeWholeBytes()
    {
        if (count_ >= 32 && length_ - position_ >= 8) [[likely]] {
            const uint64_t aligned = bits_ << (64 - count_);
            if (!hasByteFF(aligned)) [[likely]] {
                storeBigEndian64(dst_ + position_, aligned);
                position_ += count_ / 8;
                count_ &= 7;
                return vekStsOk;
            }
        }
        const Stored stored = storeByBytes(dst_, length_, position_, bits_, count_);
        position_ = stored.position;
        count_ = stored.count;
        return stored.status;
    }

    struct Stored {
        int position;
        int count;
        VekStatus status;
    };
    [[gnu::noinline]] static Stored storeByBytes(uint8_t* pDst, int length, int position, uint64_t bits, int count)
    {
        while (count >= 8) {
            if (position >= length)
                return {position, count, vekStsJpegOutOfBuffer};
            const auto byte = static_cast<uint8_t>(bits >> (count - 8));
            pDst[position++] = byte;
            if (byte == 0xFF) {
                if (position >= length)
                    return {position, count, vekStsJpegOutOfBuffer};
                pDst[position++] = 0;
            }
            count -= 8;
        }
        return {position, count, vekStsOk};
    }

    uint8_t* dst_;
    int length_;
    int position_;
    int count_;
    uint64_t bits_;
};

}  // namespace q3

#endif
