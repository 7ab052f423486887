// A TIFF file of one PackBits strip in memory, by libtiff: TIFFWriteEncodedStrip() packs it, TIFFReadEncodedStrip()
// unpacks it. The file is mapped when it is read, so nothing is copied on the way to the codec.
#ifndef VEK_BENCH_PEERS_MEMORY_TIFF_H
#define VEK_BENCH_PEERS_MEMORY_TIFF_H

#include <tiffio.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

namespace peer {

class MemoryTiff {
public:
    // To write rows of `rowBytes` bytes.
    MemoryTiff(int rowBytes, int rows)
    {
        open("w");
        TIFFSetField(tiff_, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(rowBytes));
        TIFFSetField(tiff_, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(rows));
        TIFFSetField(tiff_, TIFFTAG_BITSPERSAMPLE, 8);
        TIFFSetField(tiff_, TIFFTAG_SAMPLESPERPIXEL, 1);
        TIFFSetField(tiff_, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        TIFFSetField(tiff_, TIFFTAG_COMPRESSION, COMPRESSION_PACKBITS);
        TIFFSetField(tiff_, TIFFTAG_ROWSPERSTRIP, static_cast<uint32_t>(rows));
        TIFFWriteBufferSetup(tiff_, nullptr, 2 * static_cast<tmsize_t>(rowBytes) * rows);
    }
    ~MemoryTiff() { TIFFClose(tiff_); }
    MemoryTiff(const MemoryTiff&) = delete;
    MemoryTiff& operator=(const MemoryTiff&) = delete;

    // False on failure. The strip may be written again and again, over itself.
    bool pack(std::vector<uint8_t>& pixels)
    {
        const auto size = static_cast<tmsize_t>(pixels.size());
        return TIFFWriteEncodedStrip(tiff_, 0, pixels.data(), size) == size;
    }
    bool unpack(std::vector<uint8_t>& pixels)
    {
        const auto size = static_cast<tmsize_t>(pixels.size());
        return TIFFReadEncodedStrip(tiff_, 0, pixels.data(), size) == size;
    }

    // Ends writing; from now on the file is read.
    void finish()
    {
        TIFFClose(tiff_);
        open("r");
    }

private:
    void open(const char* mode)
    {
        place_ = 0;
        tiff_ = TIFFClientOpen("memory", mode, this, read, write, seek, close, sizeOf, map, unmap);
    }

    static MemoryTiff& self(thandle_t handle) { return *static_cast<MemoryTiff*>(handle); }
    static tmsize_t read(thandle_t handle, void* to, tmsize_t size)
    {
        MemoryTiff& file = self(handle);
        const size_t left = file.place_ < file.bytes_.size() ? file.bytes_.size() - file.place_ : 0;
        const size_t count = std::min(static_cast<size_t>(size), left);
        std::memcpy(to, file.bytes_.data() + file.place_, count);
        file.place_ += count;
        return static_cast<tmsize_t>(count);
    }
    static tmsize_t write(thandle_t handle, void* from, tmsize_t size)
    {
        MemoryTiff& file = self(handle);
        const auto count = static_cast<size_t>(size);
        if (file.bytes_.size() < file.place_ + count)
            file.bytes_.resize(file.place_ + count);
        std::memcpy(file.bytes_.data() + file.place_, from, count);
        file.place_ += count;
        return size;
    }
    static toff_t seek(thandle_t handle, toff_t offset, int whence)
    {
        MemoryTiff& file = self(handle);
        const size_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.place_ : file.bytes_.size();
        file.place_ = from + static_cast<size_t>(offset);
        return file.place_;
    }
    static int close(thandle_t) { return 0; }
    static toff_t sizeOf(thandle_t handle) { return self(handle).bytes_.size(); }
    static int map(thandle_t handle, void** base, toff_t* size)
    {
        *base = self(handle).bytes_.data();
        *size = self(handle).bytes_.size();
        return 1;
    }
    static void unmap(thandle_t, void*, toff_t) {}

    std::vector<uint8_t> bytes_;
    size_t place_ = 0;
    TIFF* tiff_ = nullptr;
};

}  // namespace peer

#endif
