// Marker codes of a JPEG file: the second byte, behind 0xFF (ITU T.81, Table B.1).
#ifndef VEKPIX_JPEG_MARKERS_H
#define VEKPIX_JPEG_MARKERS_H

namespace vekpix::jpeg {

enum Marker : int {
    TEM = 0x01,
    SOF0 = 0xC0,
    SOF1 = 0xC1,
    SOF2 = 0xC2,
    SOF3 = 0xC3,
    DHT = 0xC4,
    SOF5 = 0xC5,
    SOF7 = 0xC7,
    JPG = 0xC8,
    SOF9 = 0xC9,
    SOF11 = 0xCB,
    DAC = 0xCC,
    SOF13 = 0xCD,
    SOF15 = 0xCF,
    RST0 = 0xD0,
    RST7 = 0xD7,
    SOI = 0xD8,
    EOI = 0xD9,
    SOS = 0xDA,
    DQT = 0xDB,
    DNL = 0xDC,
    DRI = 0xDD,
    DHP = 0xDE,
    EXP = 0xDF,
    APP0 = 0xE0,
    APP14 = 0xEE,
    APP15 = 0xEF,
    COM = 0xFE,
};

}  // namespace vekpix::jpeg

#endif
