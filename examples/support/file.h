// Input files, before anything is read from them.

#ifndef DEMO_FILE_H
#define DEMO_FILE_H

#include <string>

namespace demo {

// Throws std::runtime_error: "PATH: reason".
[[noreturn]] void refuse(const std::string &path, const std::string &reason);

// Refuses what is not a regular file with something in it that may be read. What
// the operating system can say is said in its words. kind is what is asked for: "a WAV file".
void requireFile(const std::string &path, const std::string &kind);

} // namespace demo

#endif
