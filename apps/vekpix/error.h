// What goes wrong for a reason that the user should read: one line.
#ifndef VEKPIX_ERROR_H
#define VEKPIX_ERROR_H

#include <stdexcept>

namespace vekpix {

class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace vekpix

#endif
