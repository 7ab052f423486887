// vekpix: codes and decodes pictures by the library's functions. The folders: commands (the command line), image (PNG
// and PNM pictures), io (files), work (threads), and one for each coded format.
#include <cstdio>
#include <exception>
#include <new>

#include "commands/commands.h"
#include "error.h"

int main(int argc, char** argv)
{
    CLI::App app("Codes, decodes and compares pictures.", "vekpix");
    app.require_subcommand(1);
    vekpix::addEncodeCommand(app);
    vekpix::addDecodeCommand(app);
    vekpix::addTranscodeCommand(app);
    vekpix::addInfoCommand(app);
    vekpix::addCompareCommand(app);
    try {
        app.parse(argc, argv);
        return 0;
    } catch (const CLI::Success& request) {  // --help
        return app.exit(request);
    } catch (const CLI::ParseError& error) {
        std::fprintf(stderr, "vekpix: %s (vekpix --help tells the usage)\n", error.what());
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "vekpix: not enough memory\n");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vekpix: %s\n", error.what());
    }
    return 1;
}
