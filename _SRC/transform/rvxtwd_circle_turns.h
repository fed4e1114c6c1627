// Cosines and sines that do not depend on the length of a circle.

#ifndef RVXTWD_CIRCLE_TURNS_H
#define RVXTWD_CIRCLE_TURNS_H

#include "rvx.h"

enum { DIGIT_BITS = 4, DIGIT_VALUES = 1 << DIGIT_BITS, MAX_DIGITS = 7 };

// Cosine and sine for each value of a digit: their upper 26 bits, so that products of
// heads are exact, and the rest of the extended value.
struct Digit {
    double cosineHead[DIGIT_VALUES], cosineTail[DIGIT_VALUES];
    double sineHead[DIGIT_VALUES], sineTail[DIGIT_VALUES];
};

// Digit q has the angles d 2^(-7 - 4 q) times the double 2 pi.
extern const Digit RVX_DIGIT_TURNS[MAX_DIGITS];

// W(8,k), with the double 2 pi for the circle.
extern const ZCplx RVX_EIGHTH_TURNS[8];

#endif
