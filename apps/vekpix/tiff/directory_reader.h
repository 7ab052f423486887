// The first directory of a TIFF file: fields of numbers, read where they lie. Whatever the file tells is checked
// against its length.
#ifndef VEKPIX_TIFF_DIRECTORY_READER_H
#define VEKPIX_TIFF_DIRECTORY_READER_H

#include <optional>
#include <span>
#include <vector>

#include "tiff/byte_order.h"
#include "tiff/tags.h"

namespace vekpix::tiff {

// The values of a field.
class Numbers {
public:
    Numbers(std::span<const uint8_t> bytes, uint32_t each, ByteOrder order) : bytes_(bytes), each_(each), order_(order)
    {
    }
    size_t size() const { return bytes_.size() / each_; }
    uint32_t operator[](size_t i) const;

private:
    std::span<const uint8_t> bytes_;
    uint32_t each_;  // bytes: 1, 2 or 4
    ByteOrder order_;
};

struct Field {
    Tag tag;
    FieldType type;
    uint32_t count;
    uint32_t place;  // in the file, of the four bytes that hold the values or tell where they lie
};

class Directory {
public:
    // Throws Error if the file holds no directory. The file must outlive the object.
    explicit Directory(std::span<const uint8_t> file);

    ByteOrder order() const { return order_; }
    const std::vector<Field>& fields() const { return fields_; }
    // There are more pictures in the file.
    bool isFollowed() const { return isFollowed_; }

    bool has(Tag tag) const { return find(tag) != nullptr; }
    // Throws Error for a field that holds no whole numbers or leaves the file.
    Numbers numbersOf(const Field& field) const;
    // Throws Error if the field is missing.
    Numbers numbers(Tag tag) const;
    // The field's only number.
    uint32_t number(Tag tag) const;
    uint32_t number(Tag tag, uint32_t otherwise) const { return has(tag) ? number(tag) : otherwise; }

private:
    const Field* find(Tag tag) const;

    std::span<const uint8_t> file_;
    ByteOrder order_ = ByteOrder::Little;
    std::vector<Field> fields_;
    bool isFollowed_ = false;
};

}  // namespace vekpix::tiff

#endif
