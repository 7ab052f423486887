// In which scans a picture's coefficients are told (ITU T.81, Annex G.1.1).
#ifndef VEKPIX_JPEG_SCAN_SCRIPT_H
#define VEKPIX_JPEG_SCAN_SCRIPT_H

#include <string>
#include <string_view>
#include <vector>

#include "jpeg/marker_reader.h"

namespace vekpix::jpeg {

struct ScanPlan {
    std::vector<size_t> components;  // in Frame::components, rising
    int spectralBegin = 0;           // as in Scan
    int spectralEnd = 63;
    int high = 0;
    int low = 0;

    bool sequential() const { return spectralBegin == 0 && spectralEnd == 63; }
    bool operator==(const ScanPlan&) const = default;
};

using ScanScript = std::vector<ScanPlan>;

// All components in one scan; in scans of their own where an MCU would have too many blocks.
ScanScript sequentialScript(const Frame& frame);

// What shows most first: DC, then low frequencies, then the lower bits. Ten scans for YCbCr, six for grey.
ScanScript progressiveScript(const Frame& frame, ColourModel colours);

// Reads a script as text: scans of the form "0,1,2: 0-0, 0, 1;" (components, coefficients, high and low bit; ":" and
// what follows may be missing: all coefficients). Any one character separates numbers as well as these do, the last
// semicolon may be missing, and "#" begins a comment up to the end of its line.
ScanScript parseScanScript(std::string_view text);

// An Error if the scans do not make a file of the standard; true if they are progressive.
bool checkScanScript(const ScanScript& script, const Frame& frame);

// Whether every bit of every coefficient is told, by a script that has been checked.
bool isComplete(const ScanScript& script, const Frame& frame);

}  // namespace vekpix::jpeg

#endif
