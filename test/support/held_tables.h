// Which tables of the Fourier transforms the calling thread holds.

#ifndef RVX_TEST_HELD_TABLES_H
#define RVX_TEST_HELD_TABLES_H

#include <string>

#include "frame/rvxthread.h"

// By kind and then by order, such as "A12 B9 s12": A the large tables, B those of
// Dit, C of Dif, r and c the twists of the real and of the CCS transforms, s swap
// lists, t full circles, p permutations.
inline std::string held()
{
    const rvxThreadContext *c = rvxGetThreadContext();
    std::string names;
    const auto add = [&names](const char *kind, const auto &tables) {
        for (int order = 0; order < RVX_ORDERS; ++order)
            if (tables[order] != nullptr)
                names += (names.empty() ? "" : " ") + (kind + std::to_string(order));
    };
    add("A", c->fftTableA);
    add("B", c->fftTableB);
    add("C", c->fftTableC);
    add("r", c->realFftTableA);
    add("c", c->realFftTableB);
    add("s", c->shortBitRevTable);
    add("t", c->twdTable);
    add("p", c->bitRevTable);
    return names;
}

#endif
