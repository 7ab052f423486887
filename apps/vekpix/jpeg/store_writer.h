// A picture's coefficients become the scans of a file, sequential or progressive.
#ifndef VEKPIX_JPEG_STORE_WRITER_H
#define VEKPIX_JPEG_STORE_WRITER_H

#include <functional>

#include "io/byte_sink.h"
#include "jpeg/coefficient_store.h"
#include "jpeg/scan_script.h"

namespace vekpix::jpeg {

struct StoredPicture {
    const Frame& frame;
    ColourModel colours;
    const CoefficientStore& store;
};

struct ScanOptions {
    int restartInterval = 0;               // MCUs of each scan; 0: none
    bool optimizeTables = true;            // progressive scans have tables made for them in any case
    int threads = 1;                       // threads that may work, on a scan each
    std::function<void()> onScan = [] {};  // hears of each scan that is coded, on any thread, but one at a time
};

// Writes the frame's header, then of each scan its tables, its header and its data. `script` has been checked. An Error
// if a coefficient is larger than 8-bit pictures have them.
void writeScans(const StoredPicture& picture, const ScanScript& script, const ScanOptions& options, ByteSink& file);

// Tells the scans of a pass as if each were an equal part of the picture's rows.
class PassReport {
public:
    PassReport(const std::function<void(int rows)>& onRows, int rows, size_t scans)
        : onRows_(onRows), rows_(rows), scans_(static_cast<int64_t>(scans))
    {
    }
    void advance()
    {
        const int64_t before = rows_ * scansDone_ / scans_;
        const int64_t now = rows_ * ++scansDone_ / scans_;
        if (onRows_)
            onRows_(static_cast<int>(now - before));
    }

private:
    const std::function<void(int rows)>& onRows_;
    int64_t rows_;
    int64_t scans_;
    int64_t scansDone_ = 0;
};

// Makes blocks beyond a component's own size cost least: all that is theirs is the DC of the block before.
void simplifyPadding(CoefficientStore& store);

}  // namespace vekpix::jpeg

#endif
