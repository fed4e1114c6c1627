"""Convolutions beside SciPy's overlap-add, which chooses its block length."""

from compare import address, alone, compare, library, limit, measure, noise, numpy, peer

TASKS = {"rvxdConv": "real; from Python", "rvxzConv": "complex; from Python"}
SIZES = ((64, 64), (1000, 100), (10000, 1000), (100000, 1000), (1000000, 10000),
         (1000000, 100000))


def signalOf(name, n):
    values = noise(2 * n)
    return values[:n] if name == "rvxdConv" else values[:n] + 1j * values[n:]


def convolutions(name, longLen, shortLen):
    x, h = signalOf(name, longLen), signalOf(name, shortLen)
    y = numpy.empty(longLen + shortLen - 1, x.dtype)
    conv, px, ph, py = getattr(rvx, name), address(x), address(h), address(y)

    def ours():
        conv(px, longLen, ph, shortLen, py)
        return y
    return {"rvx": ours, "SciPy oaconvolve": lambda: signal.oaconvolve(x, h)}


signal = peer("SciPy", "scipy.signal")
if signal:
    rvx = library()
    for name, task in TASKS.items():
        for longLen, shortLen in SIZES:
            compare(task, f"{longLen} by {shortLen}", convolutions(name, longLen, shortLen))
        alone(task, convolutions(name, 1, 1))
        limit(task, 0.3, "Fixed tables choose the path and the length of blocks.")
measure()
