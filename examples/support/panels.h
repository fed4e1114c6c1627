// Pictures side by side.

#ifndef DEMO_PANELS_H
#define DEMO_PANELS_H

#include <string>
#include <vector>

#include "image.h"
#include "section.h"

namespace demo {

// What is in it, and which values are black and white.
struct ImagePanel {
    std::string name; // of the data file, too
    std::string title;
    const Image *image;
    double black, white;
};

// NAME.png, with a sentence below it: panels of side by side pixels each.
void drawImages(const std::string &name, int side, const std::vector<ImagePanel> &panels,
                const std::string &caption, Section &section);

} // namespace demo

#endif
