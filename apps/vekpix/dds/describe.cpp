#include "dds/describe.h"

#include "dds/surfaces.h"

namespace vekpix::dds {

void describe(std::span<const uint8_t> file, std::ostream& out)
{
    const Texture texture = parseHeader(file);
    out << "DDS texture of " << nameOf(texture.format) << " blocks, FourCC " << texture.fourCc;
    if (texture.dx10)
        out << ", DXGI format " << texture.dxgiFormat;
    out << '\n' << texture.width << " x " << texture.height << " pixels";
    if (texture.layers > 1)
        out << ", array of " << texture.layers;
    if (texture.isCube()) {
        out << ", cube with faces";
        for (const Face face : texture.faces) out << ' ' << faceNames[static_cast<size_t>(face)];
    }
    out << '\n';
    for (int level = 0; level < texture.levels; ++level) {
        const Surface surface = surfaceAt(texture, 0, 0, level);
        out << "level " << level << ": " << surface.width << " x " << surface.height << ", " << surface.bytes
            << " bytes at " << surface.offset << '\n';
    }
    expectWhole(texture, file.size());
}

}  // namespace vekpix::dds
