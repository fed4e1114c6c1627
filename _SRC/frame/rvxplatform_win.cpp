// The frame on Windows: the module's entry point and the system's thread-local
// slots.

#if defined(_WIN32)

#include "frame/rvxplatform.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "frame/rvxthread.h"

namespace {

DWORD slotIndex = TLS_OUT_OF_INDEXES; // written at load alone

} // namespace

bool rvxSlotAlloc()
{
    slotIndex = TlsAlloc();
    return rvxSlotValid();
}

bool rvxSlotValid()
{
    return slotIndex != TLS_OUT_OF_INDEXES;
}

rvxThreadContext *rvxSlotGet()
{
    // TlsGetValue clears the thread's last error, which belongs to the caller.
    const DWORD lastError = GetLastError();
    auto *context = static_cast<rvxThreadContext *>(TlsGetValue(slotIndex));
    SetLastError(lastError);
    return context;
}

bool rvxSlotSet(rvxThreadContext *context)
{
    return TlsSetValue(slotIndex, context) != FALSE;
}

void rvxSlotFree()
{
    // The index itself stays: nothing may read a slot after the module has gone.
    TlsFree(slotIndex);
}

void *rvxRecordAlloc(std::size_t bytes)
{
    return LocalAlloc(LPTR, bytes);
}

void rvxRecordFree(void *record)
{
    LocalFree(record);
}

void rvxFatalExit(const char *message)
{
    FatalAppExitA(0, message);
    __builtin_unreachable();
}

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD notification, LPVOID)
{
    switch (notification) {
    case DLL_PROCESS_ATTACH:
        return rvxProcessAttach() ? TRUE : FALSE;
    case DLL_THREAD_ATTACH:
        return rvxThreadAttach() ? TRUE : FALSE;
    case DLL_THREAD_DETACH:
        rvxThreadDetach();
        return TRUE;
    case DLL_PROCESS_DETACH:
        rvxProcessDetach();
        return TRUE;
    default:
        return TRUE;
    }
}

#endif
