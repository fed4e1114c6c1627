// The status that calls of the library leave behind.

#ifndef DEMO_STATUS_H
#define DEMO_STATUS_H

#include <string>

namespace demo {

// Failed calls return, and leave a status behind that stays until it is cleared: one look
// after a group of calls is enough. Throws std::runtime_error, "TASK: message", if there is one.
void requireSuccess(const std::string &task);

} // namespace demo

#endif
