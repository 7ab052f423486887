#include "io/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>

#include "error.h"

namespace vekpix {

namespace {

constexpr size_t pendingBytes = size_t{1} << 16;

[[noreturn]] void failTo(const char* what, const std::string& path)
{
    throw Error(std::string("cannot ") + what + " " + path + ": " + std::strerror(errno));
}

mode_t permissionsOfNewFiles()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

// The temporary file that was made last. It goes when a signal ends the program; once it has its own name, or is
// removed, there is none.
std::array<char, PATH_MAX> unfinished{};

void removeUnfinished(int signal)
{
    unlink(unfinished.data());
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void removeWhenInterrupted(const std::string& temporary)
{
    if (temporary.size() >= unfinished.size())
        return;
    std::strcpy(unfinished.data(), temporary.c_str());
    for (const int signal : {SIGHUP, SIGINT, SIGTERM})
        if (std::signal(signal, removeUnfinished) == SIG_IGN)
            std::signal(signal, SIG_IGN);  // as a shell wants it of programs in the background
}

}  // namespace

OutputFile::OutputFile(std::string path) : path_(std::move(path))
{
    struct stat status = {};
    const bool exists = stat(path_.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        file_ = open(path_.c_str(), O_WRONLY | O_CLOEXEC);
    } else {
        if (exists)
            path_ = std::filesystem::canonical(path_);  // a link stays, and what it leads to is replaced
        temporary_ = path_ + ".XXXXXX";
        file_ = mkostemp(temporary_.data(), O_CLOEXEC);
        if (file_ >= 0) {
            removeWhenInterrupted(temporary_);
            fchmod(file_, exists ? status.st_mode & 0777 : permissionsOfNewFiles());
        }
    }
    if (file_ < 0)
        failTo("write", path_);
    pending_.reserve(pendingBytes);
}

OutputFile::~OutputFile()
{
    if (file_ < 0)
        return;
    ::close(file_);
    if (!temporary_.empty())
        unlink(temporary_.c_str());
}

void OutputFile::write(std::span<const uint8_t> bytes)
{
    if (pending_.size() + bytes.size() > pendingBytes)
        writePending();
    if (bytes.size() > pendingBytes)
        writeThrough(bytes);
    else
        pending_.insert(pending_.end(), bytes.begin(), bytes.end());
}

void OutputFile::change(uint64_t place, std::span<const uint8_t> bytes)
{
    writePending();
    while (!bytes.empty()) {
        const ssize_t count = ::pwrite(file_, bytes.data(), bytes.size(), static_cast<off_t>(place));
        if (count < 0 && errno != EINTR)
            failTo("write", path_);
        if (count > 0) {
            bytes = bytes.subspan(static_cast<size_t>(count));
            place += static_cast<uint64_t>(count);
        }
    }
}

void OutputFile::writePending()
{
    writeThrough(pending_);
    pending_.clear();
}

void OutputFile::writeThrough(std::span<const uint8_t> bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(file_, bytes.data(), bytes.size());
        if (count >= 0)
            bytes = bytes.subspan(static_cast<size_t>(count));
        else if (errno != EINTR)
            failTo("write", path_);
    }
}

void OutputFile::commit()
{
    writePending();
    const int file = std::exchange(file_, -1);
    const bool closed = ::close(file) == 0;
    if (closed && (temporary_.empty() || std::rename(temporary_.c_str(), path_.c_str()) == 0))
        return;
    const int reason = errno;
    if (!temporary_.empty())
        unlink(temporary_.c_str());
    errno = reason;
    failTo("write", path_);
}

}  // namespace vekpix
