// A series of numbers in memory.

#ifndef DEMO_SERIES_H
#define DEMO_SERIES_H

#include <string>
#include <vector>

namespace demo {

// Reads a text file of one number per line, at least atLeast of them. Empty lines and
// lines that begin with # say nothing. Throws std::runtime_error, with the file's name
// and what is wrong with it, on a file that cannot be read or holds anything else.
std::vector<double> readSeries(const std::string &path, int atLeast);

} // namespace demo

#endif
