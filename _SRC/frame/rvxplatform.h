// What the frame asks of the platform: one pointer slot per thread, zeroed
// memory for the thread record, and a way to end the process with a message.
//
// rvxplatform_posix.cpp and rvxplatform_win.cpp each implement all of it and
// call the notifications of rvxthread.h from the platform's own entry points.

#ifndef RVXPLATFORM_H
#define RVXPLATFORM_H

#include <cstddef>

struct rvxThreadContext;

// Takes the thread-local slot index; false when the platform has none left.
bool rvxSlotAlloc();

// True between a successful rvxSlotAlloc and rvxSlotFree.
bool rvxSlotValid();

// The calling thread's pointer, null while it has none.
#if defined(_WIN32)
rvxThreadContext *rvxSlotGet();
#else
// The slot is a pthread key, and reading that costs a call. This pointer mirrors
// it; the build's thread-local model makes the look-up one load.
extern __thread rvxThreadContext *rvxSlotMirror;

inline rvxThreadContext *rvxSlotGet()
{
    return rvxSlotMirror;
}
#endif

bool rvxSlotSet(rvxThreadContext *context);

// Gives the slot index back. What the slots hold is not looked at.
void rvxSlotFree();

// Zero-filled memory, null when there is none.
void *rvxRecordAlloc(std::size_t bytes);
void rvxRecordFree(void *record);

// Writes the message where the platform shows fatal errors and ends the
// process; it runs no exit handlers.
[[noreturn]] void rvxFatalExit(const char *message);

#endif
