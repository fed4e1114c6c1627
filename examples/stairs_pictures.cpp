// The pictures of the photograph's chapter: three panels each, side by side.

#include "stairs.h"

#include <string>
#include <vector>

namespace stairs {
namespace {

constexpr int width = 1600, height = 570; // pixels
constexpr int panelSide = 512;            // pixels, one for each of the photograph
constexpr int gap = (width - 3 * panelSide) / 4;

// A panel: what is in it, and which values are black and white.
struct Panel {
    std::string name; // of the data file, too
    std::string title;
    const Image *image;
    double black, white;
};

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

std::string draw(const Panel &panel, int position, const demo::Section &section)
{
    const double left = gap + position * (panelSide + gap);
    return demo::format("set lmargin at screen %.6f\nset rmargin at screen %.6f\n", left / width,
                        (left + panelSide) / width) +
           demo::format("set xrange [-0.5:%g]\nset yrange [-0.5:%g]\n", panel.image->cols - 0.5,
                        panel.image->rows - 0.5) +
           demo::format("set cbrange [%g:%g]\n", panel.black, panel.white) + "set title \"" +
           panel.title + "\"\nplot " +
           section.grid(panel.name + ".bin", columnsOf(*panel.image), panel.image->cols, 0.0, 1.0,
                        0.0, 1.0) +
           " with image\n";
}

void drawPanels(const std::string &name, const std::vector<Panel> &panels,
                const std::string &caption, demo::Section &section)
{
    std::string script = R"(
set palette defined (0 '#000000', 1 '#ffffff')
unset colorbox
unset key
unset grid
unset border
unset tics
set title offset 0,-0.5 textcolor rgb '#30343a'
set multiplot
)" + demo::format("set bmargin at screen %.6f\nset tmargin at screen %.6f\n", 14.0 / height,
                  (14.0 + panelSide) / height);
    for (std::size_t i = 0; i < panels.size(); ++i)
        script += draw(panels[i], static_cast<int>(i), section);
    section.picture(name, width, height, script + "unset multiplot\n", caption);
}

// A square part of a picture, of a quarter of its sides.
Image detail(const Image &image)
{
    const int cols = image.cols / 4, rows = image.rows / 4;
    Image part{cols, rows, {}};
    for (int row = 0; row < rows; ++row) {
        for (int col = 0; col < cols; ++col)
            part.pixels.push_back(image.at(image.cols * 3 / 8 + col, image.rows / 4 + row));
    }
    return part;
}

} // namespace

void drawFilters(const Views &v, demo::Section &section)
{
    drawPanels("filters",
               {{"original", "the photograph", &v.original, 0.0, 1.0},
                {"blurred", "blurred", &v.blurred, 0.0, 1.0},
                {"sharpened", "sharpened", &v.sharpened, 0.0, 1.0}},
               "The photograph, blurred by a Gaussian of 7 by 7 pixels, and sharpened by taking "
               "the blur away from it.",
               section);
    const Image original = detail(v.original), blurred = detail(v.blurred),
                sharpened = detail(v.sharpened);
    drawPanels("detail",
               {{"detail-original", "the photograph", &original, 0.0, 1.0},
                {"detail-blurred", "blurred", &blurred, 0.0, 1.0},
                {"detail-sharpened", "sharpened", &sharpened, 0.0, 1.0}},
               "A part of each, four times as large.", section);
}

void drawEdges(const Views &v, demo::Section &section)
{
    drawPanels("edges",
               {{"across", "rise from left to right", &v.across, -0.2, 0.2},
                {"down", "rise from top to bottom", &v.down, -0.2, 0.2},
                {"steepness", "edges", &v.steepness, 0.0, 0.25}},
               "How fast grey rises to the right and to the bottom (brighter than the middle grey) "
               "or falls (darker), and how steep it is whatever way.",
               section);
}

void drawDisc(const Views &v, demo::Section &section)
{
    drawPanels("disc",
               {{"original", "the photograph", &v.original, 0.0, 1.0},
                {"disc", "out of focus", &v.disc, 0.0, 1.0},
                {"full", demo::format("the whole convolution, %d by %d", v.full.cols, v.full.rows),
                 &v.full, 0.0, 1.0}},
               "Blurred by a disc of 63 by 63 pixels. Right, all that the disc reaches: around the "
               "photograph, on a smaller scale, there is black.",
               section);
}

} // namespace stairs
