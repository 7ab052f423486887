// vekpix: codes and decodes pictures by the library's functions. The folders: commands (the command line), image (PNG
// and PNM pictures), io (files), work (threads), and one for each coded format.
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>
#include <new>
#include <string>

#include "commands/commands.h"
#include "error.h"

namespace {

// What was printed has arrived, or it is an Error.
void finishStandardOutput()
{
    std::cout.flush();
    if (std::fflush(stdout) != 0 || std::ferror(stdout))
        throw vekpix::Error("cannot write to standard output");
}

// Names and damaged files may bring any characters into a message: it is one line all the same, and safe to show.
int fail(std::string message)
{
    std::ranges::replace_if(
        message, [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
    std::fprintf(stderr, "vekpix: %s\n", message.c_str());
    return 1;
}

}  // namespace

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN);  // a pipe that nobody reads any longer is a failure to write like others
    CLI::App app("Codes, decodes and compares pictures.", "vekpix");
    app.require_subcommand(1);
    vekpix::addEncodeCommand(app);
    vekpix::addDecodeCommand(app);
    vekpix::addTranscodeCommand(app);
    vekpix::addInfoCommand(app);
    vekpix::addCompareCommand(app);
    try {
        try {
            app.parse(argc, argv);
        } catch (const CLI::Success& request) {  // --help
            app.exit(request);
        }
        finishStandardOutput();
        return 0;
    } catch (const CLI::ParseError& error) {
        return fail(std::string(error.what()) + " (vekpix --help tells the usage)");
    } catch (const std::bad_alloc&) {
        return fail("not enough memory");
    } catch (const std::exception& error) {
        return fail(error.what());
    }
}
