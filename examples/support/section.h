// What a chapter leaves behind: a folder with data files, pictures and the
// section of the page that shows them.

#ifndef DEMO_SECTION_H
#define DEMO_SECTION_H

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace demo {

class Section {
public:
    // Everything goes to the folder OUTPUT/NAME, which is made if it is missing.
    Section(const std::string &output, const std::string &name, const std::string &title);

    // A paragraph, as HTML.
    void text(const std::string &html);

    // A table of two columns, printed to the terminal too.
    void table(const std::vector<std::pair<std::string, std::string>> &rows);

    // A data file in text, one row per line, for the pictures to read.
    void data(const std::string &file, const std::string &header,
              const std::vector<std::vector<double>> &columns) const;

    // A data file of a grid of values, column by column, whose first value lies at
    // (left, bottom). Gives the words by which a script names it.
    std::string grid(const std::string &file, const std::vector<float> &values, int columns,
                     double left, double columnStep, double bottom, double rowStep) const;

    // Draws NAME.png, with a sentence below it. The script is gnuplot's and is
    // kept as NAME.gp beside the picture; it names data files without a folder.
    void picture(const std::string &name, int width, int height, const std::string &script,
                 const std::string &caption);

    // Writes the section; called once, at the end.
    void finish() const;

private:
    std::string folder_;
    std::string name_;
    std::string html_;
};

// The body of main: takes the input file and the output folder from the command
// line, runs the chapter, and turns what it throws into a message and the exit
// code 1.
int runChapter(
    int argc, char **argv, const std::string &name,
    const std::function<void(const std::string &input, const std::string &output)> &chapter);

// first, first + step, first + 2 step ...: n of them, for a column of data.
std::vector<double> ramp(std::size_t n, double first, double step);

// Lines of a script that place a panel in parts of the picture's width and height.
std::string panel(double left, double right, double bottom, double top);

// text with its numbers, as printf makes it.
__attribute__((format(printf, 1, 2))) std::string format(const char *pattern, ...);

} // namespace demo

#endif
