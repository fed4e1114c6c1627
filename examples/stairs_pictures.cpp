// The pictures of the photograph's chapter: three panels each, side by side.

#include "stairs.h"

#include "support/panels.h"

namespace stairs {
namespace {

constexpr int panelSide = 512; // pixels, one for each of the photograph

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
    demo::drawImages(
        "filters", panelSide,
        {{"original", "the photograph", &v.original, 0.0, 1.0},
         {"blurred", "blurred", &v.blurred, 0.0, 1.0},
         {"sharpened", "sharpened", &v.sharpened, 0.0, 1.0}},
        "The photograph, blurred by a Gaussian of 7 by 7 pixels, and sharpened by taking "
        "the blur away from it.",
        section);
    const Image original = detail(v.original), blurred = detail(v.blurred),
                sharpened = detail(v.sharpened);
    demo::drawImages("detail", panelSide,
                     {{"detail-original", "the photograph", &original, 0.0, 1.0},
                      {"detail-blurred", "blurred", &blurred, 0.0, 1.0},
                      {"detail-sharpened", "sharpened", &sharpened, 0.0, 1.0}},
                     "A part of each, four times as large.", section);
}

void drawEdges(const Views &v, demo::Section &section)
{
    demo::drawImages(
        "edges", panelSide,
        {{"across", "rise from left to right", &v.across, -0.2, 0.2},
         {"down", "rise from top to bottom", &v.down, -0.2, 0.2},
         {"steepness", "edges", &v.steepness, 0.0, 0.25}},
        "How fast grey rises to the right and to the bottom (brighter than the middle grey) "
        "or falls (darker), and how steep it is whatever way.",
        section);
}

void drawDisc(const Views &v, demo::Section &section)
{
    demo::drawImages(
        "disc", panelSide,
        {{"original", "the photograph", &v.original, 0.0, 1.0},
         {"disc", "out of focus", &v.disc, 0.0, 1.0},
         {"full", demo::format("the whole convolution, %d by %d", v.full.cols, v.full.rows),
          &v.full, 0.0, 1.0}},
        "Blurred by a disc of 63 by 63 pixels. Right, all that the disc reaches: around the "
        "photograph, on a smaller scale, there is black.",
        section);
}

} // namespace stairs
