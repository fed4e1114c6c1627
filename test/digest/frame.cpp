// Status and modes.

#include "digest.h"

RVX_DIGEST(rvxError)
{
    for (int status = -20; status <= 3; ++status) {
        digest.add(rvxError(status, "func", "context", "file", 1));
        digest.add(rvxGetErrStatus());
    }
}

RVX_DIGEST(rvxErrorStr)
{
    for (int status = -20; status <= 3; ++status)
        digest.add(rvxErrorStr(status));
}

RVX_DIGEST(rvxGetErrStatus)
{
    digest.add(rvxGetErrStatus());
}

RVX_DIGEST(rvxSetErrStatus)
{
    rvxSetErrStatus(-77);
    digest.add(rvxGetErrStatus());
}

RVX_DIGEST(rvxGetErrMode)
{
    digest.add(rvxGetErrMode());
}

RVX_DIGEST(rvxSetErrMode)
{
    rvxSetErrMode(-2);
    digest.add(rvxGetErrMode());
    rvxSetErrMode(1);
}
