#include "image.h"

#include <algorithm>
#include <fstream>
#include <limits>

#include "file.h"
#include "section.h"

namespace demo {
namespace {

constexpr int longestSide = 4096;

// The next number of the header; -1 if there is none. A # begins a comment up to the end of the
// line.
int headerNumber(std::istream &file)
{
    while ((file >> std::ws).peek() == '#')
        file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    int number = -1;
    return file >> number ? number : -1;
}

} // namespace

Image blackImage(int cols, int rows)
{
    return {cols, rows,
            std::vector<double>(static_cast<std::size_t>(cols) * static_cast<std::size_t>(rows))};
}

// The format is that of netpbm: P5, columns, rows and the largest value in decimals, one white
// space, and the rows of pixels, of two bytes (the higher one first) where one is not enough.
Image readImage(const std::string &path, int atLeast)
{
    requireFile(path, "a PGM file");
    std::ifstream file(path, std::ios::binary);
    char magic[2] = {};
    file.read(magic, 2);
    if (magic[0] != 'P' || magic[1] != '5')
        refuse(path, "is not a binary PGM file");
    const int cols = headerNumber(file), rows = headerNumber(file), white = headerNumber(file);
    if (cols < 1 || rows < 1 || white < 1 || white > 65535)
        refuse(path, "has a header that is not that of a PGM file");
    if (std::min(cols, rows) < atLeast || std::max(cols, rows) > longestSide)
        refuse(path, format("has %d by %d pixels; %d to %d are needed on each side", cols, rows,
                            atLeast, longestSide));
    file.get();

    Image image = blackImage(cols, rows);
    const std::size_t width = white < 256 ? 1 : 2;
    std::string bytes(image.pixels.size() * width, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (static_cast<std::size_t>(file.gcount()) != bytes.size())
        refuse(path, format("is cut short: %zu bytes of pixels announced, %zu are there",
                            bytes.size(), static_cast<std::size_t>(file.gcount())));
    for (std::size_t i = 0; i < image.pixels.size(); ++i) {
        int value = 0;
        for (std::size_t k = 0; k < width; ++k)
            value = value * 256 + static_cast<unsigned char>(bytes[i * width + k]);
        if (value > white)
            refuse(path, format("has a pixel of %d, more than the %d of white", value, white));
        image.pixels[i] = static_cast<double>(value) / white;
    }
    return image;
}

Image extended(const Image &image, int margin)
{
    Image result{image.cols + 2 * margin, image.rows + 2 * margin, {}};
    for (int row = -margin; row < image.rows + margin; ++row) {
        for (int col = -margin; col < image.cols + margin; ++col)
            result.pixels.push_back(
                image.at(std::clamp(col, 0, image.cols - 1), std::clamp(row, 0, image.rows - 1)));
    }
    return result;
}

Image withoutMargins(const Image &image, int margin)
{
    Image result{image.cols - 2 * margin, image.rows - 2 * margin, {}};
    for (int row = margin; row < image.rows - margin; ++row) {
        for (int col = margin; col < image.cols - margin; ++col)
            result.pixels.push_back(image.at(col, row));
    }
    return result;
}

} // namespace demo
