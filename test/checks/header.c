/* The public header by itself, in the oldest languages that may use it. */
#include "rvx.h"

/* Once more: it guards itself. */
#include "rvx.h"

typedef int rvxNotEmpty;
