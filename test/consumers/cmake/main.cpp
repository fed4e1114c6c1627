#include <rvx.h>

#include <cstdio>
#include <vector>

int main()
{
    rvxSetErrMode(1);
    const ZCplx i = rvxzSet(0.0, 1.0);
    const ZCplx square = rvxzMpy(i, i);
    std::vector<double> block(100);
    rvxdbSet(square.re, block.data(), 100);
    rvxdbSet(0.0, nullptr, 100);
    const bool good = block.back() == -1.0 && rvxGetErrStatus() == RVX_STATUS_BAD_ARGUMENT;
    std::printf("%s, then: %s\n", good ? "good" : "bad", rvxErrorStr(rvxGetErrStatus()));
    return good ? 0 : 1;
}
