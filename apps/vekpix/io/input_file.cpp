#include "io/input_file.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "error.h"

namespace vekpix {

InputFile::InputFile(const std::string& path) : path_(path), file_(std::fopen(path.c_str(), "rbe"))
{
    struct stat status = {};
    if (!file_ || fstat(fileno(file_.get()), &status) != 0)
        fail();
    if (S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        fail();
    }
    if (S_ISREG(status.st_mode))
        size_ = static_cast<uint64_t>(status.st_size);
}

void InputFile::fail() const { throw Error("cannot read " + path_ + ": " + std::strerror(errno)); }

size_t InputFile::read(std::span<uint8_t> bytes)
{
    const size_t count = std::fread(bytes.data(), 1, bytes.size(), file_.get());
    if (count < bytes.size() && std::ferror(file_.get()))
        fail();
    return count;
}

int InputFile::get()
{
    const int c = getc_unlocked(file_.get());
    if (c == EOF && std::ferror(file_.get()))
        fail();
    return c;
}

std::optional<long> InputFile::position()
{
    const long position = std::ftell(file_.get());
    return position >= 0 ? std::optional(position) : std::nullopt;
}

void InputFile::seek(long position)
{
    if (std::fseek(file_.get(), position, SEEK_SET) != 0)
        fail();
}

std::vector<uint8_t> readFile(const std::string& path)
{
    InputFile file(path);
    std::vector<uint8_t> bytes;
    size_t length = 0;
    do {
        bytes.resize(length + (length == 0 ? file.size().value_or(0) + 1 : length));
        length += file.read(std::span(bytes).subspan(length));
    } while (length == bytes.size());
    bytes.resize(length);
    return bytes;
}

}  // namespace vekpix
