// vekpix: codes and decodes pictures by the library's functions. The folders: commands (the command line), image (PNG
// and PNM pictures), io (files), work (threads), and one for each coded format.
#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>
#include <new>

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
        std::fprintf(stderr, "vekpix: %s (vekpix --help tells the usage)\n", error.what());
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "vekpix: not enough memory\n");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vekpix: %s\n", error.what());
    }
    return 1;
}
