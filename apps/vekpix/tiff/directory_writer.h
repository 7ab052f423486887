// Writes the header and the directory of a TIFF file.
#ifndef VEKPIX_TIFF_DIRECTORY_WRITER_H
#define VEKPIX_TIFF_DIRECTORY_WRITER_H

#include <cstdint>
#include <span>
#include <vector>

#include "tiff/byte_order.h"
#include "tiff/tags.h"

namespace vekpix::tiff {

// The first bytes of the file.
std::vector<uint8_t> headerOf(ByteOrder order, uint32_t directoryPlace);

// Fields are to be added in the order of their tags.
class DirectoryWriter {
public:
    explicit DirectoryWriter(ByteOrder order) : order_(order) {}

    void add(Tag tag, FieldType type, std::span<const uint32_t> values);
    void add(Tag tag, FieldType type, uint32_t value) { add(tag, type, std::span(&value, 1)); }

    // The directory as it stands at `place` in the file, which must be even, and behind it the values that do not fit
    // into its entries.
    std::vector<uint8_t> bytes(uint32_t place) const;

private:
    struct Entry {
        Tag tag;
        FieldType type;
        uint32_t count;
        std::vector<uint8_t> values;
    };

    ByteOrder order_;
    std::vector<Entry> entries_;
};

}  // namespace vekpix::tiff

#endif
