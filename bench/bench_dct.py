"""Cosine transforms beside SciPy's, which are asked for the same orthonormal scaling."""

from compare import address, alone, compare, library, limit, measure, noise, numpy, peer

FORWARD, INVERSE = 1, 2
TASKS = {FORWARD: "cosine transform, forward; from Python",
         INVERSE: "cosine transform, inverse; from Python"}


def contenders(n, flags):
    x, y = noise(n), numpy.empty(n)
    src, dst = address(x), address(y)
    theirs = fft.dct if flags == FORWARD else fft.idct

    def ours():
        rvx.rvxdDct(src, dst, n, flags)
        return y
    return {"rvx": ours, "SciPy fft": lambda: theirs(x, norm="ortho")}


fft = peer("SciPy", "scipy.fft")
if fft:
    rvx = library()
    for direction, task in TASKS.items():
        # One length alone: turns of several would each begin with new tables.
        compare(task, "65536", contenders(65536, direction))
        alone(task, contenders(1, direction))
        limit(task, 0.7, "As beside FFTW.")
measure()
