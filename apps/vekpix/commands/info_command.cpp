#include "commands/commands.h"

namespace vekpix {

void addInfoCommand(CLI::App& app) { app.add_subcommand("info"); }

}  // namespace vekpix
