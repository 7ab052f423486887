// The entropy-coded data of one scan (ITU T.81, Annexes F.2, G.2 and E.2.4): blocks in their order, over restart
// markers.
#ifndef VEKPIX_JPEG_ENTROPY_READER_H
#define VEKPIX_JPEG_ENTROPY_READER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "jpeg/marker_reader.h"
#include "vekj.h"

namespace vekpix::jpeg {

class EntropyReader {
public:
    // Begins with the interval that `interval` restart markers stand before; `begin` is its first byte in the file.
    EntropyReader(std::span<const uint8_t> file, size_t begin, int restartInterval, size_t interval = 0);

    // To be called before the blocks of each MCU.
    void beginMcu()
    {
        if (restartInterval_ != 0 && mcusLeft_-- == 0) [[unlikely]]
            passRestartMarker();
        if (position_ > rebaseAt) [[unlikely]]
            rebase();
    }

    // The next block, of the scan's component in the given slot.
    void readBlock(int16_t* block, size_t slot, const VekDecodeHuffmanSpec* dcTable,
                   const VekDecodeHuffmanSpec* acTable)
    {
        expectOk(vekiDecodeHuffman8x8_JPEG_1u16s_C1(base_, length_, &position_, block, &lastDc_[slot], &marker_,
                                                    dcTable, acTable, state_.get()));
    }

    // The four kinds of progressive scans (T.81, Annex G.2): each adds to what the block holds already. `low` is the
    // lowest of the bits that the scan codes.
    void readDcFirst(int16_t* block, size_t slot, int low, const VekDecodeHuffmanSpec* table)
    {
        expectOk(vekiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(base_, length_, &position_, block, &lastDc_[slot], &marker_,
                                                            low, table, state_.get()));
    }
    void refineDc(int16_t* block, int low)
    {
        expectOk(vekiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(base_, length_, &position_, block, &marker_, low,
                                                             state_.get()));
    }
    void readAcFirst(int16_t* block, int begin, int end, int low, const VekDecodeHuffmanSpec* table)
    {
        expectOk(vekiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(base_, length_, &position_, block, &marker_, begin, end,
                                                            low, table, state_.get()));
    }
    void refineAc(int16_t* block, int begin, int end, int low, const VekDecodeHuffmanSpec* table)
    {
        expectOk(vekiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(base_, length_, &position_, block, &marker_, begin, end,
                                                             low, table, state_.get()));
    }

    // Rows of differences of a lossless scan, of `count` components. An MCU is a row there.
    void readRow(int16_t** rows, int width, int count, const VekDecodeHuffmanSpec** tables)
    {
        expectOk(vekiDecodeHuffmanRow_JPEG_1u16s_C1P4(base_, length_, &position_, rows, width, count, &marker_, tables,
                                                      state_.get()));
    }

    // Behind the last MCU of an interval that is not the scan's last: what follows must be its restart marker.
    void endInterval() { passRestartMarker(); }

    // The first marker behind the blocks read so far; no value if the file has none.
    std::optional<int> markerBehind() const;

private:
    static constexpr int rebaseAt = 1 << 30;

    struct StateDeleter {
        void operator()(VekDecodeHuffmanState* state) const { vekiDecodeHuffmanStateFree_JPEG_8u(state); }
    };

    void expectOk(VekStatus status) const
    {
        if (status != vekStsOk) [[unlikely]]
            fail(status);
    }
    [[noreturn]] void fail(VekStatus status) const;
    void passRestartMarker();
    void rebase();
    void setBase(size_t offset);

    std::span<const uint8_t> data_;  // up to the end of the file
    const uint8_t* base_ = nullptr;  // the library counts in 32 bits, from here
    int length_ = 0;
    int position_ = 0;
    int marker_ = 0;
    std::array<int16_t, maxComponents> lastDc_{};
    std::unique_ptr<VekDecodeHuffmanState, StateDeleter> state_;
    int restartInterval_;
    int mcusLeft_;
    size_t interval_;
};

// The first bytes of the intervals `stride`, 2 * `stride`, ... of `count` intervals, found by their restart markers.
// No value if the markers are not those that should stand there.
std::optional<std::vector<size_t>> findIntervals(std::span<const uint8_t> file, size_t begin, size_t count,
                                                 size_t stride);

}  // namespace vekpix::jpeg

#endif
