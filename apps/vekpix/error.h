// What goes wrong for a reason that the user should read: one line.
#ifndef VEKPIX_ERROR_H
#define VEKPIX_ERROR_H

#include <stdexcept>
#include <string>

namespace vekpix {

class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Calls `read`; its Error also tells the file.
template <class Read>
auto reading(const std::string& path, const Read& read)
{
    try {
        return read();
    } catch (const Error& error) {
        throw Error(path + ": " + error.what());
    }
}

}  // namespace vekpix

#endif
