// The quantised coefficients of a picture, for files that tell them in several scans.
#ifndef VEKPIX_JPEG_COEFFICIENT_STORE_H
#define VEKPIX_JPEG_COEFFICIENT_STORE_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "jpeg/marker_reader.h"

namespace vekpix::jpeg {

// Blocks of 64 coefficients in rows, 128 bytes each, aligned to 64 bytes. Every component has whole MCUs of them: those
// beyond its own size are there for the scans of several components (T.81, A.2.4).
class CoefficientStore {
public:
    struct Component {
        int horizontal = 1;  // blocks of the component in an MCU
        int vertical = 1;
        int blocksWide = 0;  // of the component alone
        int blocksHigh = 0;
        int columns = 0;  // in whole MCUs
        int rows = 0;
        int firstRow = 0;  // that the store holds
        int16_t* blocks = nullptr;

        int16_t* block(int column, int row) const
        {
            return blocks +
                   (static_cast<size_t>(row - firstRow) * static_cast<size_t>(columns) + static_cast<size_t>(column)) *
                       64;
        }
    };

    // Of the whole picture, or of that many rows of MCUs from the top. All coefficients are 0. Memory that is never
    // written to costs nothing.
    explicit CoefficientStore(const Frame& frame) : CoefficientStore(frame, frame.mcuRows()) {}
    CoefficientStore(const Frame& frame, int mcuRowsHeld);

    // The store now holds rows of MCUs from here on, and all coefficients are 0.
    void moveTo(int mcuRow);

    int mcusPerRow() const { return mcusPerRow_; }
    int mcuRows() const { return mcuRows_; }
    const std::vector<Component>& components() const { return components_; }

private:
    struct Freer {
        void operator()(void* memory) const { std::free(memory); }
    };

    int mcusPerRow_;
    int mcuRows_;
    size_t count_ = 0;  // of coefficients
    std::vector<Component> components_;
    std::unique_ptr<void, Freer> memory_;
};

}  // namespace vekpix::jpeg

#endif
