// Markers of a code-stream (ISO/IEC 15444-1, Table A.2).
#ifndef VEKPIX_JPEG2000_MARKERS_H
#define VEKPIX_JPEG2000_MARKERS_H

#include <cstdint>

namespace vekpix::jpeg2000 {

enum Marker : uint16_t {
    markerSoc = 0xFF4F,
    markerCap = 0xFF50,
    markerSiz = 0xFF51,
    markerCod = 0xFF52,
    markerCoc = 0xFF53,
    markerTlm = 0xFF55,
    markerPlm = 0xFF57,
    markerPlt = 0xFF58,
    markerQcd = 0xFF5C,
    markerQcc = 0xFF5D,
    markerRgn = 0xFF5E,
    markerPoc = 0xFF5F,
    markerPpm = 0xFF60,
    markerPpt = 0xFF61,
    markerCrg = 0xFF63,
    markerCom = 0xFF64,
    markerSot = 0xFF90,
    markerSop = 0xFF91,
    markerEph = 0xFF92,
    markerSod = 0xFF93,
    markerEoc = 0xFFD9,
};

}  // namespace vekpix::jpeg2000

#endif
