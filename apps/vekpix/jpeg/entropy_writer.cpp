#include "jpeg/entropy_writer.h"

#include <algorithm>
#include <numeric>

#include "jpeg/markers.h"
#include "library_status.h"

namespace vekpix::jpeg {

namespace {

// A coefficient takes a code of at most 16 bits and at most 15 more bits; every byte may need a stuffed one behind it.
constexpr size_t maxBlockBytes = 2 * (blockSize * (16 + 15) / 8);
constexpr size_t fastPathBytes = 32;  // room behind a block with which the library still codes at full speed
constexpr size_t maxMcuBytes = maxBlocksPerMcu * maxBlockBytes + fastPathBytes + 4;  // 4: padding and restart marker

// Sums in the table builder stay below its bound of 10^9.
constexpr int64_t maxCountSum = 500'000'000;

}  // namespace

EncoderTable makeEncoderTable(const CodeLists& lists)
{
    VekEncodeHuffmanSpec* table = nullptr;
    const VekStatus status =
        vekiEncodeHuffmanSpecInitAlloc_JPEG_8u(lists.lengthCounts.data(), lists.symbols.data(), &table);
    if (table == nullptr)
        throw std::bad_alloc();
    EncoderTable owner(table);
    expectOk(status, "Huffman table");
    return owner;
}

EncoderTables::EncoderTables(const ScanTables& lists)
    : dc_{makeEncoderTable(lists.dc[0]), makeEncoderTable(lists.dc[1])},
      ac_{makeEncoderTable(lists.ac[0]), makeEncoderTable(lists.ac[1])}
{
}

EncoderState makeEncoderState()
{
    VekEncodeHuffmanState* state = nullptr;
    if (vekiEncodeHuffmanStateInitAlloc_JPEG_8u(&state) != vekStsOk)
        throw std::bad_alloc();
    return EncoderState(state);
}

EntropyWriter::EntropyWriter(const ScanLayout& layout, const EncoderTables& tables) : layout_(layout), tables_(&tables)
{
    bytes_.resize(16 * maxMcuBytes);
}

void EntropyWriter::code(const int16_t* blocks, int64_t mcu)
{
    if (bytes_.size() - static_cast<size_t>(length_) < maxMcuBytes)
        bytes_.resize(2 * bytes_.size());
    const int room = static_cast<int>(bytes_.size());
    for (int b = 0; b < layout_.layout.blocksPerMcu(); ++b) {
        const size_t component = layout_.componentOf(b);
        const size_t table = layout_.tableOf(component);
        expectOk(vekiEncodeHuffman8x8_JPEG_16s1u_C1(blocks + blockSize * static_cast<size_t>(b), bytes_.data(), room,
                                                    &length_, &lastDc_[component], tables_->dc(table),
                                                    tables_->ac(table), state_.get(), 0),
                 "Huffman coding");
    }
    if (layout_.restartsBehind(mcu)) {
        pad();
        const int64_t interval = mcu / layout_.restartInterval;
        bytes_[static_cast<size_t>(length_++)] = 0xFF;
        bytes_[static_cast<size_t>(length_++)] = static_cast<uint8_t>(RST0 + interval % 8);
    } else if (mcu + 1 == layout_.mcus) {
        pad();
    }
}

void EntropyWriter::pad()
{
    const int room = static_cast<int>(bytes_.size());
    expectOk(vekiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, bytes_.data(), room, &length_, nullptr, nullptr, nullptr,
                                                state_.get(), 1),
             "Huffman coding");
    lastDc_ = {};
}

void EntropyWriter::drain(ByteSink& sink)
{
    sink.write({bytes_.data(), static_cast<size_t>(length_)});
    length_ = 0;
}

CodeLists optimalCode(const SymbolStatistics::Counts& counts)
{
    const int64_t sum = std::accumulate(counts.begin(), counts.end(), int64_t{0});
    const int64_t divisor = sum / maxCountSum + 1;
    std::array<int, 256> scaled{};
    for (size_t i = 0; i < counts.size(); ++i) scaled[i] = static_cast<int>((counts[i] + divisor - 1) / divisor);
    CodeLists lists;
    expectOk(vekiEncodeHuffmanRawTableInit_JPEG_8u(scaled.data(), lists.lengthCounts.data(), lists.symbols.data()),
             "Huffman table");
    return lists;
}

ScanTables SymbolStatistics::optimalTables() const
{
    return {{optimalCode(dc[0]), optimalCode(dc[1])}, {optimalCode(ac[0]), optimalCode(ac[1])}};
}

void EntropyCounter::code(const int16_t* blocks, int64_t mcu)
{
    for (int b = 0; b < layout_.layout.blocksPerMcu(); ++b) {
        const size_t component = layout_.componentOf(b);
        const size_t table = layout_.tableOf(component);
        expectOk(vekiGetHuffmanStatistics8x8_JPEG_16s_C1(blocks + blockSize * static_cast<size_t>(b), dc_[table].data(),
                                                         ac_[table].data(), &lastDc_[component]),
                 "Huffman statistics");
    }
    if (layout_.restartsBehind(mcu))
        lastDc_ = {};
}

void EntropyCounter::drain(SymbolStatistics& statistics)
{
    for (size_t table = 0; table < 2; ++table)
        for (size_t symbol = 0; symbol < 256; ++symbol) {
            statistics.dc[table][symbol] += dc_[table][symbol];
            statistics.ac[table][symbol] += ac_[table][symbol];
        }
    dc_ = {};
    ac_ = {};
}

}  // namespace vekpix::jpeg
