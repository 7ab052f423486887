// The option --scans of commands that write JPEG files.
#ifndef VEKPIX_COMMANDS_SCAN_SCRIPT_FILE_H
#define VEKPIX_COMMANDS_SCAN_SCRIPT_FILE_H

#include <string>

#include "error.h"
#include "io/input_file.h"
#include "jpeg/scan_script.h"

namespace vekpix {

// The scans that a text file tells; none for an empty path.
inline jpeg::ScanScript readScanScript(const std::string& path)
{
    if (path.empty())
        return {};
    const std::vector<uint8_t> text = readFile(path);
    try {
        jpeg::ScanScript script = jpeg::parseScanScript({reinterpret_cast<const char*>(text.data()), text.size()});
        if (script.empty())
            throw Error("no scans in it");
        return script;
    } catch (const Error& error) {
        throw Error(path + ": " + error.what());
    }
}

}  // namespace vekpix

#endif
