// The life of the thread records: made when the library is loaded, when a
// thread starts or on a thread's first call, and freed when either ends.
//
// A detach frees the record alone. Tables that hang on it stay allocated unless
// the thread's own calls released them: a thread that is done with its
// transforms says so with the release flags.

#include "frame/rvxthread.h"

namespace {

// A record with its defaults in the calling thread's slot, or null.
rvxThreadContext *createContext()
{
    auto *context = static_cast<rvxThreadContext *>(rvxRecordAlloc(sizeof(rvxThreadContext)));
    if (context == nullptr)
        return nullptr;
    rvxInitThreadContext(context);
    if (rvxSlotSet(context))
        return context;
    rvxRecordFree(context);
    return nullptr;
}

} // namespace

rvxThreadContext *rvxFirstThreadContext()
{
    rvxThreadContext *context = createContext();
    if (context == nullptr)
        rvxFatalExit("Problem to allocate memory for TLS RVX context.");
    return context;
}

void rvxInitThreadContext(rvxThreadContext *context)
{
    if (context == nullptr)
        return;
    context->sizedTableCount = 0;
    context->dctCosLen = 0;
    context->dctCosTable = nullptr;
    context->dctStageCount = 0;
    context->dctStageTables = nullptr;
    context->dctScale = 0.0;
    context->dctStageScale = 0.0;
    context->errMode = 0;
    context->errStatus = RVX_STATUS_OK;
    context->errHandler = rvxDefaultErrHandler;
    context->reservedInit = 32;
}

bool rvxProcessAttach()
{
    return rvxSlotAlloc() && createContext() != nullptr;
}

bool rvxThreadAttach()
{
    return createContext() != nullptr;
}

void rvxThreadDetach()
{
    if (!rvxSlotValid())
        return;
    if (rvxThreadContext *context = rvxSlotGet())
        rvxRecordFree(context);
}

void rvxProcessDetach()
{
    if (!rvxSlotValid())
        return;
    rvxThreadDetach();
    rvxSlotFree();
}
