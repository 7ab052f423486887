// What the markers of a JPEG file say, for a reader.
#ifndef VEKPIX_JPEG_DESCRIBE_H
#define VEKPIX_JPEG_DESCRIBE_H

#include <cstdint>
#include <iosfwd>
#include <span>

namespace vekpix::jpeg {

// Lists the segments with their places, then the frame, the scans and their tables. A damaged or unsupported file is an
// Error, thrown behind the lines about what stands before the damage.
void describe(std::span<const uint8_t> file, std::ostream& out);

}  // namespace vekpix::jpeg

#endif
