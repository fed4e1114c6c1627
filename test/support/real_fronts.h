// The fronts of the real Fourier transforms behind one signature, and the tables
// that they leave in the cache.

#ifndef RVX_TEST_REAL_FRONTS_H
#define RVX_TEST_REAL_FRONTS_H

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "frame/rvxthread.h"
#include "support/guarded.h"
#include "support/reports.h"
#include "transform/rvxfftd.h"
#include "transform/rvxtwd.h"

inline constexpr double RVX_NAN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double RVX_INF = std::numeric_limits<double>::infinity();

inline std::vector<double> noise(int n, unsigned seed)
{
    std::mt19937_64 generator(seed);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    std::vector<double> block(static_cast<std::size_t>(n));
    for (double &x : block)
        x = uniform(generator);
    return block;
}

// Equal bits, except that any NaN equals any other.
inline void expectSameBits(const std::vector<double> &actual, const std::vector<double> &expected,
                           const std::string &what)
{
    ASSERT_EQ(actual.size(), expected.size()) << what;
    for (std::size_t i = 0; i < actual.size(); ++i) {
        if (std::isnan(expected[i]))
            ASSERT_TRUE(std::isnan(actual[i])) << what << " at " << i;
        else
            ASSERT_EQ(bitsOf(actual[i]), bitsOf(expected[i]))
                << what << " at " << i << ": " << actual[i] << " is not " << expected[i];
    }
}

// All six fronts behind one signature; those in place do not look at `out`.
enum Form { RealFft, RealFftNip, RealFftl, CcsFft, CcsFftNip, CcsFftl };

inline constexpr Form allForms[] = {RealFft, RealFftNip, RealFftl, CcsFft, CcsFftNip, CcsFftl};

inline const char *nameOf(Form form)
{
    const char *const names[] = {"rvxdRealFft", "rvxdRealFftNip", "rvxdRealFftl",
                                 "rvxdCcsFft",  "rvxdCcsFftNip",  "rvxdCcsFftl"};
    return names[form];
}

inline bool notInPlace(Form form)
{
    return form == RealFftNip || form == CcsFftNip;
}

inline bool fromReal(Form form)
{
    return form == RealFft || form == RealFftNip || form == RealFftl;
}

inline bool packed(Form form)
{
    return form == RealFftl || form == CcsFftl;
}

// A format that the front accepts, 0 where it takes none.
inline int formatOf(Form form)
{
    return form == RealFftl ? 256 : form == CcsFftl ? 1024 : 0;
}

inline void call(Form form, double *in, double *out, int order, int flags)
{
    switch (form) {
    case RealFft:
        return rvxdRealFft(in, order, flags);
    case RealFftNip:
        return rvxdRealFftNip(in, out, order, flags);
    case RealFftl:
        return rvxdRealFftl(in, order, flags);
    case CcsFft:
        return rvxdCcsFft(in, order, flags);
    case CcsFftNip:
        return rvxdCcsFftNip(in, out, order, flags);
    case CcsFftl:
        return rvxdCcsFftl(in, order, flags);
    }
}

inline std::vector<double> realFft(const std::vector<double> &samples, int order, int flags)
{
    std::vector<double> buffer = samples;
    buffer.resize(samples.size() + 2, RVX_NAN);
    rvxdRealFft(buffer.data(), order, flags);
    return buffer;
}

inline std::vector<double> ccsFft(std::vector<double> spectrum, int order, int flags)
{
    rvxdCcsFft(spectrum.data(), order, flags);
    return spectrum;
}

// Bins 0..N/2 from CCS to the packed formats.
inline std::vector<double> toPack(const std::vector<double> &ccs)
{
    std::vector<double> pack = {ccs[0]};
    pack.insert(pack.end(), ccs.begin() + 2, ccs.end() - 1);
    return pack;
}

inline std::vector<double> toPerm(const std::vector<double> &ccs)
{
    std::vector<double> perm(ccs.begin(), ccs.end() - 2);
    if (perm.size() > 1)
        perm[1] = ccs[ccs.size() - 2];
    return perm;
}

using Names = std::vector<std::string>;

// The table slots that these fronts may fill, by name, sorted.
inline Names cachedTables()
{
    const rvxThreadContext *context = rvxGetThreadContext();
    Names cached;
    for (int order = 0; order < RVX_ORDERS; ++order) {
        const std::string number = std::to_string(order);
        if (context->fftTableA[order] != nullptr)
            cached.push_back("large " + number);
        if (context->fftTableB[order] != nullptr)
            cached.push_back("dit " + number);
        if (context->fftTableC[order] != nullptr)
            cached.push_back("dif " + number);
        if (context->realFftTableA[order] != nullptr)
            cached.push_back("real " + number);
        if (context->realFftTableB[order] != nullptr)
            cached.push_back("ccs " + number);
        if (context->shortBitRevTable[order] != nullptr)
            cached.push_back("swap " + number);
    }
    return cached;
}

// What a call of the front at this order leaves in an empty cache.
inline Names tablesOf(Form form, int order)
{
    Reports reports;
    rvxFreeFftTables();
    call(form, nullptr, nullptr, order, 4);
    EXPECT_TRUE(reports.take().empty());
    Names cached = cachedTables();
    rvxFreeFftTables();
    return cached;
}

using Names = std::vector<std::string>;

#endif
