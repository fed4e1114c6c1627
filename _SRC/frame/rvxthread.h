// The one record that each thread owns: its last status, its error mode and
// its caches of transform tables.

#ifndef RVXTHREAD_H
#define RVXTHREAD_H

#include <cstdint>

#include "frame/rvxplatform.h"
#include "rvx.h"

enum { RVX_ORDERS = 32, RVX_SIZED_TABLES = 96, RVX_SMALL_TABLES = 5 };

using rvxErrHandler = int (*)(int status, const char *func, const char *context, const char *file,
                              int line);

struct rvxThreadContext {
    std::int32_t errStatus;
    std::int32_t errMode;
    rvxErrHandler errHandler;
    std::int32_t reservedInit; // set at creation, read by nothing

    // Tables by length. Nothing adds to the list; its release finds nothing.
    std::int32_t sizedTableCount;

    // Cosine transform.
    std::int32_t dctCosLen;
    double *dctCosTable;
    std::int32_t dctStageCount;
    double **dctStageTables;
    double dctScale;
    double dctStageScale;

    std::uint32_t sizedTableKey[RVX_SIZED_TABLES];
    void *sizedTable[RVX_SIZED_TABLES];

    // Fourier transforms, by order.
    ZCplx *twdTable[RVX_ORDERS];
    std::uint32_t *bitRevTable[RVX_ORDERS];
    std::uint32_t *shortBitRevTable[RVX_ORDERS];
    ZCplx *fftTableA[RVX_ORDERS];
    ZCplx *fftTableB[RVX_ORDERS];
    ZCplx *fftTableC[RVX_ORDERS];
    ZCplx *realFftTableA[RVX_ORDERS];
    ZCplx *realFftTableB[RVX_ORDERS];

    // Nothing fills these; their release finds nothing.
    std::uint32_t smallTableKey[RVX_SMALL_TABLES];
    void *smallTable[RVX_SMALL_TABLES];
};

// The calling thread's record when it has none yet. Never null: without memory
// for it the process ends, since there is nowhere to put a status.
rvxThreadContext *rvxFirstThreadContext();

// The calling thread's record, made on the thread's first call. Never null. Ask
// once per exported call.
inline rvxThreadContext *rvxGetThreadContext()
{
    rvxThreadContext *context = rvxSlotGet();
    return context != nullptr ? context : rvxFirstThreadContext();
}

// Sets the defaults of a new, zero-filled record. Null does nothing.
void rvxInitThreadContext(rvxThreadContext *context);

// Ends the process in error mode 0, otherwise hands the status back.
int rvxDefaultErrHandler(int status, const char *func, const char *context, const char *file,
                         int line);

// What the platform's entry points call. False from an attach means that the
// library, or this thread, starts without a record.
bool rvxProcessAttach();
bool rvxThreadAttach();
void rvxThreadDetach();
void rvxProcessDetach();

#endif
