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
        std::printf("%-24s %016" PRIx64 "\n", row.name, digest.value());
    }
    return 0;
}
