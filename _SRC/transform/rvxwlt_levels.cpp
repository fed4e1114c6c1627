// rvxwlt: the pyramid. A level reads the approximation of the one before and writes its
// own beside it, by turns in two halves of the work buffer, so that nothing is copied
// and each level is one pass: from src at one end, to dst at the other.

#include "transform/rvxwlt_levels.h"

namespace {

// Where the approximation of a level between the first and the last stands. Levels take
// turns; the odd ones' room is as long as the first of them.
double *roomOf(const rvxWtState &state, int level)
{
    return level % 2 == 1 ? state.workBuf : state.workBuf + state.lenLevel[1];
}

} // namespace

void rvxWtSplitLevels(const rvxWtState &state, const double *src, double *dst, RvxWtSplit *split)
{
    const double *x = src;
    double *high = dst + state.len_dec;
    for (int level = 1; level <= state.level; ++level) {
        double *low = level == state.level ? dst : roomOf(state, level);
        high -= state.lenLevel[level];
        split(state, x, state.lenLevel[level - 1], low, high);
        x = low;
    }
}

void rvxWtJoinLevels(const rvxWtState &state, const double *src, double *dst, RvxWtJoin *join)
{
    const double *low = src;
    const double *high = src + state.lenLevel[state.level];
    for (int level = state.level; level >= 1; --level) {
        double *y = level == 1 ? dst : roomOf(state, level - 1);
        join(state, low, high, state.lenLevel[level - 1], y);
        low = y;
        high += state.lenLevel[level];
    }
}
