#include "tiff/directory_reader.h"

#include <algorithm>
#include <string>

#include "error.h"

namespace vekpix::tiff {

namespace {

std::string called(Tag tag)
{
    const char* name = nameOf(tag);
    return name ? name : "field " + std::to_string(static_cast<int>(tag));
}

}  // namespace

uint32_t Numbers::operator[](size_t i) const
{
    const uint8_t* p = bytes_.data() + i * each_;
    return each_ == 1 ? *p : each_ == 2 ? load<uint16_t>(p, order_) : load<uint32_t>(p, order_);
}

Directory::Directory(std::span<const uint8_t> file) : file_(file)
{
    if (file.size() < headerBytes || file[0] != file[1] || (file[0] != 'I' && file[0] != 'M'))
        throw Error("no TIFF file");
    order_ = file[0] == 'M' ? ByteOrder::Big : ByteOrder::Little;
    const auto version = load<uint16_t>(file.data() + 2, order_);
    if (version == bigVersion)
        throw Error("BigTIFF files are not supported");
    if (version != classicVersion)
        throw Error("no TIFF file");
    const uint64_t begin = load<uint32_t>(file.data() + 4, order_);
    if (begin < headerBytes || begin + 2 > file.size())
        throw Error("damaged TIFF file: its directory lies outside");
    const uint64_t count = load<uint16_t>(file.data() + begin, order_);
    const uint64_t end = begin + 2 + count * entryBytes;
    if (end > file.size())
        throw Error("damaged TIFF file: it ends before its directory does");
    for (uint64_t at = begin + 2; at < end; at += entryBytes) {
        const uint8_t* p = file.data() + at;
        fields_.push_back({Tag{load<uint16_t>(p, order_)}, FieldType{load<uint16_t>(p + 2, order_)},
                           load<uint32_t>(p + 4, order_), static_cast<uint32_t>(at + 8)});
    }
    isFollowed_ = end + 4 <= file.size() && load<uint32_t>(file.data() + end, order_) != 0;
}

const Field* Directory::find(Tag tag) const
{
    const auto found = std::find_if(fields_.begin(), fields_.end(), [tag](const Field& f) { return f.tag == tag; });
    return found == fields_.end() ? nullptr : &*found;
}

Numbers Directory::numbersOf(const Field& field) const
{
    const uint32_t each = numberBytes(field.type);
    if (each == 0)
        throw Error("damaged TIFF file: " + called(field.tag) + " holds no whole numbers");
    if (field.count == 0)
        throw Error("damaged TIFF file: " + called(field.tag) + " is empty");
    const uint64_t length = uint64_t{field.count} * each;
    const uint64_t begin = length <= 4 ? field.place : load<uint32_t>(file_.data() + field.place, order_);
    if (begin + length > file_.size())
        throw Error("damaged TIFF file: " + called(field.tag) + " lies outside");
    return {file_.subspan(begin, length), each, order_};
}

Numbers Directory::numbers(Tag tag) const
{
    const Field* field = find(tag);
    if (!field)
        throw Error("damaged TIFF file: " + called(tag) + " is missing");
    return numbersOf(*field);
}

uint32_t Directory::number(Tag tag) const
{
    const Numbers all = numbers(tag);
    if (all.size() != 1)
        throw Error("damaged TIFF file: " + called(tag) + " has " + std::to_string(all.size()) + " values");
    return all[0];
}

}  // namespace vekpix::tiff
