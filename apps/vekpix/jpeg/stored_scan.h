// One scan of a stored picture: what its symbols are, and their codes (ITU T.81, Annexes F.1.2 and G.1.2).
#ifndef VEKPIX_JPEG_STORED_SCAN_H
#define VEKPIX_JPEG_STORED_SCAN_H

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "jpeg/coefficient_store.h"
#include "jpeg/entropy_writer.h"
#include "jpeg/scan_script.h"

namespace vekpix::jpeg {

// The tables that a scan needs, by their slots.
struct StoredScanTables {
    std::array<std::optional<CodeLists>, 2> dc;
    std::array<std::optional<CodeLists>, 2> ac;
};

class StoredScan {
public:
    // tableOfSlot: 0 or 1, of each of the scan's components.
    StoredScan(const CoefficientStore& store, const ScanPlan& plan, std::vector<size_t> tableOfSlot,
               int restartInterval);

    // The tables that suit the scan best.
    StoredScanTables optimalTables() const;
    // The tables of the standard's examples, for a sequential scan.
    StoredScanTables standardTables() const;
    // The scan's data, restart markers included. The tables must have codes for all its symbols.
    std::vector<uint8_t> code(const StoredScanTables& tables) const;

    bool needsDcTable() const { return plan_.spectralBegin == 0 && plan_.high == 0; }
    bool needsAcTable() const { return plan_.spectralEnd != 0; }

private:
    StoredScanTables pick(const std::array<CodeLists, 2>& dc, const std::array<CodeLists, 2>& ac) const;

    const CoefficientStore& store_;
    const ScanPlan& plan_;
    std::vector<size_t> tableOfSlot_;
    int restartInterval_;
};

}  // namespace vekpix::jpeg

#endif
