"""Correlations beside SciPy's, which returns all lags that there are."""

from compare import address, alone, compare, library, limit, measure, noise, numpy, peer

CROSS = "cross-correlation, all lags; from Python"
AUTO = "autocorrelation, all lags; from Python"


def cross(length):
    src1, src2 = noise(length), noise(length)[::-1].copy()
    lags = 2 * length - 1
    dst = numpy.empty(lags)
    first, second, out = address(src1), address(src2), address(dst)

    def ours():
        rvx.rvxdCrossCorr(first, length, second, length, out, 1 - length, length - 1)
        return dst
    # Its lag is that of its first operand.
    return {"rvx": ours, "SciPy correlate": lambda: signal.correlate(src2, src1)}


def auto(length):
    src = noise(length)
    dst = numpy.empty(length)
    samples, out = address(src), address(dst)

    def ours():
        rvx.rvxdAutoCorr(samples, length, out, length, 0)
        return dst
    return {"rvx": ours, "SciPy correlate": lambda: signal.correlate(src, src)[length - 1:]}


signal = peer("SciPy", "scipy.signal")
if signal:
    rvx = library()
    for length in (1000, 10000, 100000, 1000000):
        compare(CROSS, f"{length}", cross(length))
        compare(AUTO, f"{length}", auto(length))
    alone(CROSS, cross(1))
    alone(AUTO, auto(1))
    limit(CROSS, 0.2, "The transforms' length, which the lags fix: all lags of 10000 samples "
          "take 65536 complex points, SciPy takes 20000 real ones. Tables are built each time.")
    limit(AUTO, 0.2, "The same at half the length; tables, and memory for them, in each call.")
measure()
