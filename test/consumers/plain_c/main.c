#include <rvx.h>

#include <stdio.h>

int main(void)
{
    double block[100];
    ZCplx quotient;

    rvxSetErrMode(1);
    quotient = rvxzDiv(rvxzSet(0.0, 2.0), rvxzSet(0.0, 1.0));
    rvxdbSet(quotient.re, block, 100);
    rvxdbSet(0.0, block, 0);
    printf("%g, then: %s\n", block[99], rvxErrorStr(rvxGetErrStatus()));
    return block[99] == 2.0 && rvxGetErrStatus() == RVX_STATUS_BAD_ARGUMENT ? 0 : 1;
}
