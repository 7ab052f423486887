#include "c_view.h"

CView cView(void)
{
    const CView view = {
        sizeof(VekStatus),
        sizeof(VekSize),
        offsetof(VekSize, width),
        offsetof(VekSize, height),
        sizeof(VekRect),
        {offsetof(VekRect, x), offsetof(VekRect, y), offsetof(VekRect, width), offsetof(VekRect, height)},
        sizeof(VekLibVersion),
        offsetof(VekLibVersion, versionMinor),
        offsetof(VekLibVersion, tierTag),
        offsetof(VekLibVersion, libraryName),
        offsetof(VekLibVersion, versionText),
        offsetof(VekLibVersion, buildDateText),
        {vekStsOk, vekStsDivByZero, vekStsOddSize, vekStsJpegCoefOverrun, vekStsBadArgument, vekStsBadSize,
         vekStsOutOfRange, vekStsNullPointer, vekStsNoMemory, vekStsBadStep, vekStsContextMismatch,
         vekStsJpegOutOfBuffer, vekStsJpegMarkerShort, vekStsJpegHuffmanTable, vekStsJpeg2KCorruptCodeBlock,
         vekStsJpeg2KBadPassNumber, vekStsTiffRowFormat, vekStsJpeg2KNotAttached, vekStsBadBlockMode},
    };
    return view;
}

const VekLibVersion* versionAskedFromC(void) { return vekjGetLibVersion(); }
