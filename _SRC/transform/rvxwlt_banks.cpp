// rvxwlt: the built-in filter banks. Only what is tabulated stands here: the low-pass of
// an orthogonal bank, and of the spline banks the filter that is dual to the spline, as
// integers. The others follow by formulas at compile time, and all states share them.
//
// I. Daubechies, Ten Lectures on Wavelets, 1992 (Daubechies', symlets, coiflets, splines);
// P. P. Vaidyanathan and P.-Q. Hoang, Lattice structures for optimal design and robust
// implementation of two-channel perfect-reconstruction QMF banks, 1988.

#include "transform/rvxwlt_banks.h"

#include "rvx.h"

namespace {

// clang-format off

// Low-pass filters of analysis, which sum to 1.
constexpr double haar[] = {
    0.5, 0.5};
constexpr double daubechies2[] = {
    0.34150635094610965, 0.5915063509461097, 0.15849364905389035, -0.09150635094610966};
constexpr double daubechies3[] = {
    0.23523360389208187, 0.5705584579157218, 0.3251825002631163, -0.09546720778416369,
    -0.06041610415519811, 0.024908749868441868};
constexpr double daubechies4[] = {
    0.1629017140256181, 0.5054728575456506, 0.44610006912319405, -0.019787513117908755,
    -0.1322535836843694, 0.021808150237385256, 0.023251800535557178, -0.007493494665127127};
constexpr double daubechies5[] = {
    0.1132094912917304, 0.4269717713527106, 0.5121634721301556, 0.09788348067375366,
    -0.17132835769132992, -0.022800565942047008, 0.05485132932107696, -0.0044134000543251855,
    -0.008895935050926, 0.002358713969200755};
constexpr double daubechies6[] = {
    0.07887121600143436, 0.34975190703756814, 0.5311318799412127, 0.22291566146505054,
    -0.15999329944587426, -0.0917590320300334, 0.06894404648719724, 0.019461604853963546,
    -0.022331874165475253, 0.000391625576034686, 0.0033780311815050828, -0.0007617669025837149};
constexpr double daubechies7[] = {
    0.05504971537284798, 0.28039564181303817, 0.5155742458183316, 0.33218624110566036,
    -0.10175691123173264, -0.1584175056405439, 0.05042323250485316, 0.05700172257985698,
    -0.026891226294856074, -0.011719970782347915, 0.00887489618961704, 0.00030375749775690686,
    -0.001273952359061092, 0.00025011342657945594};
constexpr double daubechies8[] = {
    0.03847781105405969, 0.22123362357624055, 0.4777430752143765, 0.4139082662116629,
    -0.011192867666649802, -0.20082931639110693, 0.00033409704628193206, 0.09103817842345428,
    -0.01228195052300269, -0.03117510332533074, 0.009886079648083777, 0.006184422409538157,
    -0.0034438596281275995, -0.00027700227421325783, 0.00047761485533173297, -8.306863059851037e-05};
constexpr double daubechies9[] = {
    0.026925174794731593, 0.1724171519071573, 0.42767453217935536, 0.4647728571826375,
    0.09418477475311816, -0.20737588090068215, -0.06847677451235594, 0.10503417113936377,
    0.02172633773036491, -0.0478236320598331, 0.00017744640673558686, 0.015812082926472657,
    -0.0033398101133122297, -0.0030274802872154345, 0.0013064836402066518, 0.00016290733601313935,
    -0.00017816487955117373, 2.782275679349927e-05};
constexpr double daubechies10[] = {
    0.01885857879639622, 0.1330610913968657, 0.3727875357426616, 0.4868140553661003,
    0.1988188708843991, -0.1766681008964704, -0.1385549393599319, 0.09006372426665785,
    0.06580149355070224, -0.05048328559800523, -0.02082962404384583, 0.02348490704840919,
    0.0025502184839329926, -0.007589501167678907, 0.000986662682442169, 0.00140884329496359,
    -0.00048497391995569743, -8.235450295380118e-05, 6.617718319909407e-05, -9.379207888315682e-06};
constexpr double symlet1[] = {
    -0.053574450709, -0.0209554825625, 0.351869534328, 0.568329121704, 0.210617267102,
    -0.0701588120895, -0.008912350721, 0.022785172947999997};
constexpr double symlet2[] = {
    0.0193273979775, 0.020873432211, -0.0276720930585, 0.140995348427, 0.511526483447,
    0.44829082419, 0.011739461568, -0.1239756813065, -0.0149212499345, 0.013816076479};
constexpr double symlet3[] = {
    0.010892350163500002, 0.0024683061860000005, -0.08343160770600001, -0.0341615607935,
    0.3472289864790001, 0.5569463919630001, 0.23895218566650006, -0.051362484931,
    -0.014891875649500001, 0.031625281330000005, 0.0012499610465000002, -0.0055159337545000004};
constexpr double symlet4[] = {
    0.0018963292669990518, -0.0007406129574996296, -0.008935215825495531, 0.02157772629098921,
    0.048007383967976, -0.03503914561098248, 0.012332829744493833, 0.3790813009818105,
    0.5428913549067285, 0.20409196986239794, -0.09902835340345048, -0.07623193594796188,
    0.002835671342998582, 0.007260697380996368};
constexpr double symlet5[] = {
    0.0013363966965, -0.00021419715, -0.010572843264, 0.002693194377, 0.0347452329555,
    -0.0192467606315, -0.0367312543805, 0.257699335187, 0.5495533152685, 0.340372673595,
    -0.043326807703, -0.10132432764299999, 0.0053793058755, 0.022411811520999997, -0.000383345448,
    -0.002391729256};
constexpr double symlet6[] = {
    0.0007562436545003779, -0.00033457075450016717, -0.007257789276503627, 0.00626444812100313,
    0.04389562577702194, -0.012893222965006442, -0.13544689175156768, 0.024941415479512462,
    0.43652420367471817, 0.5076298954162537, 0.16882946180108438, -0.03858608054851928,
    0.00041257046450020616, 0.02137221680101068, -0.008151675613004075, -0.009384698418004688,
    0.000438251269500219, 0.000990596868000495};
constexpr double symlet7[] = {
    0.0005445852234991831, 6.762250999989858e-05, -0.006110321314990835, -0.001036181961498446,
    0.032475462289451286, 0.008209434712987684, -0.11277948611683085, -0.050120107515424825,
    0.33353566907649973, 0.5441257652491839, 0.2714065056060929, -0.02512827004596231,
    -0.022620386108966068, 0.03535178377494697, 0.004076408399493886, -0.014393115962978412,
    -0.0005687676569991469, 0.0032478641874951284, 4.033060199993951e-05, -0.0003247949479995128};
constexpr double coiflet1[] = {
    0.027280729568981775, -0.08978072956898178, -0.05456145913796355, 0.4295614591379635,
    0.5272807295689818, 0.16021927043101822};
constexpr double coiflet2[] = {
    0.011587596738638354, -0.029320137979844015, -0.04763959030974655, 0.2730210465335475,
    0.5746823938539427, 0.29486719369443126, -0.05408560709141226, -0.042026480460576415,
    0.016744410163210918, 0.003967883612938891, -0.0012892033561331413, -0.0005095053989972894};
constexpr double coiflet3[] = {
    -0.002682418670919356, 0.005503126707828679, 0.01658356047919602, -0.04650776447868884,
    -0.043220763560189626, 0.2865033352739313, 0.5612852568698653, 0.3029835717729273,
    -0.05077014075488782, -0.05819625076158603, 0.024434094321194134, 0.011229240961997304,
    -0.006369601011048472, -0.0018204589155595631, 0.0007902051009548104, 0.0003296651737929209,
    -5.019277455278796e-05, -2.4465734255394127e-05};
constexpr double coiflet4[] = {
    0.0006309610457442707, -0.001152224852360494, -0.005194524026012228, 0.011362459243504873,
    0.01886723537770809, -0.05746423442862463, -0.039652648516817, 0.2936673908951259,
    0.5531264525622371, 0.30715732619813174, -0.047112738864720206, -0.06803812705072917,
    0.027813640152711927, 0.017735837438207606, -0.01075631851650461, -0.004001012885531716,
    0.0026526659457511374, 0.0008955945285623842, -0.00041650057140117864, -0.00018382976888107883,
    4.4080353579118896e-05, 2.2082857150409467e-05, -2.3049421470609883e-06,
    -1.2621746857705414e-06};
constexpr double coiflet5[] = {
    -0.00014996381662504165, 0.0002535611924510704, 0.001540245662180428, -0.0029411107998608167,
    -0.00716378191215199, 0.016552066381204596, 0.019917804362505533, -0.06499726278581806,
    -0.03680007362461022, 0.2980923234970828, 0.5475054294071521, 0.309706849009086,
    -0.043866050755112185, -0.07465223889432075, 0.02919587949040811, 0.02311077700910642,
    -0.013973687947503881, -0.0064800899926818, 0.0047830013787413285, 0.001720654697400478,
    -0.0011758222473103265, -0.0004512269667961254, 0.0002137297561230594, 9.937759942372762e-05,
    -2.9232136921808117e-05, -1.5071990984504187e-05, 2.6407586866907334e-06,
    1.4593314935904054e-06, -1.1837553973703288e-07, -6.72868084274187e-08};
constexpr double vaidyanathan[] = {
    -4.448134293211347e-05, 0.00024298445112144564, -0.00032099580541843304,
    -0.0006681431753404642, 0.0020108947008367463, 0.0005007288331690551, -0.006250189985316829,
    0.002230106649140291, 0.013920963293044195, -0.010502973851311893, -0.02508135948883585,
    0.027395168934967327, 0.03952198268089827, -0.05494909205108176, -0.05934668351460708,
    0.09331805709278015, 0.09551897342395144, -0.137497247751462, -0.1863189624064675,
    0.14256132734210403, 0.4494378213969844, 0.40502920547896737, 0.17690689523910236,
    0.0323850198557068};

// Low-pass filters of synthesis by the order of the spline and that of its dual.
constexpr int dual1_1[] = {
    1, 1}; // over 1
constexpr int dual1_3[] = {
    -1, 1, 8, 8, 1, -1}; // over 8
constexpr int dual1_5[] = {
    3, -3, -22, 22, 128, 128, 22, -22, -3, 3}; // over 128
constexpr int dual2_2[] = {
    -1, 2, 6, 2, -1}; // over 4
constexpr int dual2_4[] = {
    3, -6, -16, 38, 90, 38, -16, -6, 3}; // over 64
constexpr int dual2_6[] = {
    -5, 10, 34, -78, -123, 324, 700, 324, -123, -78, 34, 10, -5}; // over 512
constexpr int dual2_8[] = {
    35, -70, -300, 670, 1228, -3126, -3796, 10718, 22050, 10718, -3796, -3126, 1228, 670, -300,
    -70, 35}; // over 16384
constexpr int dual3_1[] = {
    -1, 3, 3, -1}; // over 2
constexpr int dual3_3[] = {
    3, -9, -7, 45, 45, -7, -9, 3}; // over 32
constexpr int dual3_5[] = {
    -5, 15, 19, -97, -26, 350, 350, -26, -97, 19, 15, -5}; // over 256
constexpr int dual3_7[] = {
    35, -105, -195, 865, 363, -3489, -307, 11025, 11025, -307, -3489, 363, 865, -195, -105, 35}; // over 8192
constexpr int dual3_9[] = {
    -63, 189, 469, -1911, -1308, 9188, 1140, -29676, 190, 87318, 87318, 190, -29676, 1140, 9188,
    -1308, -1911, 469, 189, -63}; // over 65536

// clang-format on

// t0 to t3 of a bank, two pairs of equal length.
template <int L0, int L2>
struct Filters {
    double t0[L0];
    double t1[L2];
    double t2[L2];
    double t3[L0];
};

constexpr double alternating(int n)
{
    return n % 2 == 0 ? 1.0 : -1.0;
}

template <int L>
constexpr Filters<L, L> orthogonalFilters(const double (&h)[L])
{
    Filters<L, L> bank = {};
    for (int n = 0; n < L; ++n) {
        bank.t0[n] = h[n];
        bank.t1[n] = alternating(n) * h[L - 1 - n];
        bank.t2[n] = 2.0 * h[L - 1 - n];
        bank.t3[n] = -2.0 * alternating(n) * h[n];
    }
    return bank;
}

// The two high-passes of a spline bank; sigma is 1 or -1.
template <int L0, int L2>
constexpr void fillHighPasses(Filters<L0, L2> &bank, double sigma)
{
    for (int n = 0; n < L2; ++n)
        bank.t1[n] = sigma * alternating(n) * bank.t2[L2 - 1 - n] * 0.5;
    for (int n = 0; n < L0; ++n)
        bank.t3[n] = -2.0 * sigma * alternating(n) * bank.t0[n];
}

// The spline of this order is a row of Pascal's triangle.
constexpr double binomial(int order, int n)
{
    double value = 1.0;
    for (int i = 0; i < n; ++i)
        value = value * (order - i) / (i + 1);
    return value;
}

template <int order, int L2>
constexpr Filters<order + 1, L2> splineFilters(const int (&dual)[L2], int denominator)
{
    Filters<order + 1, L2> bank = {};
    for (int n = 0; n <= order; ++n)
        bank.t0[n] = binomial(order, n) / (1 << order);
    for (int n = 0; n < L2; ++n)
        bank.t2[n] = static_cast<double>(dual[n]) / denominator;
    fillHighPasses(bank, order == 1 ? -1.0 : 1.0);
    return bank;
}

// The same with analysis and synthesis exchanged.
template <int order, int L2>
constexpr Filters<L2, order + 1> dualFilters(const int (&dual)[L2], int denominator)
{
    const Filters<order + 1, L2> spline = splineFilters<order>(dual, denominator);
    Filters<L2, order + 1> bank = {};
    for (int n = 0; n < L2; ++n)
        bank.t0[n] = spline.t2[n] * 0.5;
    for (int n = 0; n <= order; ++n)
        bank.t2[n] = spline.t0[n] * 2.0;
    fillHighPasses(bank, order == 1 ? -1.0 : 1.0);
    return bank;
}

template <int L0, int L2>
constexpr RvxWtBank bankOf(const Filters<L0, L2> &f, int o0, int o1, int o2, int o3)
{
    return {{L0, L2, L2, L0}, {o0, o1, o2, o3}, {f.t0, f.t1, f.t2, f.t3}};
}

// The filters of each bank exist once.
template <const auto &h>
constexpr auto orthogonalOnce = orthogonalFilters(h);

template <int order, const auto &dual, int denominator>
constexpr auto splineOnce = splineFilters<order>(dual, denominator);

template <int order, const auto &dual, int denominator>
constexpr auto dualOnce = dualFilters<order>(dual, denominator);

template <const auto &h>
constexpr RvxWtBank orthogonal(int o0, int o1, int o2, int o3)
{
    return bankOf(orthogonalOnce<h>, o0, o1, o2, o3);
}

// A spline's bank, and that of its dual, in which each filter changes places with the
// neighbour of its kind, its offset with it.
struct SplinePair {
    RvxWtBank spline;
    RvxWtBank dual;
};

template <int order, const auto &dual, int denominator>
constexpr SplinePair spline(int o0, int o1, int o2, int o3)
{
    return {bankOf(splineOnce<order, dual, denominator>, o0, o1, o2, o3),
            bankOf(dualOnce<order, dual, denominator>, o1, o0, o3, o2)};
}

// clang-format off

// Offsets of the four filters, by par1.

constexpr RvxWtBank haarBanks[] = {
    orthogonal<haar>(1, 1, 0, 0),
};

constexpr RvxWtBank daubechiesBanks[] = {
    orthogonal<haar>(1, 1, 0, 0),
    orthogonal<daubechies2>(1, 1, 2, 2),
    orthogonal<daubechies3>(1, 1, 4, 4),
    orthogonal<daubechies4>(1, 1, 6, 6),
    orthogonal<daubechies5>(2, 2, 7, 7),
    orthogonal<daubechies6>(2, 2, 9, 9),
    orthogonal<daubechies7>(2, 2, 11, 11),
    orthogonal<daubechies8>(2, 2, 13, 13),
    orthogonal<daubechies9>(3, 3, 14, 14),
    orthogonal<daubechies10>(3, 3, 16, 16),
};

constexpr RvxWtBank symletBanks[] = {
    orthogonal<symlet1>(3, 3, 4, 4),
    orthogonal<symlet2>(4, 4, 5, 5),
    orthogonal<symlet3>(5, 5, 6, 6),
    orthogonal<symlet4>(8, 8, 5, 5),
    orthogonal<symlet5>(8, 8, 7, 7),
    orthogonal<symlet6>(9, 9, 8, 8),
    orthogonal<symlet7>(9, 9, 10, 10),
};

constexpr RvxWtBank coifletBanks[] = {
    orthogonal<coiflet1>(4, 4, 1, 1),
    orthogonal<coiflet2>(4, 4, 7, 7),
    orthogonal<coiflet3>(6, 6, 11, 11),
    orthogonal<coiflet4>(8, 8, 15, 15),
    orthogonal<coiflet5>(10, 10, 19, 19),
};

constexpr RvxWtBank vaidyanathanBanks[] = {
    orthogonal<vaidyanathan>(20, 20, 3, 3),
};

// By order of the spline, denominator and offsets.
constexpr SplinePair splineBanks[] = {
    spline<1, dual1_1, 1>(0, 0, 1, 1),
    spline<1, dual1_3, 8>(0, 2, 3, 1),
    spline<1, dual1_5, 128>(0, 4, 5, 1),
    spline<2, dual2_2, 4>(1, 1, 2, 2),
    spline<2, dual2_4, 64>(1, 3, 4, 2),
    spline<2, dual2_6, 512>(1, 5, 6, 2),
    spline<2, dual2_8, 16384>(1, 7, 8, 2),
    spline<3, dual3_1, 2>(1, 1, 2, 2),
    spline<3, dual3_3, 32>(1, 3, 4, 2),
    spline<3, dual3_5, 256>(1, 5, 6, 2),
    spline<3, dual3_7, 8192>(1, 7, 8, 2),
    spline<3, dual3_9, 65536>(1, 9, 10, 2),
};

// clang-format on

struct Family {
    const RvxWtBank *banks;
    int count; // par1 from 1 to count, or any where it is 0
};

constexpr Family orthogonalFamilies[] = {
    {haarBanks, 0},    {daubechiesBanks, 10},  {symletBanks, 7},
    {coifletBanks, 5}, {vaidyanathanBanks, 0},
};

const Family &familyOf(int wtType)
{
    return orthogonalFamilies[wtType - RVX_WT_HAAR];
}

// The row of splineBanks for an order of spline from 1 to 3, or null.
const SplinePair *splinePair(int par1, int par2)
{
    constexpr int rowOf[] = {0, 3, 7}; // of the first dual
    constexpr int duals[] = {3, 4, 5};
    // Orders of the dual are odd or even as that of the spline is.
    const int first = par1 == 2 ? 2 : 1;
    if (par2 < first || (par2 - first) % 2 != 0)
        return nullptr;
    const int i = (par2 - first) / 2;
    return i < duals[par1 - 1] ? &splineBanks[rowOf[par1 - 1] + i] : nullptr;
}

} // namespace

bool rvxWtHasPar1(int wtType, int par1)
{
    if (wtType >= RVX_WT_LINEAR_SPLINE)
        return true;
    if (wtType >= RVX_WT_BSPLINE)
        return par1 >= 1 && par1 <= 3;
    const int count = familyOf(wtType).count;
    return count == 0 || (par1 >= 1 && par1 <= count);
}

const RvxWtBank *rvxWtBank(int wtType, int par1, int par2)
{
    if (wtType <= RVX_WT_VAIDYANATHAN) {
        const Family &family = familyOf(wtType);
        return &family.banks[family.count == 0 ? 0 : par1 - 1];
    }
    if (wtType == RVX_WT_LINEAR_SPLINE)
        return &splinePair(2, 2)->spline;
    if (wtType == RVX_WT_QUADRATIC_SPLINE)
        return &splinePair(3, 3)->spline;
    const SplinePair *pair = splinePair(par1, par2);
    if (pair == nullptr)
        return nullptr;
    return wtType == RVX_WT_BSPLINE ? &pair->spline : &pair->dual;
}
