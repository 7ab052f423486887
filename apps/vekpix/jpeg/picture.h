// What the headers of a file tell about its picture.
#ifndef VEKPIX_JPEG_PICTURE_H
#define VEKPIX_JPEG_PICTURE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "jpeg/coefficient_store.h"
#include "jpeg/marker_reader.h"

namespace vekpix::jpeg {

// Coefficients that bands of pixels are made from.
class StoredRows {
public:
    virtual ~StoredRows() = default;
    // A store that holds this row of MCUs.
    virtual const CoefficientStore& row(int mcuRow) = 0;
};

// Those of a whole picture.
class WholeStore final : public StoredRows {
public:
    explicit WholeStore(std::shared_ptr<const CoefficientStore> store) : store_(std::move(store)) {}
    const CoefficientStore& row(int) override { return *store_; }

private:
    std::shared_ptr<const CoefficientStore> store_;
};

// Everything that the headers tell about a picture.
struct Picture {
    std::span<const uint8_t> file;
    Frame frame;
    ColourModel colours = ColourModel::Grey;
    bool inverted = false;  // four components as Adobe's programs write them: 255 is no ink
    std::vector<Scan> scans;
    std::shared_ptr<StoredRows> stored;  // if bands are to be made from it, not from the scans

    int mcusPerRow() const { return frame.mcusPerRow(); }
    int mcuRows() const { return frame.mcuRows(); }
    int componentWidth(size_t index) const { return frame.componentWidth(index); }
    int componentHeight(size_t index) const { return frame.componentHeight(index); }
    // The steps in force when a component's first scan began; null if it has no scan.
    const QuantSteps* quantSteps(size_t index) const;
    // The library's table of them: of ones if the component has no scan, and thus no coefficients.
    void quantTable(size_t index, uint16_t* table) const;
};

// Reads a file's markers up to its end; of a sequential file, up to the last scan that it needs. An Error if they are
// damaged or cannot belong to a picture of their size.
Picture readHeaders(std::span<const uint8_t> file);

}  // namespace vekpix::jpeg

#endif
