// As many bytes as addresses allow, with few behind them.
#ifndef VEK_TESTS_SUPPORT_REPEATED_BYTES_H
#define VEK_TESTS_SUPPORT_REPEATED_BYTES_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace support {

// `size` bytes and no more, rounded up to whole pages: the same `period` bytes over and over. What is written to one of
// them is written to all.
class RepeatedBytes {
public:
    static constexpr size_t period = size_t{1} << 20;

    explicit RepeatedBytes(size_t size) : size_(size)
    {
        const int file = memfd_create("repeated", 0);
        void* map = mmap(nullptr, size + period, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (file < 0 || map == MAP_FAILED || ftruncate(file, period) != 0)
            std::abort();
        data_ = static_cast<uint8_t*>(map);
        for (size_t at = 0; at < size; at += period)
            if (mmap(data_ + at, size - at < period ? size - at : period, PROT_READ | PROT_WRITE,
                     MAP_SHARED | MAP_FIXED, file, 0) == MAP_FAILED)
                std::abort();
        close(file);
    }
    ~RepeatedBytes() { munmap(data_, size_ + period); }
    RepeatedBytes(const RepeatedBytes&) = delete;
    RepeatedBytes& operator=(const RepeatedBytes&) = delete;

    uint8_t* data() { return data_; }

private:
    size_t size_;
    uint8_t* data_;
};

}  // namespace support

#endif
