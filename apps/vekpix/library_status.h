// Library calls that cannot fail on what the application hands them: a failure is a defect, and must not pass unseen.
#ifndef VEKPIX_LIBRARY_STATUS_H
#define VEKPIX_LIBRARY_STATUS_H

#include <stdexcept>
#include <string>

#include "vekj.h"

namespace vekpix {

inline void expectOk(VekStatus status, const char* call)
{
    if (status != vekStsOk) [[unlikely]]
        throw std::logic_error(std::string(call) + " failed with status " + std::to_string(status));
}

}  // namespace vekpix

#endif
