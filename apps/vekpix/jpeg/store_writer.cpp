#include "jpeg/store_writer.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <optional>
#include <vector>

#include "jpeg/marker_writer.h"
#include "jpeg/stored_scan.h"
#include "work/crew.h"

namespace vekpix::jpeg {

namespace {

struct CodedScan {
    StoredScanTables tables;
    std::vector<uint8_t> data;
};

// Chrominance has Huffman tables of its own.
size_t tableSlot(ColourModel colours, size_t component)
{
    const bool transformed = colours == ColourModel::YCbCr || colours == ColourModel::Ycck;
    return transformed && (component == 1 || component == 2) ? 1 : 0;
}

CodedScan codeScan(const StoredPicture& picture, const ScanPlan& plan, const ScanOptions& options)
{
    std::vector<size_t> tableOfSlot;
    for (const size_t component : plan.components) tableOfSlot.push_back(tableSlot(picture.colours, component));
    const StoredScan scan(picture.store, plan, tableOfSlot, options.restartInterval);
    CodedScan coded;
    coded.tables = options.optimizeTables || !plan.sequential() ? scan.optimalTables() : scan.standardTables();
    coded.data = scan.code(coded.tables);
    return coded;
}

// Writes tables unless they stand in force already.
class TableWriter {
public:
    explicit TableWriter(ByteSink& file) : file_(file) {}

    void write(const StoredScanTables& tables)
    {
        for (size_t slot = 0; slot < 2; ++slot) {
            write(dcTableClass, slot, tables.dc[slot], inForce_.dc[slot]);
            write(acTableClass, slot, tables.ac[slot], inForce_.ac[slot]);
        }
    }

private:
    void write(int tableClass, size_t slot, const std::optional<CodeLists>& lists, std::optional<CodeLists>& inForce)
    {
        if (!lists || lists == inForce)
            return;
        writeHuffmanTable(file_, tableClass, static_cast<int>(slot), *lists);
        inForce = lists;
    }

    ByteSink& file_;
    StoredScanTables inForce_;
};

ScanHeader headerOf(const StoredPicture& picture, const ScanPlan& plan)
{
    ScanHeader header;
    header.spectralBegin = plan.spectralBegin;
    header.spectralEnd = plan.spectralEnd;
    header.high = plan.high;
    header.low = plan.low;
    const bool needsDc = plan.spectralBegin == 0 && plan.high == 0;
    const bool needsAc = plan.spectralEnd != 0;
    for (const size_t component : plan.components) {
        const int slot = static_cast<int>(tableSlot(picture.colours, component));
        header.components.push_back({picture.frame.components[component].id, needsDc ? slot : 0, needsAc ? slot : 0});
    }
    return header;
}

}  // namespace

void writeScans(const StoredPicture& picture, const ScanScript& script, const ScanOptions& options, ByteSink& file)
{
    std::vector<CodedScan> coded(script.size());
    Crew crew(std::min(options.threads, static_cast<int>(script.size())));
    std::mutex reporting;
    crew.run(static_cast<int>(script.size()), [&](int i) {
        coded[static_cast<size_t>(i)] = codeScan(picture, script[static_cast<size_t>(i)], options);
        const std::lock_guard lock(reporting);
        options.onScan();
    });

    writeFrame(file, picture.frame);
    if (options.restartInterval != 0)
        writeRestartInterval(file, options.restartInterval);
    TableWriter tables(file);
    for (size_t i = 0; i < script.size(); ++i) {
        tables.write(coded[i].tables);
        writeScanHeader(file, headerOf(picture, script[i]));
        file.write(coded[i].data);
    }
}

void simplifyPadding(CoefficientStore& store)
{
    const auto takeDc = [](int16_t* block, const int16_t* before) {
        std::fill_n(block, 64, int16_t{0});
        block[0] = before[0];
    };
    for (const CoefficientStore::Component& c : store.components())
        for (int row = 0; row < c.rows; ++row) {
            const int first = row < c.blocksHigh ? c.blocksWide : 0;
            for (int column = first; column < c.columns; ++column) {
                if (row < c.blocksHigh)
                    takeDc(c.block(column, row), c.block(column - 1, row));
                else  // the last block of the MCU's row above comes before
                    takeDc(c.block(column, row),
                           c.block(column / c.horizontal * c.horizontal + c.horizontal - 1, row - 1));
            }
        }
}

}  // namespace vekpix::jpeg
