// The subcommands: each adds its options to the command line and its work as their callback. Failures are exceptions.
#ifndef VEKPIX_COMMANDS_COMMANDS_H
#define VEKPIX_COMMANDS_COMMANDS_H

#include <CLI/CLI.hpp>

namespace vekpix {

void addEncodeCommand(CLI::App& app);
void addDecodeCommand(CLI::App& app);
void addTranscodeCommand(CLI::App& app);
void addInfoCommand(CLI::App& app);
void addCompareCommand(CLI::App& app);

}  // namespace vekpix

#endif
