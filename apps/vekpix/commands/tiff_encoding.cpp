#include <memory>

#include "commands/encoding.h"
#include "commands/progress.h"
#include "image/depth_rows.h"
#include "io/output_file.h"
#include "tiff/encoder.h"

namespace vekpix {

namespace {

class TiffEncoding : public Encoding {
public:
    bool writes(ImageFormat format) const override { return format == ImageFormat::Tiff; }
    const char* name() const override { return "TIFF"; }
    void addOptions(CLI::Option_group& group, CLI::Option*) override
    {
        group.add_flag("--packbits", options_.packBits, "packs runs of equal bytes; else nothing is compressed");
        group.add_flag("--big-endian", bigEndian_, "writes numbers with their high bytes first");
    }
    // Nothing is lost, whether that is asked for or not.
    void encode(const EncodeRequest& request) override
    {
        options_.order = bigEndian_ ? tiff::ByteOrder::Big : tiff::ByteOrder::Little;
        std::unique_ptr<RowReader> picture = openPicture(request.input, SampleDepth::AsStored);
        if (picture->shape().bits > 8)
            picture = withBits(std::move(picture), 16);
        OutputFile file(request.output);
        Progress progress(picture->height());
        options_.onRows = [&](int rows) { progress.advance(rows); };
        tiff::encode(*picture, file, options_);
        file.commit();
    }

private:
    tiff::EncodeOptions options_;
    bool bigEndian_ = false;
};

}  // namespace

std::unique_ptr<Encoding> makeTiffEncoding() { return std::make_unique<TiffEncoding>(); }

}  // namespace vekpix
