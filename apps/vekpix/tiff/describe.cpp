#include "tiff/describe.h"

#include <algorithm>
#include <ostream>

#include "error.h"
#include "tiff/layout.h"

namespace vekpix::tiff {

namespace {

constexpr size_t mostValues = 8;

void describeField(const Directory& directory, const Field& field, std::ostream& out)
{
    const char* name = nameOf(field.tag);
    out << "  " << static_cast<int>(field.tag) << ' ' << (name ? name : "(not known)");
    if (numberBytes(field.type) == 0) {
        out << ": " << field.count << " of type " << static_cast<int>(field.type) << '\n';
        return;
    }
    try {
        const Numbers all = directory.numbersOf(field);
        for (size_t i = 0; i < std::min(all.size(), mostValues); ++i) out << (i == 0 ? ": " : ", ") << all[i];
        if (all.size() > mostValues)
            out << ", ... (" << all.size() << ')';
        out << '\n';
    } catch (const Error&) {
        out << ": damaged\n";  // which does not matter in a field that is not known
    }
}

}  // namespace

void describe(std::span<const uint8_t> file, std::ostream& out)
{
    const Directory directory(file);
    out << "TIFF, " << (directory.order() == ByteOrder::Little ? "little-endian" : "big-endian") << '\n';
    for (const Field& field : directory.fields()) describeField(directory, field, out);
    const Layout layout = layoutOf(directory, file);
    const Shape& shape = layout.shape;
    const char* colours = shape.channels == 3 ? "RGB" : layout.whiteIsZero ? "grey, white is zero" : "grey";
    out << "read as " << shape.width << " x " << shape.height << ", " << shape.bits << " bits, " << colours << ", "
        << (layout.compression == Compression::None ? "not compressed" : "PackBits") << ", "
        << layout.planes * layout.stripsPerPlane << " strips of " << layout.rowsPerStrip << " rows"
        << (layout.planes > 1 ? ", channels apart" : "") << '\n';
    if (directory.isFollowed())
        out << "more pictures follow, which are not read\n";
}

}  // namespace vekpix::tiff
