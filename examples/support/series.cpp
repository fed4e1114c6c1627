#include "series.h"

#include <climits>
#include <cmath>
#include <fstream>
#include <locale>
#include <sstream>

#include "file.h"

namespace demo {
namespace {

// The one number of a line, whatever the locale; false if there is anything else.
bool parseNumber(const std::string &line, double &number)
{
    std::istringstream words(line);
    words.imbue(std::locale::classic());
    return words >> number && (words >> std::ws).eof() && std::isfinite(number);
}

} // namespace

std::vector<double> readSeries(const std::string &path, int atLeast)
{
    requireFile(path, "a text file of numbers");
    std::ifstream file(path);
    std::vector<double> series;
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        if (line.empty() || line == "\r" || line[0] == '#')
            continue;
        series.push_back(0.0);
        if (!parseNumber(line, series.back()))
            refuse(path, "line " + std::to_string(number) + " is not a number");
        if (series.size() > INT_MAX / 8)
            refuse(path, "is too long");
    }
    if (file.bad())
        refuse(path, "cannot be read to its end");
    if (series.size() < static_cast<std::size_t>(atLeast))
        refuse(path, "is too short: it has " + std::to_string(series.size()) + " numbers, " +
                         std::to_string(atLeast) + " are needed");
    return series;
}

} // namespace demo
