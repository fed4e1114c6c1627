// The chapter on the room: what its pictures show, and who draws them.

#ifndef ROOM_H
#define ROOM_H

#include <string>
#include <vector>

#include "support/section.h"

namespace room {

using Signal = std::vector<double>;

// Sound that comes by one way.
struct Arrival {
    std::string by; // empty where that is not known
    int delay;      // samples
    double gain;
};

// From lag 0 on, in parts of the energy of the dry voice.
struct Correlations {
    Signal cross; // the echoed voice with the dry one
    Signal own;   // the dry voice with itself
};

// A voice, dry and in the room.
struct Sound {
    Signal dry, response, echoed;
    double rate; // samples per second
};

void drawResponse(const Sound &sound, const std::vector<Arrival> &putIn, demo::Section &section);
void drawVoice(const Sound &sound, demo::Section &section);

// voice: the correlations of the voice as it is; sharp: those of its second differences.
void drawCorrelations(const Sound &sound, const Correlations &voice, const Correlations &sharp,
                      const std::vector<Arrival> &putIn, const std::vector<Arrival> &found,
                      demo::Section &section);

} // namespace room

#endif
