#include "commands/commands.h"

namespace vekpix {

void addEncodeCommand(CLI::App& app) { app.add_subcommand("encode"); }

}  // namespace vekpix
