#include "commands/commands.h"

namespace vekpix {

void addDecodeCommand(CLI::App& app) { app.add_subcommand("decode"); }

}  // namespace vekpix
