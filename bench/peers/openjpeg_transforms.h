// Component transforms and wavelets of the packaged JPEG 2000 library (OpenJPEG 2.5), which its static library offers
// to the linker but no header of it declares. The records are those parts of its own that the wavelets look at.
#ifndef VEK_BENCH_PEERS_OPENJPEG_TRANSFORMS_H
#define VEK_BENCH_PEERS_OPENJPEG_TRANSFORMS_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace openjpeg {

struct Band {
    int32_t x0, y0, x1, y1;
    uint32_t number;
    void* precincts;
    uint32_t precinctsSize;
    int32_t bitPlanes;
    float stepSize;
};
struct Resolution {
    int32_t x0, y0, x1, y1;
    uint32_t precinctsWide, precinctsHigh;
    uint32_t bandCount;
    Band bands[3];
    uint32_t windowX0, windowY0, windowX1, windowY1;
};
struct TileComponent {
    int32_t x0, y0, x1, y1;
    uint32_t number;
    uint32_t resolutionCount;
    uint32_t resolutionsToDecode;
    Resolution* resolutions;
    uint32_t resolutionsSize;
    int32_t* data;
    int32_t ownsData;
    size_t sizeNeeded, size;
    int32_t* windowData;
    uint32_t windowX0, windowY0, windowX1, windowY1;
    uint32_t pixelCount;
};
struct TileCoder {
    int32_t positions[5];
    void* tileImage;
    void* image;
    void* codingParameters;
    void* tileParameters;
    uint32_t tileNumber;
    uint32_t isDecoder;
    void* threadPool;
    uint32_t windowX0, windowY0, windowX1, windowY1;
    int32_t wholeTileDecoding;
    int32_t* usedComponents;
};

extern "C" {
void opj_mct_encode(int32_t* c0, int32_t* c1, int32_t* c2, size_t n);
void opj_mct_decode(int32_t* c0, int32_t* c1, int32_t* c2, size_t n);
void opj_mct_encode_real(float* c0, float* c1, float* c2, size_t n);
void opj_mct_decode_real(float* c0, float* c1, float* c2, size_t n);
int32_t opj_dwt_encode(TileCoder* coder, TileComponent* component);
int32_t opj_dwt_decode(TileCoder* coder, TileComponent* component, uint32_t resolutionCount);
int32_t opj_dwt_encode_real(TileCoder* coder, TileComponent* component);
int32_t opj_dwt_decode_real(TileCoder* coder, TileComponent* component, uint32_t resolutionCount);
void* opj_thread_pool_create(int threads);
void opj_thread_pool_destroy(void* pool);
}

// A square tile at the origin, to be transformed on the calling thread by `levels` levels.
class Tile {
public:
    Tile(int32_t* data, int side, int levels)
    {
        for (int r = 0; r <= levels; ++r) {
            Resolution& resolution = resolutions_[static_cast<size_t>(r)];
            const int shift = levels - r;
            resolution.x1 = resolution.y1 = (side + (1 << shift) - 1) >> shift;
        }
        coder_.threadPool = opj_thread_pool_create(0);
        coder_.wholeTileDecoding = 1;
        component_.x1 = component_.y1 = side;
        component_.resolutionCount = component_.resolutionsToDecode = static_cast<uint32_t>(levels + 1);
        component_.resolutions = resolutions_.data();
        component_.data = data;
    }
    ~Tile() { opj_thread_pool_destroy(coder_.threadPool); }
    Tile(const Tile&) = delete;
    Tile& operator=(const Tile&) = delete;

    void encode() { opj_dwt_encode(&coder_, &component_); }
    void decode() { opj_dwt_decode(&coder_, &component_, component_.resolutionCount); }
    void encodeReal() { opj_dwt_encode_real(&coder_, &component_); }
    void decodeReal() { opj_dwt_decode_real(&coder_, &component_, component_.resolutionCount); }

private:
    std::array<Resolution, 33> resolutions_ = {};
    TileCoder coder_ = {};
    TileComponent component_ = {};
};

}  // namespace openjpeg

#endif
