// What the headers of a JPEG 2000 file say, for a reader.
#ifndef VEKPIX_JPEG2000_DESCRIBE_H
#define VEKPIX_JPEG2000_DESCRIBE_H

#include <cstdint>
#include <iosfwd>
#include <span>

namespace vekpix::jpeg2000 {

// Tells the file's colours, the sizes, how components are coded, and the tiles with their bytes. A damaged or
// unsupported file is an Error, thrown behind the lines about what stands before the damage.
void describe(std::span<const uint8_t> file, std::ostream& out);

}  // namespace vekpix::jpeg2000

#endif
