// Options that belong to one format, and are wrong with another.
#ifndef VEKPIX_COMMANDS_ONLY_OPTIONS_H
#define VEKPIX_COMMANDS_ONLY_OPTIONS_H

#include <CLI/CLI.hpp>

#include <string>

#include "error.h"

namespace vekpix {

// An Error if an option of `group` has been given for a file of another format.
inline void refuseOptions(const CLI::Option_group& group, const std::string& path, const std::string& format)
{
    for (const CLI::Option* option : group.get_options())
        if (option->count() > 0)
            throw Error(path + ": " + option->get_name() + " is for " + group.get_group() + " files, not for " +
                        format);
}

}  // namespace vekpix

#endif
