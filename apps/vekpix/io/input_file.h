// A file that is read from front to back.
#ifndef VEKPIX_IO_INPUT_FILE_H
#define VEKPIX_IO_INPUT_FILE_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vekpix {

class InputFile {
public:
    explicit InputFile(const std::string& path);

    // Returns the number of bytes stored: fewer than asked for only at the end of the file.
    size_t read(std::span<uint8_t> bytes);
    // The next byte, or EOF.
    int get();
    // No value if the file is a pipe or the like.
    std::optional<uint64_t> size() const { return size_; }
    std::optional<long> position();
    void seek(long position);
    const std::string& path() const { return path_; }

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    [[noreturn]] void fail() const;

    std::string path_;
    std::unique_ptr<std::FILE, Closer> file_;
    std::optional<uint64_t> size_;
};

// All bytes of a file.
std::vector<uint8_t> readFile(const std::string& path);

}  // namespace vekpix

#endif
