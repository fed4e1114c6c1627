"""Wavelet transforms beside PyWavelets, at full depth, and of one level, where what calls
cost by themselves hardly counts.

PyWavelets filters backwards in time, stands elsewhere and scales both bands to the root
of 2. Of a signal turned and shifted to suit it, it has the same coefficients at every
level, up to their order and signs.
"""

import warnings

from compare import address, alone, compare, library, limit, measure, noise, numpy, peer, record

# Name, type and parameters, PyWavelets' name, shift, and how far results agree: taps of the
# longest coiflet, as we have them tabulated, are 8e-6 from PyWavelets'.
BANKS = [
    ("Haar", (1, 0, 0), "haar", 0, 1e-12),
    ("Daubechies 4", (2, 4, 0), "db4", 3, 1e-11),
    ("Daubechies 10", (2, 10, 0), "db10", 7, 1e-11),
    ("Coiflet 5", (4, 5, 0), "coif5", 5, 1e-4),
    ("Spline 2, 2", (6, 2, 2), "rbio2.2", 1, 1e-12),
]


def sorted_bands(bands):
    return numpy.concatenate([numpy.sort(abs(band)) for band in bands])


def our_bands(c, n, level):
    return sorted_bands(numpy.split(c, [n >> i for i in range(level, 0, -1)]))


def their_bands(bands):
    level = len(bands) - 1
    depths = [level] + list(range(level, 0, -1))
    return sorted_bands([band * 2 ** (-i / 2) for band, i in zip(bands, depths)])


def transforms(bank, n, level):
    """Contenders and views, of the way there and of the way back."""
    _, (kind, par1, par2), name, shift, _ = bank
    state, x, c, y = record(), noise(n), numpy.empty(n), numpy.empty(n)
    rvx.rvxdWtInit(par1, par2, n.bit_length() - 1, level, state, kind)
    src, coefficients, dst = address(x), address(c), address(y)

    def decompose():
        rvx.rvxdWtDecompose(state, src, coefficients)
        return c

    def reconstruct():
        rvx.rvxdWtReconstruct(state, coefficients, dst)
        return y

    wavelet = pywt.Wavelet(name)
    turned = numpy.roll(x[::-1], shift)
    bands = pywt.wavedec(turned, wavelet, mode="periodization", level=level)
    there = {"rvx": decompose,
             "PyWavelets": lambda: pywt.wavedec(turned, wavelet, mode="periodization",
                                                level=level)}
    back = {"rvx": reconstruct,
            "PyWavelets": lambda: pywt.waverec(bands, wavelet, mode="periodization")}
    views = {"rvx": lambda c: our_bands(c, n, level), "PyWavelets": their_bands}
    back_views = {"PyWavelets": lambda y: numpy.roll(y, -shift)[::-1]}
    return there, views, back, back_views


def calls(level):
    """Calls on two samples, theirs of as many levels."""
    state, two, y = record(), noise(2), numpy.empty(2)
    rvx.rvxdWtInit(0, 0, 1, 1, state, 1)
    src, dst = address(two), address(y)
    bands = [two[:1]] * (level + 1)
    return ({"rvx": lambda: rvx.rvxdWtDecompose(state, src, dst),
             "PyWavelets": lambda: pywt.wavedec(two, "haar", mode="periodization", level=level)},
            {"rvx": lambda: rvx.rvxdWtReconstruct(state, src, dst),
             "PyWavelets": lambda: pywt.waverec(bands, "haar", mode="periodization")})


pywt = peer("PyWavelets", "pywt")
if pywt:
    warnings.filterwarnings("ignore", "Level value of")
    rvx = library()
    for bank in BANKS:
        is_haar = bank[0] == "Haar"
        reason = ("A load and a store for each value, and the caches." if is_haar
                  else "Two products a cycle are two thirds of the time with 30 taps and a "
                       "third with 8; parting even from odd and beginning sums the rest.")
        for depth, sizes in (("", ((14, 14), (18, 18))), (", one level", ((18, 1),))):
            decompose = f"{bank[0]}{depth}, decompose; from Python"
            reconstruct = f"{bank[0]}{depth}, reconstruct; from Python"
            for order, level in sizes:
                there, views, back, back_views = transforms(bank, 1 << order, level)
                compare(decompose, str(1 << order), there, views=views, within=bank[-1])
                compare(reconstruct, str(1 << order), back, views=back_views, within=1e-6)
            there, back = calls(sizes[0][1])
            alone(decompose, there)
            alone(reconstruct, back)
            limit(decompose, 0.3 if is_haar else 0.4, reason)
            limit(reconstruct, 0.3 if is_haar else 0.5, reason)
measure()
