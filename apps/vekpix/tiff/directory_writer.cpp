#include "tiff/directory_writer.h"

namespace vekpix::tiff {

namespace {

constexpr size_t inlineBytes = 4;

// Appends numbers.
class Appender {
public:
    Appender(std::vector<uint8_t>& bytes, ByteOrder order) : bytes_(bytes), order_(order) {}

    template <class Number>
    void append(Number value)
    {
        bytes_.resize(bytes_.size() + sizeof value);
        store(bytes_.data() + bytes_.size() - sizeof value, value, order_);
    }

private:
    std::vector<uint8_t>& bytes_;
    ByteOrder order_;
};

}  // namespace

std::vector<uint8_t> headerOf(ByteOrder order, uint32_t directoryPlace)
{
    std::vector<uint8_t> bytes(2, order == ByteOrder::Little ? 'I' : 'M');
    Appender out(bytes, order);
    out.append(classicVersion);
    out.append(directoryPlace);
    return bytes;
}

// A rational number is two long ones.
void DirectoryWriter::add(Tag tag, FieldType type, std::span<const uint32_t> values)
{
    Entry entry{tag, type, static_cast<uint32_t>(values.size() / (type == FieldType::Rational ? 2 : 1)), {}};
    Appender out(entry.values, order_);
    for (const uint32_t value : values) {
        if (type == FieldType::Short)
            out.append(static_cast<uint16_t>(value));
        else
            out.append(value);
    }
    entries_.push_back(entry);
}

std::vector<uint8_t> DirectoryWriter::bytes(uint32_t place) const
{
    std::vector<uint8_t> directory;
    std::vector<uint8_t> behind;
    Appender out(directory, order_);
    const auto length = static_cast<uint32_t>(2 + entries_.size() * entryBytes + 4);
    out.append(static_cast<uint16_t>(entries_.size()));
    for (const Entry& entry : entries_) {
        out.append(static_cast<uint16_t>(entry.tag));
        out.append(static_cast<uint16_t>(entry.type));
        out.append(entry.count);
        if (entry.values.size() > inlineBytes) {
            out.append(place + length + static_cast<uint32_t>(behind.size()));
            behind.insert(behind.end(), entry.values.begin(), entry.values.end());
            behind.resize(behind.size() + behind.size() % 2);
        } else {
            directory.insert(directory.end(), entry.values.begin(), entry.values.end());
            directory.resize(directory.size() + inlineBytes - entry.values.size());
        }
    }
    out.append(uint32_t{0});  // no other directory follows
    directory.insert(directory.end(), behind.begin(), behind.end());
    return directory;
}

}  // namespace vekpix::tiff
