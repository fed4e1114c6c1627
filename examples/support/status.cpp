#include "status.h"

#include <stdexcept>

#include "rvx.h"

namespace demo {

void requireSuccess(const std::string &task)
{
    if (rvxGetErrStatus() != RVX_STATUS_OK)
        throw std::runtime_error(task + ": " + rvxErrorStr(rvxGetErrStatus()));
}

} // namespace demo
