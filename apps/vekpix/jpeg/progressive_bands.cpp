#include "jpeg/band_source.h"
#include "jpeg/store_reader.h"

namespace vekpix::jpeg {

namespace {

std::unique_ptr<BandSource> makeBands(const Picture& picture, const DecodeOptions& options)
{
    std::unique_ptr<BandSource> bands = makeMcuBands(picture, options);
    return bands ? std::move(bands) : makePlaneBands(picture, options);
}

// Several threads share the scans, each of which goes through the whole picture, before the first band.
class ProgressiveBands final : public BandSource {
public:
    ProgressiveBands(Picture picture, const DecodeOptions& options)
        : picture_(std::move(picture)),
          threads_(options.threads),
          store_(std::make_shared<CoefficientStore>(picture_.frame))
    {
        picture_.stored = std::make_shared<WholeStore>(store_);
        bands_ = makeBands(picture_, options);
    }

    int bandRows() const override { return bands_->bandRows(); }
    void readBand(uint8_t* pixels, size_t step, int rows) override
    {
        if (store_) {
            readScans(picture_.file, picture_.scans, *store_, threads_);
            store_.reset();
        }
        bands_->readBand(pixels, step, rows);
    }
    // The marker reader has been there already.
    std::optional<int> markerBehind() const override { return std::nullopt; }

private:
    Picture picture_;
    int threads_;
    std::shared_ptr<CoefficientStore> store_;  // until it is filled
    std::unique_ptr<BandSource> bands_;
};

}  // namespace

std::unique_ptr<BandSource> makeProgressiveBands(const Picture& picture, const DecodeOptions& options)
{
    if (options.threads > 1)
        return std::make_unique<ProgressiveBands>(picture, options);
    Picture inRows = picture;
    inRows.stored = readScansAbreast(picture);
    return makeBands(inRows, options);
}

}  // namespace vekpix::jpeg
