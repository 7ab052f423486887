// An independent codec of deep and of lossless JPEG pictures: a DICOM tool kit, whose tools run as programs. A picture
// goes into a DICOM file, raw or as a JPEG stream, and comes out of it the other way.
#ifndef VEK_TESTS_VEKPIX_DICOM_PEER_H
#define VEK_TESTS_VEKPIX_DICOM_PEER_H

#include "command_support.h"
#include "raster_support.h"

namespace support {

class DicomTest : public CommandTest {
protected:
    static constexpr const char* extended = "1.2.840.10008.1.2.4.51";
    static constexpr const char* lossless = "1.2.840.10008.1.2.4.57";

    // The JPEG file that the peer makes of a picture.
    std::vector<uint8_t> peerEncode(const Raster& picture, std::vector<std::string> options) const
    {
        save("peer.raw", picture.pixels);
        const char* kind = picture.shape.bits > 8 ? "OW" : "OB";
        save("peer.dump",
             header(picture.shape, "1.2.840.10008.1.2.1") + "(7fe0,0010) " + kind + " =" + path("peer.raw") + "\n");
        EXPECT_EQ(0, run({"dump2dcm", path("peer.dump"), path("raw.dcm")}).status);
        options.insert(options.begin(), "dcmcjpeg");
        options.insert(options.end(), {path("raw.dcm"), path("coded.dcm")});
        const Outcome outcome = run(options);
        EXPECT_EQ(0, outcome.status) << outcome.errors;
        return pixelItem("coded.dcm", 1);  // behind the table of offsets
    }

    // The picture of that shape that the peer makes of a JPEG file.
    Raster peerDecode(const std::vector<uint8_t>& file, const Shape& shape, const std::string& transferSyntax) const
    {
        std::vector<uint8_t> even = file;
        even.resize((file.size() + 1) / 2 * 2);
        save("peer.jpg", even);
        save("peer.dump",
             header(shape, transferSyntax) +
                 "(7fe0,0010) OB (PixelSequence #=2)\n(fffe,e000) pi (no value available)\n(fffe,e000) pi =" +
                 path("peer.jpg") + "\n(fffe,e0dd)\n");
        EXPECT_EQ(0, run({"dump2dcm", path("peer.dump"), path("coded.dcm")}).status);
        const Outcome outcome = run({"dcmdjpeg", "+cn", path("coded.dcm"), path("raw.dcm")});
        EXPECT_EQ(0, outcome.status) << outcome.errors;
        Raster picture(shape);
        const std::vector<uint8_t> raw = pixelItem("raw.dcm", 0);
        EXPECT_GE(raw.size(), picture.pixels.size());
        EXPECT_LE(raw.size(), picture.pixels.size() + 1);
        std::copy_n(raw.begin(), std::min(raw.size(), picture.pixels.size()), picture.pixels.begin());
        return picture;
    }

private:
    std::vector<uint8_t> pixelItem(const std::string& name, int index) const
    {
        const std::string item = name + "." + std::to_string(index) + ".raw";
        std::filesystem::remove(path(item));  // the tool overwrites nothing
        EXPECT_EQ(0, run({"dcmdump", "+W", path(""), path(name)}).status);
        return bytes(item);
    }

    static std::string header(const Shape& shape, const std::string& transferSyntax)
    {
        const auto number = [](const char* tag, int value) {
            return std::string(tag) + " US " + std::to_string(value) + "\n";
        };
        return "(0002,0010) UI [" + transferSyntax + "]\n(0008,0016) UI [1.2.840.10008.5.1.4.1.1.7]\n" +
               "(0008,0018) UI [1.2.3.4]\n" + number("(0028,0002)", shape.channels) + "(0028,0004) CS [" +
               (shape.channels == 1 ? "MONOCHROME2" : "RGB") + "]\n" +
               (shape.channels == 1 ? "" : number("(0028,0006)", 0)) + number("(0028,0010)", shape.height) +
               number("(0028,0011)", shape.width) + number("(0028,0100)", shape.bits > 8 ? 16 : 8) +
               number("(0028,0101)", shape.bits) + number("(0028,0102)", shape.bits - 1) + number("(0028,0103)", 0);
    }
};

}  // namespace support

#endif
