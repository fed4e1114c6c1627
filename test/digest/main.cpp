// Prints one line per exported function: its name and the digest of its results
// on fixed data.

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <string>

#include "digest.h"

namespace {

std::vector<DigestRow> &rows()
{
    static std::vector<DigestRow> all;
    return all;
}

// No row profits from the tables of another, and none is left at the end.
void releaseTables()
{
    for (int order = 0; order < 32; ++order) {
        rvxzFft(nullptr, order, RVX_FFT_FREE_TABLES);
        rvxzFft(nullptr, order, RVX_FFT_FREE_TABLES | RVX_FFT_OUT_BIT_REV);
        rvxdRealFft(nullptr, order, RVX_FFT_FREE_TABLES);
        rvxdCcsFft(nullptr, order, RVX_FFT_FREE_TABLES);
    }
}

} // namespace

DigestRow::DigestRow(const char *rowName, void (*rowRun)(Digest &)) : name(rowName), run(rowRun)
{
    rows().push_back(*this);
}

int main()
{
    rvxSetErrMode(1);
    std::sort(rows().begin(), rows().end(),
              [](const DigestRow &a, const DigestRow &b) { return std::string(a.name) < b.name; });
    for (const DigestRow &row : rows()) {
        Digest digest;
        rvxSetErrStatus(RVX_STATUS_OK);
        row.run(digest);
        releaseTables();
        std::printf("%-24s %016" PRIx64 "\n", row.name, digest.value());
    }
    return 0;
}
