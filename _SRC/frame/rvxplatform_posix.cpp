// The frame on POSIX systems.
//
// The loader runs a constructor when the library comes and a destructor when it
// goes. There is no notice of a thread's start, so a thread's record is made on
// its first call; its end reaches us through the destructor of a pthread key,
// which is the slot.

#if !defined(_WIN32)

#include "frame/rvxplatform.h"

#include <cstdlib>
#include <cstring>
#include <pthread.h>
#include <unistd.h>

#include "frame/rvxthread.h"

__thread rvxThreadContext *rvxSlotMirror = nullptr;

namespace {

pthread_key_t slotKey;
bool slotKeyValid = false; // written at load and unload only

// POSIX has emptied the key before it calls this. The mirror follows the key
// afterwards, so that a call from another key's destructor gets a new record
// and not the freed one.
void threadEnds(void *)
{
    rvxThreadDetach();
    rvxSlotMirror = nullptr;
}

// The earliest priority that is not the system's own: in a program that holds the
// library itself, that program's initialisers may call before main.
__attribute__((constructor(101))) void libraryComes()
{
    // A constructor cannot make the load fail. What could not be had here is
    // missed, and the process ended, at the first call that needs it.
    rvxProcessAttach();
}

__attribute__((destructor(101))) void libraryGoes()
{
    rvxProcessDetach();
}

} // namespace

bool rvxSlotAlloc()
{
    slotKeyValid = pthread_key_create(&slotKey, threadEnds) == 0;
    return slotKeyValid;
}

bool rvxSlotValid()
{
    return slotKeyValid;
}

bool rvxSlotSet(rvxThreadContext *context)
{
    if (!slotKeyValid || pthread_setspecific(slotKey, context) != 0)
        return false;
    rvxSlotMirror = context;
    return true;
}

void rvxSlotFree()
{
    pthread_key_delete(slotKey);
    slotKeyValid = false;
}

void *rvxRecordAlloc(std::size_t bytes)
{
    return std::calloc(1, bytes);
}

void rvxRecordFree(void *record)
{
    std::free(record);
}

void rvxFatalExit(const char *message)
{
    // write(2) alone: the standard streams may need memory.
    const char newline = '\n';
    if (write(STDERR_FILENO, message, std::strlen(message)) >= 0)
        (void)!write(STDERR_FILENO, &newline, 1);
    std::abort();
}

#endif
