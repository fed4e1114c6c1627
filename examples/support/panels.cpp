#include "panels.h"

namespace demo {
namespace {

constexpr int width = 1600;           // pixels
constexpr int below = 14, above = 44; // pixels; titles stand above

// Column by column from the left, each from the bottom, as plots have it.
std::vector<float> columnsOf(const Image &image)
{
    std::vector<float> values;
    for (int col = 0; col < image.cols; ++col) {
        for (int row = image.rows - 1; row >= 0; --row)
            values.push_back(static_cast<float>(image.at(col, row)));
    }
    return values;
}

std::string draw(const ImagePanel &panel, int left, int side, const Section &section)
{
    return format("set lmargin at screen %.6f\nset rmargin at screen %.6f\n",
                  static_cast<double>(left) / width, static_cast<double>(left + side) / width) +
           format("set xrange [-0.5:%g]\nset yrange [-0.5:%g]\n", panel.image->cols - 0.5,
                  panel.image->rows - 0.5) +
           format("set cbrange [%g:%g]\n", panel.black, panel.white) + "set title \"" +
           panel.title + "\"\nplot " +
           section.grid(panel.name + ".bin", columnsOf(*panel.image), panel.image->cols, 0.0, 1.0,
                        0.0, 1.0) +
           " with image\n";
}

} // namespace

void drawImages(const std::string &name, int side, const std::vector<ImagePanel> &panels,
                const std::string &caption, Section &section)
{
    const double height = below + side + above;
    const int count = static_cast<int>(panels.size());
    const int gap = (width - count * side) / (count + 1);
    std::string script = R"(
set palette defined (0 '#000000', 1 '#ffffff')
unset colorbox
unset key
unset grid
unset border
unset tics
set title offset 0,-0.5 textcolor rgb '#30343a'
set multiplot
)" + format("set bmargin at screen %.6f\nset tmargin at screen %.6f\n", below / height,
            (below + side) / height);
    int left = gap;
    for (const ImagePanel &panel : panels) {
        script += draw(panel, left, side, section);
        left += side + gap;
    }
    section.picture(name, width, below + side + above, script + "unset multiplot\n", caption);
}

} // namespace demo
