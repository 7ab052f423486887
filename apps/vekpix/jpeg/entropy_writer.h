// The entropy-coded data of a scan (ITU T.81, Annex F.1.2 and E.1.4), and the Huffman tables that suit it best.
#ifndef VEKPIX_JPEG_ENTROPY_WRITER_H
#define VEKPIX_JPEG_ENTROPY_WRITER_H

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "io/byte_sink.h"
#include "jpeg/mcu_transform.h"
#include "jpeg/standard_tables.h"
#include "vekj.h"

namespace vekpix::jpeg {

// The Huffman tables of a scan: of luminance, then of chrominance.
struct ScanTables {
    std::array<CodeLists, 2> dc;
    std::array<CodeLists, 2> ac;
};

struct EncoderTableDeleter {
    void operator()(VekEncodeHuffmanSpec* table) const { vekiEncodeHuffmanSpecFree_JPEG_8u(table); }
};
using EncoderTable = std::unique_ptr<VekEncodeHuffmanSpec, EncoderTableDeleter>;

EncoderTable makeEncoderTable(const CodeLists& lists);

class EncoderTables {
public:
    explicit EncoderTables(const ScanTables& lists);
    const VekEncodeHuffmanSpec* dc(size_t table) const { return dc_[table].get(); }
    const VekEncodeHuffmanSpec* ac(size_t table) const { return ac_[table].get(); }

private:
    std::array<EncoderTable, 2> dc_;
    std::array<EncoderTable, 2> ac_;
};

struct EncoderStateDeleter {
    void operator()(VekEncodeHuffmanState* state) const { vekiEncodeHuffmanStateFree_JPEG_8u(state); }
};
using EncoderState = std::unique_ptr<VekEncodeHuffmanState, EncoderStateDeleter>;

EncoderState makeEncoderState();

// What becomes of the MCUs of a scan: bytes or statistics. MCUs come in their order, and a coder may begin with any MCU
// that begins a restart interval, so that several coders can share a scan.
struct ScanLayout {
    McuLayout layout;
    int restartInterval;  // MCUs; 0: none
    int64_t mcus;         // of the whole scan

    size_t componentOf(int block) const { return layout.componentOf(block); }
    size_t tableOf(size_t component) const { return layout.isChroma(component) ? 1 : 0; }
    // True behind the last MCU of an interval other than the last.
    bool restartsBehind(int64_t mcu) const
    {
        return restartInterval != 0 && (mcu + 1) % restartInterval == 0 && mcu + 1 < mcus;
    }
};

// Writes the scan's data: blocks, restart markers, and the padding at the end.
class EntropyWriter {
public:
    EntropyWriter(const ScanLayout& layout, const EncoderTables& tables);

    void code(const int16_t* blocks, int64_t mcu);
    // Hands over the bytes so far.
    void drain(ByteSink& sink);

private:
    void pad();

    ScanLayout layout_;
    const EncoderTables* tables_;
    EncoderState state_ = makeEncoderState();
    std::array<int16_t, 4> lastDc_{};
    std::vector<uint8_t> bytes_;
    int length_ = 0;  // of what is used of bytes_
};

// How often each symbol occurs in a scan.
struct SymbolStatistics {
    using Counts = std::array<int64_t, 256>;
    std::array<Counts, 2> dc{};
    std::array<Counts, 2> ac{};

    ScanTables optimalTables() const;
};

// The shortest code for symbols of these counts.
CodeLists optimalCode(const SymbolStatistics::Counts& counts);

// Counts the symbols instead of writing them.
class EntropyCounter {
public:
    explicit EntropyCounter(const ScanLayout& layout) : layout_(layout) {}

    void code(const int16_t* blocks, int64_t mcu);
    void drain(SymbolStatistics& statistics);

private:
    using Counts = std::array<int, 256>;

    ScanLayout layout_;
    std::array<int16_t, 4> lastDc_{};
    std::array<Counts, 2> dc_{};
    std::array<Counts, 2> ac_{};
};

}  // namespace vekpix::jpeg

#endif
