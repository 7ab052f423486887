// What a DDS file holds, as text.
#ifndef VEKPIX_DDS_DESCRIBE_H
#define VEKPIX_DDS_DESCRIBE_H

#include <cstdint>
#include <ostream>
#include <span>

namespace vekpix::dds {

// An Error for what decoding would refuse too, behind what could be told.
void describe(std::span<const uint8_t> file, std::ostream& out);

}  // namespace vekpix::dds

#endif
