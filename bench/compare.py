"""Comparisons with libraries that are used from Python, as compare.h has them in C++.

A program bench_NAME.py registers rows: one task at one size, ours and each peer's.
All are called from one process on the same arrays, ours through ctypes, and take turns
in random order. What a call costs by itself is measured on the least work that a task
can have and told beside its results.

    python3 bench/bench_NAME.py LIBRARY RESULT.json
"""

import ctypes
import gc
import importlib
import json
import os
import random
import statistics
import sys
import time

# One core for all. Peers read these when they are loaded.
for variable in ("OMP_NUM_THREADS", "OPENBLAS_NUM_THREADS"):
    os.environ[variable] = "1"

try:
    import numpy
except ImportError:
    numpy = None  # no peer is there without it

REPETITIONS = 15
TURN = 3_000_000  # nanoseconds that a contender's turn takes, or longer

_context = {}
_rows = []
_alone = []


def peer(name, module):
    """The module of a peer, or None where it is not installed."""
    try:
        loaded = importlib.import_module(module)
    except ImportError:
        _context["peer|" + name] = ""
        return None
    _context["peer|" + name] = sys.modules[module.partition(".")[0]].__version__
    return loaded


def library():
    """Ours. Its functions take numbers, addresses and records as made below."""
    return ctypes.CDLL(os.path.abspath(sys.argv[1]))


def address(array):
    """A pointer to an array's elements, which keeps the array."""
    return array.ctypes.data_as(ctypes.c_void_p)


def record():
    """Room for a state record of any family, all bytes zero."""
    return ctypes.create_string_buffer(1024)


def noise(n):
    """Samples from -1 to 1, always the same."""
    return numpy.random.default_rng(1).uniform(-1.0, 1.0, n)


def compare(task, size, contenders, agree=True, views=None, within=1e-12):
    """Adds a row to the table: from who to a function that returns the results.

    The first is "rvx". What the first calls return must agree as far as the shorter
    of two goes: peers that start from zeros and go on beyond the block do. Generators of
    noise say that theirs need not. Where a peer has another order or scale, views lead
    from who to a function that makes of its results the array to compare; within is for
    peers with less precise tables.
    """
    results = {who: run().copy() for who, run in contenders.items()} if agree else {}
    for who, view in (views or {}).items():
        results[who] = view(results[who])
    for who, theirs in results.items():
        ours = results["rvx"]
        n = min(len(ours), len(theirs))
        error = abs(ours[:n] - theirs[:n]).max() / abs(theirs[:n]).max()
        if not error < within:
            sys.exit(f"error: {task}, {size}: {who} has other results, by {error}")
    for who, run in contenders.items():
        _rows.append((task, size, who, run))


def alone(task, contenders):
    """Says of a task what a call costs by itself: contenders with next to no work."""
    for who, run in contenders.items():
        _alone.append((task, who, run))


def limit(task, bar, reason):
    """As in compare.h."""
    _context["limit|" + task] = f"{bar}|{reason}"


def bar(task, size, value):
    """As in compare.h."""
    _context[f"bar|{task}|{size}"] = str(value)


def _spent(run, calls):
    begin = time.thread_time_ns()
    for _ in range(calls):
        run()
    return time.thread_time_ns() - begin


def _calls(run):
    """How many fill a turn."""
    calls = 1
    while _spent(run, calls) < TURN:
        calls *= 2
    return calls


def measure():
    """Each program's last call."""
    work = [row[-1] for row in _rows + _alone]
    calls = [_calls(run) for run in work]
    times = [[] for _ in work]
    gc.disable()
    for _ in range(REPETITIONS):
        for i in random.sample(range(len(work)), len(work)):
            times[i].append(_spent(work[i], calls[i]) / calls[i])
    for (task, who, _), own in zip(_alone, times[len(_rows):]):
        _context[f"alone|{task}|{who}"] = str(statistics.median(own))
    entries = [{"family_index": i, "run_name": f"{task}|{size}|{who}", "run_type": "iteration",
                "cpu_time": spent, "time_unit": "ns"}
               for i, (task, size, who, _) in enumerate(_rows) for spent in times[i]]
    with open(sys.argv[2], "w", encoding="utf-8") as file:
        json.dump({"context": _context, "benchmarks": entries}, file)
