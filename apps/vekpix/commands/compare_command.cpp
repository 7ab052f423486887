#include "commands/commands.h"

namespace vekpix {

void addCompareCommand(CLI::App& app) { app.add_subcommand("compare"); }

}  // namespace vekpix
