"""Makes docs/benchmarks.md of what the benchmark programs wrote down.

    table.py PAGE RESULT.json...

Each result is of one family, named as its file up to the first dot: fft.json of the
program in C++, fft.python.json of the one in Python. Families that are not among the
results keep the section that they have in the page.
"""

import json
import os
import re
import statistics
import sys

HEAD = """\
# Benchmarks

Times of one call, on one core, medians of {repetitions} or more interleaved
repetitions. The ratio is ours to the strongest peer's in the same run: below 1 this library is
faster. The bar is the ratio that a task is meant to stay below, and the line below
a table says what stops it from being faster still. `loop` is the plain loop as the
compiler makes it at `-O3 -march=x86-64-v3`.

In tasks that end in `from Python` both sides are called from one Python process, on
the same arrays, this library through `ctypes`. The times are of whole calls, as a
program sees them; the line below a table says what a call costs by itself, on next to
no samples, so that it is clear how much of a short block's time that is.

`bench/run.sh` makes this page, `bench/run.sh fft` renews the section of one family.

Last run: {run}.
{skipped}
| family | task | sizes | ratio | bar | |
|---|---|---|---:|---:|---|
{summary}
"""


def load(paths):
    """The contexts and rows of a family's results together."""
    context, rows = {}, {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            data = json.load(file)
        context.update(data["context"])
        found = rows_of(data)
        twice = {task for task, _ in found} & {task for task, _ in rows}
        if twice:
            sys.exit(f"error: {path}: tasks that another result of the family has: {twice}")
        rows.update(found)
    return context, rows


def rows_of(data):
    rows = {}
    # The index is the order of registration; the entries stand as they ran.
    for entry in sorted(data["benchmarks"], key=lambda entry: entry["family_index"]):
        if entry.get("run_type") != "iteration":
            continue
        task, size, who = entry["run_name"].split("|")
        scale = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}[entry["time_unit"]]
        rows.setdefault((task, size), {}).setdefault(who, []).append(entry["cpu_time"] * scale)
    return rows


def limits(context):
    found = {}
    for key, value in context.items():
        if key.startswith("limit|"):
            bar, reason = value.split("|", 1)
            found[key.split("|", 1)[1]] = (float(bar), reason)
    return found


def bars(context):
    """The bars of single rows, by task and size."""
    return {tuple(key.split("|")[1:]): float(value) for key, value in context.items()
            if key.startswith("bar|")}


def alone(context, task):
    """What a call of each contender costs by itself, where that was measured."""
    begin = f"alone|{task}|"
    costs = [f"{key[len(begin):]} {readable(float(value))}" for key, value in context.items()
             if key.startswith(begin)]
    return f"A call by itself: {', '.join(costs)}." if costs else ""


def peers(context):
    return {key.split("|", 1)[1]: version for key, version in context.items()
            if key.startswith("peer|")}


def machine():
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        found = re.search(r"^model name\s*:\s*(.*)$", file.read(), re.MULTILINE)
    return found.group(1) if found else "unknown processor"


def describe(context):
    caches = ", ".join(
        f"L{cache['level']} {cache['size'] // 1024} KiB"
        for cache in context["caches"] if cache["type"] != "Instruction")
    versions = ", ".join(f"{name} {version}" for name, version in peers(context).items() if version)
    text = f"{context['date'][:10]}, {machine()} ({caches}), {context['compiler']}"
    return f"{text}; {versions}" if versions else text


def readable(ns):
    for unit, scale in (("ns", 1.0), ("µs", 1e3), ("ms", 1e6), ("s", 1e9)):
        value = ns / scale
        if value < 999.5 or unit == "s":
            digits = 0 if value >= 99.95 else 1 if value >= 9.995 else 2
            return f"{value:.{digits}f} {unit}"


def row_of(size, times, bar):
    ours = statistics.median(times["rvx"])
    others = {who: statistics.median(values) for who, values in times.items() if who != "rvx"}
    if not others:
        return f"| {size} | {readable(ours)} | none installed | | | | |", None
    best = min(others, key=others.get)
    ratio = ours / others[best]
    verdict = "" if bar is None else "ok" if ratio <= bar else "above"
    shown = "" if bar is None else f"{bar:g}"
    return (f"| {size} | {readable(ours)} | {best} | {readable(others[best])} "
            f"| {ratio:.2f} | {shown} | {verdict} |", verdict)


def section(name, context, rows):
    reasons, exceptions = limits(context), bars(context)
    tasks = list(dict.fromkeys(task for task, _ in rows))
    unknown = [task for task in reasons if task not in tasks]
    unknown += [row for row in exceptions if row not in rows]
    if unknown:
        sys.exit(f"error: {name}: a limit is set for tasks that are not measured: {unknown}")
    lines = [f"## {name}", "", f"Measured {describe(context)}.", ""]
    above = 0
    for task in tasks:
        bar, reason = reasons.get(task, (None, ""))
        lines += [f"### {task}", "",
                  "| size | rvx | strongest peer | its time | ratio | bar | |",
                  "|---|---:|---|---:|---:|---:|---|"]
        for (row_task, size), times in rows.items():
            if row_task == task:
                text, verdict = row_of(size, times, exceptions.get((task, size), bar))
                above += verdict == "above"
                lines.append(text)
        lines.append("")
        if alone(context, task):
            lines += [alone(context, task), ""]
        if reason:
            lines += [f"Limit: {reason}", ""]
    text = "\n".join(lines)
    print(f"{text}\n{name}: {len(rows)} rows, {above} above their bar")
    return text


def summary(name, text):
    """One line per task of a section: the range of its sizes and ratios."""
    lines = []
    for task in re.split(r"^### ", text, flags=re.MULTILINE)[1:]:
        title = task.splitlines()[0]
        rows = [[cell.strip() for cell in line.split("|")[1:-1]]
                for line in task.splitlines() if line.startswith("| ")][1:]
        rows = [row for row in rows if row[4]]
        if not rows:
            continue
        sizes = rows[0][0] if len(rows) == 1 else f"{rows[0][0]} … {rows[-1][0]}"
        ratio = span(row[4] for row in rows)
        above = sum(row[6] == "above" for row in rows)
        barred = any(row[5] for row in rows)
        verdict = f"{above} of {len(rows)} above" if above else "ok" if barred else ""
        lines.append(f"| {name} | {title} | {sizes} | {ratio} "
                     f"| {span(row[5] for row in rows if row[5])} | {verdict} |")
    return lines


def span(values):
    """From the least of some numbers, as they are written, to the greatest."""
    values = sorted(set(values), key=float)
    return " … ".join(values[:1] + values[1:][-1:])


def sections_of(page):
    if not os.path.exists(page):
        return {}
    with open(page, encoding="utf-8") as file:
        parts = re.split(r"^(?=## )", file.read(), flags=re.MULTILINE)[1:]
    return {part.splitlines()[0][3:]: part.rstrip("\n") + "\n" for part in parts}


def main(page, results):
    sections = sections_of(page)
    families = {}
    for path in results:
        families.setdefault(os.path.basename(path).split(".")[0], []).append(path)
    everything, repetitions = {}, []
    for name, paths in families.items():
        context, rows = load(paths)
        sections[name] = section(name, context, rows)
        everything.update(context)
        repetitions += [len(values) for times in rows.values() for values in times.values()]
    absent = sorted(name for name, version in peers(everything).items() if not version)
    skipped = "".join(f"\n{name} is not installed: its rows are skipped.\n" for name in absent)
    overview = [line for name in sorted(sections) for line in summary(name, sections[name])]
    head = HEAD.format(repetitions=min(repetitions), run=describe(everything), skipped=skipped,
                       summary="\n".join(overview))
    os.makedirs(os.path.dirname(page) or ".", exist_ok=True)
    with open(page, "w", encoding="utf-8") as file:
        file.write("\n".join([head] + [sections[name] for name in sorted(sections)]))
    print(f"written: {page}")


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    main(sys.argv[1], sys.argv[2:])
