// The chapter on the photograph: what its pictures show, and who draws them.

#ifndef STAIRS_H
#define STAIRS_H

#include "support/image.h"
#include "support/section.h"

namespace stairs {

using demo::Image;

// What the filters make of the photograph.
struct Views {
    Image original;
    Image blurred, sharpened;
    Image across, down; // how fast grey rises from left to right and from top to bottom
    Image steepness;    // how fast it changes, whatever way
    Image disc;         // blurred as by a lens far out of focus
    Image full;         // all that the disc reaches, with black around the photograph
};

void drawFilters(const Views &v, demo::Section &section);
void drawEdges(const Views &v, demo::Section &section);
void drawDisc(const Views &v, demo::Section &section);

} // namespace stairs

#endif
