#include "jpeg/stored_scan.h"

#include <utility>

#include "error.h"
#include "jpeg/markers.h"
#include "jpeg/scan_walk.h"
#include "library_status.h"

namespace vekpix::jpeg {

namespace {

enum class Kind { Sequential, DcFirst, DcRefine, AcFirst, AcRefine };

Kind kindOf(const ScanPlan& plan)
{
    if (plan.sequential())
        return Kind::Sequential;
    if (plan.spectralBegin == 0)
        return plan.high == 0 ? Kind::DcFirst : Kind::DcRefine;
    return plan.high == 0 ? Kind::AcFirst : Kind::AcRefine;
}

// Coefficients that a file brings may be larger than any that 8-bit pictures have.
void expectCodable(VekStatus status)
{
    if (status == vekStsJpegMarkerShort || status == vekStsJpegHuffmanTable)
        throw Error("a coefficient is too large for a JPEG file of 8-bit samples");
    expectOk(status, "Huffman coding");
}

class Counter {
public:
    Counter(const ScanPlan& plan, const std::vector<size_t>& tableOfSlot)
        : plan_(plan), kind_(kindOf(plan)), tableOfSlot_(tableOfSlot)
    {
    }

    void code(const int16_t* block, size_t slot)
    {
        const size_t table = tableOfSlot_[slot];
        if (++blocks_ == mostBlocks)
            drain();
        switch (kind_) {
            case Kind::Sequential:
                expectCodable(vekiGetHuffmanStatistics8x8_JPEG_16s_C1(block, dc_[table].data(), ac_[table].data(),
                                                                      &lastDc_[slot]));
                break;
            case Kind::DcFirst:
                expectCodable(vekiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(block, dc_[table].data(), &lastDc_[slot],
                                                                              plan_.low));
                break;
            case Kind::DcRefine:
                break;
            case Kind::AcFirst:
                expectCodable(vekiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(
                    block, ac_[table].data(), plan_.spectralBegin, plan_.spectralEnd, plan_.low, state_.get(), 0));
                break;
            case Kind::AcRefine:
                expectCodable(vekiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(
                    block, ac_[table].data(), plan_.spectralBegin, plan_.spectralEnd, plan_.low, state_.get(), 0));
                break;
        }
    }

    void endInterval()
    {
        lastDc_ = {};
        int* counts = ac_[tableOfSlot_[0]].data();
        if (kind_ == Kind::AcFirst)
            expectCodable(vekiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(nullptr, counts, 1, 63, 0, state_.get(), 1));
        else if (kind_ == Kind::AcRefine)
            expectCodable(vekiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(nullptr, counts, 1, 63, 0, state_.get(), 1));
    }

    const SymbolStatistics& statistics()
    {
        drain();
        return statistics_;
    }

private:
    // Of at most 64 symbols each: no count of the library's passes 2^30.
    static constexpr int mostBlocks = 1 << 24;

    void drain()
    {
        for (size_t table = 0; table < 2; ++table)
            for (size_t symbol = 0; symbol < 256; ++symbol) {
                statistics_.dc[table][symbol] += dc_[table][symbol];
                statistics_.ac[table][symbol] += ac_[table][symbol];
            }
        dc_ = {};
        ac_ = {};
        blocks_ = 0;
    }

    const ScanPlan& plan_;
    Kind kind_;
    const std::vector<size_t>& tableOfSlot_;
    EncoderState state_ = makeEncoderState();
    std::array<int16_t, maxComponents> lastDc_{};
    std::array<std::array<int, 256>, 2> dc_{};
    std::array<std::array<int, 256>, 2> ac_{};
    int blocks_ = 0;
    SymbolStatistics statistics_;
};

class Writer {
public:
    Writer(const ScanPlan& plan, const std::vector<size_t>& tableOfSlot, const StoredScanTables& tables)
        : plan_(plan), kind_(kindOf(plan)), bytes_(bufferBytes)
    {
        const auto build = [](const std::optional<CodeLists>& lists) {
            return lists ? makeEncoderTable(*lists) : EncoderTable();
        };
        for (size_t table = 0; table < 2; ++table) {
            dc_[table] = build(tables.dc[table]);
            ac_[table] = build(tables.ac[table]);
        }
        for (size_t slot = 0; slot < tableOfSlot.size(); ++slot) {
            dcOfSlot_[slot] = dc_[tableOfSlot[slot]].get();
            acOfSlot_[slot] = ac_[tableOfSlot[slot]].get();
        }
    }

    void code(const int16_t* block, size_t slot)
    {
        if (length_ > bufferBytes - mostBlockBytes)
            drain();
        codeOrFlush(block, slot, 0);
    }

    void endInterval()
    {
        if (length_ > bufferBytes - mostBlockBytes)
            drain();
        codeOrFlush(nullptr, 0, 1);
        lastDc_ = {};
    }

    void writeRestart(int number)
    {
        bytes_[static_cast<size_t>(length_++)] = 0xFF;
        bytes_[static_cast<size_t>(length_++)] = static_cast<uint8_t>(RST0 + number % 8);
    }

    std::vector<uint8_t> data()
    {
        drain();
        return std::move(data_);
    }

private:
    static constexpr int bufferBytes = 1 << 16;
    // A block takes at most 64 codes of 16 bits and 11 more bits each, and may send a thousand correction bits of the
    // blocks before it; each byte may need a stuffed one behind it. The rest is room for 8 bytes at once.
    static constexpr int mostBlockBytes = 1024;

    void codeOrFlush(const int16_t* block, size_t slot, int flush)
    {
        uint8_t* to = bytes_.data();
        const VekEncodeHuffmanSpec* dc = dcOfSlot_[slot];
        const VekEncodeHuffmanSpec* ac = acOfSlot_[slot];
        switch (kind_) {
            case Kind::Sequential:
                expectCodable(vekiEncodeHuffman8x8_JPEG_16s1u_C1(block, to, bufferBytes, &length_, &lastDc_[slot], dc,
                                                                 ac, state_.get(), flush));
                break;
            case Kind::DcFirst:
                expectCodable(vekiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(
                    block, to, bufferBytes, &length_, &lastDc_[slot], plan_.low, dc, state_.get(), flush));
                break;
            case Kind::DcRefine:
                expectCodable(vekiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(block, to, bufferBytes, &length_, plan_.low,
                                                                          state_.get(), flush));
                break;
            case Kind::AcFirst:
                expectCodable(vekiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(block, to, bufferBytes, &length_,
                                                                         plan_.spectralBegin, plan_.spectralEnd,
                                                                         plan_.low, ac, state_.get(), flush));
                break;
            case Kind::AcRefine:
                expectCodable(vekiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(block, to, bufferBytes, &length_,
                                                                          plan_.spectralBegin, plan_.spectralEnd,
                                                                          plan_.low, ac, state_.get(), flush));
                break;
        }
    }

    void drain()
    {
        data_.insert(data_.end(), bytes_.data(), bytes_.data() + length_);
        length_ = 0;
    }

    const ScanPlan& plan_;
    Kind kind_;
    std::array<EncoderTable, 2> dc_;
    std::array<EncoderTable, 2> ac_;
    std::array<const VekEncodeHuffmanSpec*, maxComponents> dcOfSlot_{};
    std::array<const VekEncodeHuffmanSpec*, maxComponents> acOfSlot_{};
    EncoderState state_ = makeEncoderState();
    std::array<int16_t, maxComponents> lastDc_{};
    std::vector<uint8_t> bytes_;
    int length_ = 0;  // of what is used of bytes_
    std::vector<uint8_t> data_;
};

// Hands all blocks of a scan to a coder; endInterval(number) is called behind each restart interval but the last.
template <class Coder, class EndInterval>
void codeScan(const CoefficientStore& store, const ScanPlan& plan, int restartInterval, Coder& coder,
              const EndInterval& endInterval)
{
    int mcusLeft = restartInterval == 0 ? -1 : restartInterval;
    int interval = 0;
    for (int row = 0; row < store.mcuRows(); ++row)
        walkRow(
            store, plan.components, row,
            [&] {
                if (mcusLeft == 0) {
                    endInterval(interval++);
                    mcusLeft = restartInterval;
                }
                --mcusLeft;
            },
            [&](const int16_t* block, size_t slot) { coder.code(block, slot); });
}

}  // namespace

StoredScan::StoredScan(const CoefficientStore& store, const ScanPlan& plan, std::vector<size_t> tableOfSlot,
                       int restartInterval)
    : store_(store), plan_(plan), tableOfSlot_(std::move(tableOfSlot)), restartInterval_(restartInterval)
{
}

// Of each table slot that the scan needs, the given lists.
StoredScanTables StoredScan::pick(const std::array<CodeLists, 2>& dc, const std::array<CodeLists, 2>& ac) const
{
    StoredScanTables tables;
    for (const size_t slot : tableOfSlot_) {
        if (needsDcTable())
            tables.dc[slot] = dc[slot];
        if (needsAcTable())
            tables.ac[slot] = ac[slot];
    }
    return tables;
}

StoredScanTables StoredScan::optimalTables() const
{
    if (!needsDcTable() && !needsAcTable())
        return {};
    Counter counter(plan_, tableOfSlot_);
    codeScan(store_, plan_, restartInterval_, counter, [&](int) { counter.endInterval(); });
    counter.endInterval();
    const ScanTables lists = counter.statistics().optimalTables();
    return pick(lists.dc, lists.ac);
}

StoredScanTables StoredScan::standardTables() const
{
    return pick({standardLuminanceDc, standardChrominanceDc}, {standardLuminanceAc, standardChrominanceAc});
}

std::vector<uint8_t> StoredScan::code(const StoredScanTables& tables) const
{
    Writer writer(plan_, tableOfSlot_, tables);
    codeScan(store_, plan_, restartInterval_, writer, [&](int number) {
        writer.endInterval();
        writer.writeRestart(number);
    });
    writer.endInterval();
    return writer.data();
}

}  // namespace vekpix::jpeg
