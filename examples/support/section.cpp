#include "section.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <new>
#include <stdexcept>

#include <spawn.h>
#include <sys/wait.h>

extern char **environ;

namespace demo {
namespace {

// What all pictures have in common.
constexpr const char *pictureStyle = R"(
set border linecolor rgb '#9aa0a8' linewidth 1
set tics out nomirror textcolor rgb '#30343a'
set xlabel textcolor rgb '#30343a'
set ylabel textcolor rgb '#30343a'
set cblabel textcolor rgb '#30343a'
set grid linecolor rgb '#e3e6ea' linewidth 1 linetype 1
set key textcolor rgb '#30343a'
# From dark to light in steps that look even.
set palette defined (0 '#07071d', 0.2 '#2a1457', 0.4 '#6f1f7b', 0.6 '#c23b66', \
                     0.8 '#f6854e', 1 '#fdf5c0')
)";

void writeFile(const std::string &path, const std::string &bytes)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << bytes;
    file.close();
    if (!file)
        throw std::runtime_error(path + ": cannot be written");
}

// Runs gnuplot on a script, from within the script's folder.
void runGnuplot(const std::string &folder, const std::string &script)
{
    std::string program = "gnuplot", argument = script;
    char *words[] = {program.data(), argument.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    pid_t child = 0;
    const int failure = posix_spawnp(&child, words[0], &actions, nullptr, words, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0)
        throw std::runtime_error(std::string("gnuplot cannot be run: ") + std::strerror(failure));
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            throw std::runtime_error("gnuplot cannot be waited for");
    }
    if (status != 0)
        throw std::runtime_error("gnuplot failed on " + folder + "/" + script);
}

} // namespace

Section::Section(const std::string &output, const std::string &name, const std::string &title)
    : folder_(output + "/" + name), name_(name)
{
    std::error_code failure;
    std::filesystem::create_directories(folder_, failure);
    if (failure)
        throw std::runtime_error(folder_ + ": " + failure.message());
    html_ = "<section id=\"" + name_ + "\">\n<h2>" + title + "</h2>\n";
}

void Section::text(const std::string &html)
{
    html_ += "<p>" + html + "</p>\n";
}

void Section::table(const std::vector<std::pair<std::string, std::string>> &rows)
{
    html_ += "<table>\n";
    for (const auto &[label, value] : rows) {
        std::printf("%-16s %s\n", label.c_str(), value.c_str());
        html_ += "<tr><th>" + label + "</th><td>" + value + "</td></tr>\n";
    }
    html_ += "</table>\n";
}

void Section::data(const std::string &file, const std::string &header,
                   const std::vector<std::vector<double>> &columns) const
{
    std::string lines = "# " + header + "\n";
    for (std::size_t row = 0; row < columns[0].size(); ++row) {
        for (const auto &column : columns)
            lines += format("%.6g ", column[row]);
        lines.back() = '\n';
    }
    writeFile(folder_ + "/" + file, lines);
}

std::string Section::grid(const std::string &file, const std::vector<float> &values, int columns,
                          double left, double columnStep, double bottom, double rowStep) const
{
    std::string bytes(values.size() * sizeof(float), '\0');
    std::memcpy(bytes.data(), values.data(), bytes.size());
    writeFile(folder_ + "/" + file, bytes);
    return format("'%s' binary format='%%float' array=(%d,%d) scan=yx "
                  "origin=(%.9g,%.9g) dx=%.9g dy=%.9g",
                  file.c_str(), columns, static_cast<int>(values.size()) / columns, left, bottom,
                  columnStep, rowStep);
}

void Section::picture(const std::string &name, int width, int height, const std::string &script,
                      const std::string &caption)
{
    const std::string file = folder_ + "/" + name + ".png";
    std::filesystem::remove(file);
    writeFile(folder_ + "/" + name + ".gp",
              format("set terminal pngcairo size %d,%d font 'DejaVu Sans,15'\n", width, height) +
                  "set output '" + name + ".png'\n" + pictureStyle + script);
    runGnuplot(folder_, name + ".gp");
    std::error_code failure;
    if (std::filesystem::file_size(file, failure) == 0 || failure)
        throw std::runtime_error(file + ": gnuplot drew nothing");
    html_ += "<figure><img src=\"" + name_ + "/" + name + ".png\" alt=\"" + caption +
             "\">\n<figcaption>" + caption + "</figcaption></figure>\n";
}

void Section::finish() const
{
    writeFile(folder_ + "/section.html", html_ + "</section>\n");
}

int runChapter(
    int argc, char **argv, const std::string &name,
    const std::function<void(const std::string &input, const std::string &output)> &chapter)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s INPUT OUTPUT_FOLDER\n", argv[0]);
        return 2;
    }
    try {
        chapter(argv[1], argv[2]);
    } catch (const std::bad_alloc &) {
        std::fprintf(stderr, "%s: %s: not enough memory\n", name.c_str(), argv[1]);
        return 1;
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "%s: %s\n", name.c_str(), failure.what());
        return 1;
    }
    return 0;
}

std::vector<double> ramp(std::size_t n, double first, double step)
{
    std::vector<double> values;
    for (std::size_t i = 0; i < n; ++i)
        values.push_back(first + step * static_cast<double>(i));
    return values;
}

std::string panel(double left, double right, double bottom, double top)
{
    return format("set lmargin at screen %g\nset rmargin at screen %g\n"
                  "set bmargin at screen %g\nset tmargin at screen %g\n",
                  left, right, bottom, top);
}

std::string format(const char *pattern, ...)
{
    va_list values;
    va_start(values, pattern);
    va_list again;
    va_copy(again, values);
    const int len = std::vsnprintf(nullptr, 0, pattern, values);
    va_end(values);
    std::string text(static_cast<std::size_t>(len > 0 ? len : 0), '\0');
    std::vsnprintf(text.data(), text.size() + 1, pattern, again);
    va_end(again);
    return text;
}

} // namespace demo
