// What the functions of one and two numbers must give: the exact value rounded once
// to double, and how far a result is from the exact value. By the MPFR library.

#ifndef RVX_TEST_CORRECT_H
#define RVX_TEST_CORRECT_H

#include <algorithm>
#include <cmath>
#include <limits>

#include <mpfr.h>

namespace reference {

// mpfr_exp, mpfr_log, mpfr_log10, mpfr_sqrt, mpfr_atan, mpfr_sin, mpfr_cos, ...
using OfOne = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
// mpfr_atan2, mpfr_div, mpfr_hypot, ...
using OfTwo = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t);

// The nearest double, ties to even: subnormal results are rounded once, and signed
// zeros, infinities and NaN come out as MPFR has them. `evaluate` stores into its
// argument and returns what MPFR returned.
template <typename Evaluate>
double nearestDouble(Evaluate evaluate)
{
    const mpfr_exp_t least = mpfr_get_emin(), greatest = mpfr_get_emax();
    mpfr_set_emin(-1073);
    mpfr_set_emax(1024);
    MPFR_DECL_INIT(value, 53);
    const int direction = evaluate(value);
    mpfr_subnormalize(value, direction, MPFR_RNDN);
    const double nearest = mpfr_get_d(value, MPFR_RNDN);
    mpfr_set_emin(least);
    mpfr_set_emax(greatest);
    return nearest;
}

inline double correct(OfOne function, double x)
{
    return nearestDouble([=](mpfr_ptr value) {
        MPFR_DECL_INIT(argument, 53);
        mpfr_set_d(argument, x, MPFR_RNDN);
        return function(value, argument, MPFR_RNDN);
    });
}

inline double correct(OfTwo function, double x, double y)
{
    return nearestDouble([=](mpfr_ptr value) {
        MPFR_DECL_INIT(first, 53);
        MPFR_DECL_INIT(second, 53);
        mpfr_set_d(first, x, MPFR_RNDN);
        mpfr_set_d(second, y, MPFR_RNDN);
        return function(value, first, second, MPFR_RNDN);
    });
}

// |result - exact| in units in the last place of a double as large as the exact value:
// at most 0.5 for the nearest double. Where the exact value or the result is infinite
// or NaN, 0 if the result is what rounding gives and infinity if it is not.
inline double ulpsBetween(double result, mpfr_srcptr exact)
{
    const double rounded = mpfr_get_d(exact, MPFR_RNDN);
    if (!std::isfinite(result) || !std::isfinite(rounded)) {
        const bool isSame = result == rounded || (std::isnan(result) && std::isnan(rounded));
        return isSame ? 0.0 : std::numeric_limits<double>::infinity();
    }
    MPFR_DECL_INIT(difference, 128);
    mpfr_d_sub(difference, result, exact, MPFR_RNDN);
    const long exponent = mpfr_zero_p(exact) != 0 ? -1021 : mpfr_get_exp(exact);
    mpfr_mul_2si(difference, difference, 53 - std::max(exponent, -1021L), MPFR_RNDN);
    return std::fabs(mpfr_get_d(difference, MPFR_RNDN));
}

inline double ulps(double result, OfOne function, double x)
{
    MPFR_DECL_INIT(argument, 53);
    MPFR_DECL_INIT(exact, 128);
    mpfr_set_d(argument, x, MPFR_RNDN);
    function(exact, argument, MPFR_RNDN);
    return ulpsBetween(result, exact);
}

inline double ulps(double result, OfTwo function, double x, double y)
{
    MPFR_DECL_INIT(first, 53);
    MPFR_DECL_INIT(second, 53);
    MPFR_DECL_INIT(exact, 128);
    mpfr_set_d(first, x, MPFR_RNDN);
    mpfr_set_d(second, y, MPFR_RNDN);
    function(exact, first, second, MPFR_RNDN);
    return ulpsBetween(result, exact);
}

} // namespace reference

#endif
