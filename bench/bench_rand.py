"""Gaussian and uniform noise beside NumPy's generators, which fill an array made once."""

import ctypes

from compare import address, alone, compare, library, limit, measure, numpy, peer, record

GAUSSIAN = "Gaussian; from Python"
UNIFORM = "uniform; from Python"


def ours(init, fill, low, high, n):
    state, samps = record(), numpy.empty(n)
    init(ctypes.c_double(1.0), ctypes.c_double(low), ctypes.c_double(high), state)
    to = address(samps)

    def run():
        fill(state, to, n)
        return samps
    return run


def theirs(fill, n):
    samps = numpy.empty(n)
    return lambda: fill(out=samps)


def gaussian(n):
    return {"rvx": ours(rvx.rvxdRandGausInit, rvx.rvxdbRandGaus, 0.0, 1.0, n),
            "NumPy PCG64": theirs(pcg.standard_normal, n),
            "NumPy SFC64": theirs(sfc.standard_normal, n)}


def uniform(n):
    return {"rvx": ours(rvx.rvxdRandUniInit, rvx.rvxdbRandUni, 0.0, 1.0, n),
            "NumPy PCG64": theirs(pcg.random, n),
            "NumPy SFC64": theirs(sfc.random, n)}


random = peer("NumPy", "numpy.random")
if random:
    rvx = library()
    pcg = random.Generator(random.PCG64(1))
    sfc = random.Generator(random.SFC64(1))
    for length in (4096, 65536, 1048576):
        compare(GAUSSIAN, str(length), gaussian(length), agree=False)
        compare(UNIFORM, str(length), uniform(length), agree=False)
    alone(GAUSSIAN, gaussian(1))
    alone(UNIFORM, uniform(1))
    limit(GAUSSIAN, 1.3, "2.5 words a pair that is kept, and a logarithm, a division and a root; "
                         "NumPy's method needs none of these for 99 samples of 100.")
    limit(UNIFORM, 1.0, "Each word waits for the one before it, 2 cycles.")
measure()
