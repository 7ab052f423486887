// What the directory of a TIFF file says, for a reader.
#ifndef VEKPIX_TIFF_DESCRIBE_H
#define VEKPIX_TIFF_DESCRIBE_H

#include <cstdint>
#include <iosfwd>
#include <span>

namespace vekpix::tiff {

// Lists the fields of the first directory, then the picture. A damaged or unsupported file is an Error, thrown behind
// the lines about what stands before the damage.
void describe(std::span<const uint8_t> file, std::ostream& out);

}  // namespace vekpix::tiff

#endif
