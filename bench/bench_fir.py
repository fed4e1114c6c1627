"""Multi-rate filters beside SciPy's, which goes on until the last tap has passed and keeps
nothing for a next block."""

from compare import (address, alone, compare, library, limit, measure, noise, numpy, peer,
                     record)

RATES = "multi-rate, real; from Python"
DECIMATION = "decimation, real; from Python"
TAPS = 128


def rates(up, down, steps):
    taps = noise(TAPS)
    state, x, y = record(), noise(steps * down), numpy.empty(steps * up)
    rvx.rvxdFirInitMr(address(taps), TAPS, None, up, 0, down, 0, state)
    inSamps, outSamps = address(x), address(y)

    def ours():
        rvx.rvxdbFir(state, inSamps, outSamps, steps)
        return y
    return {"rvx": ours, "SciPy upfirdn": lambda: signal.upfirdn(taps, x, up, down)}


signal = peer("SciPy", "scipy.signal")
if signal:
    rvx = library()
    for task, up, down in ((RATES, 2, 1), (RATES, 3, 2), (RATES, 147, 160), (DECIMATION, 1, 2)):
        for length in (4096, 65536):
            steps = length // down
            compare(task, f"{up}:{down}, {TAPS} taps, {steps * down}", rates(up, down, steps))
    alone(RATES, rates(2, 1, 1))
    alone(DECIMATION, rates(1, 2, 1))
    limit(RATES, 0.3, "Products and sums; at 147:160, with one tap an output, the look at the row.")
    limit(DECIMATION, 0.2, "Products and sums, two for each kept output and tap.")
measure()
