// The program as a user runs it, in a folder of its own that goes with the test.
#ifndef VEK_TESTS_VEKPIX_COMMAND_SUPPORT_H
#define VEK_TESTS_VEKPIX_COMMAND_SUPPORT_H

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "jpeg_peer.h"
#include "support/temporary_folder.h"

namespace support {

struct Outcome {
    int status = -1;
    std::string output;
    std::string errors;
    long peakKilobytes = 0;
};

class FolderTest : public testing::Test {
protected:
    std::string path(const std::string& name) const { return temporary_.file(name); }

    void save(const std::string& name, std::span<const uint8_t> bytes) const
    {
        std::ofstream(path(name), std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    void save(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(path(name), std::ios::binary) << bytes;
    }
    std::string contents(const std::string& name) const
    {
        std::ifstream in(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    std::vector<uint8_t> bytes(const std::string& name) const
    {
        const std::string text = contents(name);
        return {text.begin(), text.end()};
    }

    // A binary PPM or PGM file.
    void savePnm(const std::string& name, const peer::Picture& picture) const
    {
        std::ofstream out(path(name), std::ios::binary);
        out << (picture.channels == 1 ? "P5 " : "P6 ") << picture.width << ' ' << picture.height << " 255\n";
        out.write(reinterpret_cast<const char*>(picture.pixels.data()),
                  static_cast<std::streamsize>(picture.pixels.size()));
    }
    peer::Picture loadPnm(const std::string& name) const
    {
        std::ifstream in(path(name), std::ios::binary);
        std::string magic;
        int largest = 0;
        peer::Picture picture;
        in >> magic >> picture.width >> picture.height >> largest;
        in.get();
        picture.channels = magic == "P5" ? 1 : 3;
        EXPECT_EQ(255, largest);
        picture.pixels.assign(std::istreambuf_iterator<char>(in), {});
        return picture;
    }

    TemporaryFolder temporary_{"vekpix_test_"};
    const std::filesystem::path& folder_ = temporary_.path();
};

class CommandTest : public FolderTest {
protected:
    Outcome run(std::vector<std::string> arguments) const
    {
        const std::string out = path("stdout");
        const std::string err = path("stderr");
        const pid_t child = fork();
        if (child == 0) {
            dup2(open(out.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600), STDOUT_FILENO);
            dup2(open(err.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600), STDERR_FILENO);
            std::vector<char*> pointers;
            for (std::string& argument : arguments) pointers.push_back(argument.data());
            pointers.push_back(nullptr);
            execvp(pointers[0], pointers.data());
            _exit(127);
        }
        Outcome outcome;
        int status = 0;
        rusage usage{};
        EXPECT_EQ(child, wait4(child, &status, 0, &usage));
        outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        outcome.output = contents("stdout");
        outcome.errors = contents("stderr");
        outcome.peakKilobytes = usage.ru_maxrss;
        return outcome;
    }

    Outcome vekpix(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), VEKPIX_PROGRAM);
        return run(std::move(arguments));
    }

    // A failure as the user should see it: one line, status 1, nothing on standard output. Returns the line.
    std::string failure(std::vector<std::string> arguments) const
    {
        const Outcome outcome = vekpix(std::move(arguments));
        EXPECT_EQ(1, outcome.status);
        EXPECT_EQ("", outcome.output);
        EXPECT_EQ(0u, outcome.errors.find("vekpix: ")) << outcome.errors;
        EXPECT_EQ(outcome.errors.size() - 1, outcome.errors.find('\n')) << outcome.errors;
        return outcome.errors;
    }
};

}  // namespace support

#endif
