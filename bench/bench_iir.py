"""Recursive filters beside SciPy's, which is not asked to keep its past and so saves time."""

from compare import (address, alone, bar, compare, library, limit, measure, noise, numpy, peer,
                     record)

DIRECT = "direct form, real; from Python"
CASCADE = "cascade, real; from Python"


def direct(order, n):
    b = 0.5 / numpy.arange(1, order + 2)
    a = numpy.append(1.0, 0.2 / numpy.arange(3, order + 3))
    state, x, y = record(), noise(n), numpy.empty(n)
    rvx.rvxdIirInit(0, address(numpy.append(b, a)), order, state)
    return {"rvx": block(state, x, y), "SciPy lfilter": lambda: signal.lfilter(b, a, x)}


def cascade(count, n):
    sections = numpy.array([[0.7, 0.2 + 0.01 * q, 0.1, 1.0, -0.3 + 0.01 * q, 0.2]
                            for q in range(count)])
    state, x, y = record(), noise(n), numpy.empty(n)
    rvx.rvxdIirInitBq(0, address(sections), count, state)
    return {"rvx": block(state, x, y), "SciPy sosfilt": lambda: signal.sosfilt(sections, x)}


def block(state, x, y):
    inSamps, outSamps, n = address(x), address(y), len(x)

    def run():
        rvx.rvxdbIir(state, inSamps, outSamps, n)
        return y
    return run


signal = peer("SciPy", "scipy.signal")
if signal:
    rvx = library()
    for length in (4096, 65536):
        for order in (2, 8):
            compare(DIRECT, f"order {order}, {length}", direct(order, length))
        for count, value in ((1, 0.85), (4, 0.55), (16, 0.3)):
            size = f"{count} section{'s' * (count > 1)}, {length}"
            compare(CASCADE, size, cascade(count, length))
            bar(CASCADE, size, value)
    alone(DIRECT, direct(2, 1))
    alone(CASCADE, cascade(1, 1))
    limit(DIRECT, 0.9, "a chain of four operations from output to output")
    limit(CASCADE, 0.85, "a chain of three operations in each section")
measure()
