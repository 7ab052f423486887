#include "jpeg/band_source.h"
#include "jpeg/store_reader.h"

namespace vekpix::jpeg {

namespace {

class ProgressiveBands final : public BandSource {
public:
    ProgressiveBands(Picture picture, const DecodeOptions& options)
        : picture_(std::move(picture)),
          threads_(options.threads),
          store_(std::make_shared<CoefficientStore>(picture_.frame))
    {
        picture_.stored = store_;
        bands_ = makeMcuBands(picture_, options);
        if (!bands_)
            bands_ = makePlaneBands(picture_, options);
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
    return std::make_unique<ProgressiveBands>(picture, options);
}

}  // namespace vekpix::jpeg
