// A file that appears under its name only when it is complete.
#ifndef VEKPIX_IO_OUTPUT_FILE_H
#define VEKPIX_IO_OUTPUT_FILE_H

#include <string>

#include "io/byte_sink.h"

namespace vekpix {

// Writes beside `path` and moves the file there in commit(); without commit(), and when a signal ends the program,
// nothing is left behind, and what was at `path` stays. A `path` that is no regular file (a pipe, a device) is written
// to directly.
class OutputFile : public ChangeableSink {
public:
    explicit OutputFile(std::string path);
    ~OutputFile() override;
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void write(std::span<const uint8_t> bytes) override;
    // An Error for a pipe or the like.
    void change(uint64_t place, std::span<const uint8_t> bytes) override;
    void commit();

private:
    void writePending();
    void writeThrough(std::span<const uint8_t> bytes);

    std::string path_;
    std::string temporary_;  // empty: `path_` itself is written
    int file_ = -1;
    std::vector<uint8_t> pending_;
};

}  // namespace vekpix

#endif
