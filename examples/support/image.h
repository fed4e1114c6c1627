// A grey picture in memory.

#ifndef DEMO_IMAGE_H
#define DEMO_IMAGE_H

#include <cstddef>
#include <string>
#include <vector>

namespace demo {

struct Image {
    int cols, rows;
    std::vector<double> pixels; // row by row from the top; 0 is black, 1 is white

    double at(int col, int row) const
    {
        return pixels[static_cast<std::size_t>(row) * static_cast<std::size_t>(cols) +
                      static_cast<std::size_t>(col)];
    }
};

Image blackImage(int cols, int rows);

// Reads a binary PGM file with sides of atLeast to 4096 pixels. Throws std::runtime_error, with
// the file's name and what is wrong with it, on a file that cannot be read, is no such file or
// is cut short.
Image readImage(const std::string &path, int atLeast);

// The picture with margins, in which the pixels of its rim go on.
Image extended(const Image &image, int margin);

// What is left of a picture without its margins.
Image withoutMargins(const Image &image, int margin);

} // namespace demo

#endif
