// Memory that ends, or begins, at an unmapped page: an access one byte outside faults.
#ifndef VEK_TESTS_SUPPORT_GUARDED_BUFFER_H
#define VEK_TESTS_SUPPORT_GUARDED_BUFFER_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace support {

enum class Guard { Behind, Before };

// `size` bytes between two unmapped pages. Guard::Behind puts the last byte right before the unmapped page (so that the
// address of the first is as it falls); Guard::Before puts the first byte at the start of its page. `data()` of a
// buffer made with a `misalignment` lies that many bytes off: earlier for Guard::Behind, later for Guard::Before.
class GuardedBytes {
public:
    explicit GuardedBytes(size_t size, Guard guard = Guard::Behind, size_t misalignment = 0)
    {
        const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        const size_t usable = (size + misalignment + page - 1) / page * page + (size + misalignment == 0 ? page : 0);
        mappedSize_ = usable + 2 * page;
        void* map = mmap(nullptr, mappedSize_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (map == MAP_FAILED)
            std::abort();
        mapped_ = static_cast<uint8_t*>(map);
        if (mprotect(mapped_ + page, usable, PROT_READ | PROT_WRITE) != 0)
            std::abort();
        data_ = guard == Guard::Behind ? mapped_ + page + usable - size - misalignment : mapped_ + page + misalignment;
    }
    ~GuardedBytes() { munmap(mapped_, mappedSize_); }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    uint8_t* data() { return data_; }

private:
    uint8_t* mapped_;
    size_t mappedSize_;
    uint8_t* data_;
};

// `count` elements of T, zero at first, in guarded memory.
template <typename T>
class GuardedArray {
public:
    explicit GuardedArray(size_t count, Guard guard = Guard::Behind) : bytes_(count * sizeof(T), guard), count_(count)
    {
    }

    T* data() { return reinterpret_cast<T*>(bytes_.data()); }
    T* begin() { return data(); }
    T* end() { return data() + count_; }
    T& operator[](size_t i) { return data()[i]; }
    size_t size() const { return count_; }

private:
    GuardedBytes bytes_;
    size_t count_;
};

}  // namespace support

#endif
