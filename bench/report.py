"""Presents the numbers of a benchmark run as tables, a chart and documents."""

import dataclasses
import math
import statistics

from latency import DELAYS
from workloads import PEERS

METHOD = """\
The others (`bench/peers/`) are what a user might write instead: a Python script with NumPy, an awk
program and a Miller program. They do the same job and give the same numbers, but know in advance
which files exist, and look for no others. All compare the symbols of the atoms, as
`--check same_atoms` does. The safe ones also stop if a value is not a number or is missing, or if
the numbers of atoms differ, as `vqvec` does. Before the measurement, `script/bench` checks that
these and `vqvec` stop at such faults.

The programs of a job run in turn, so that other load on the machine affects them equally; a slow
program runs in fewer rounds. Each round begins with a run that is discarded, since memory is slow
for a while after a program that used much of it. Times are processor time (user and system) unless
stated otherwise, given as medians with quartiles in brackets. Ratios are medians of the ratios
within each round. Files are read from the page cache.

The slow file system is bindfs, a FUSE program that shows another directory, with each of its calls
on a file delayed by strace. It is mounted anew for each run, so that the kernel knows no file yet.
The programs themselves are on a fast disk.

To repeat the measurement, run `script/bench` in the sources (20 minutes, 3 GB of disk).
"""

NETWORK = """\
On a network file system, a program waits for an answer whenever it asks for a name, opens a file,
lists a directory or reads. This table has wall times for {tasks:,} tasks of 50 atoms, with a delay
for each such request. Calls are system calls on files; they and the requests are those that one
more task causes.

{programs}
{explanation}
What helps:

- **One statement over many tasks**, instead of many statements: each statement asks for its files
  again.
- **Compacting values files** to which many runs have appended. Each statement reads them whole:
  see [long values files](troubleshooting.md#no-message-but-odd).

{remedies}"""

FLOOR = """\
# Benchmarks

`script/bench` builds these programs in `build/bench`, generates its data, always the same, in
`build/bench-data`, checks that all programs give the same numbers, and measures. A full run writes
`docs/performance.md`, its chart and this file. `script/bench --quick`, `script/bench --latency` and
`script/bench JOB...` only print tables.

| File | |
| --- | --- |
| `generate.cpp` | makes the data |
| `measure.cpp` | runs programs in turn, and reports the time and memory of each run |
| `floor.cpp` | the floor |
| `peers/` | the jobs with NumPy, awk and Miller |
| `workloads.py` | the jobs, and what each program is asked |
| `latency.py` | runs jobs on a slow file system |
| `report.py` | tables, chart and documents |

## The floor

For each job, `floor.cpp` does only the work that no program can avoid: it reads each byte once,
converts only the numbers that are used or written, and writes the same bytes. It has no statement,
no map and no checks. It converts numbers with the standard library and asks for each file by name,
so a program that does these better can be faster. For the job `small`, which is nothing but
start-up, the floor is `/bin/true`.

{floor}
## Aims

Ratios to the floor and to other programs are of processor time, unless stated otherwise.

{aims}"""

BASELINE = {"small": "true"}
AT_MOST = ("time / floor", "memory / floor", "memory, MiB", "calls per task",
           "failing calls per task")  # fmt: skip
LATENCY_AIMS = {"calls per task": 15, "failing calls per task": 0}


class Result:
    """All runs of one workload: lists of microseconds and KiB, by program, in order of rounds."""

    def __init__(self, workload, runs):
        self.workload = workload
        self.runs = runs

    @property
    def baseline(self):
        return BASELINE.get(self.workload.name, "floor")

    @property
    def peers(self):
        return [peer for peer in PEERS if peer in self.runs]

    def median(self, program, what):
        return statistics.median(run[what] for run in self.runs[program])

    def quartiles(self, program, what):
        values = [run[what] for run in self.runs[program]]
        low, _, high = statistics.quantiles(values, n=4, method="inclusive")
        return low, high

    def ratio(self, program, other, what="cpu"):
        """Of `program` to `other`, over the rounds that have both."""
        pairs = zip(self.runs[program], self.runs[other])
        return statistics.median(one[what] / two[what] for one, two in pairs)

    def quantity(self, name):
        """What an aim is about."""
        if name == "memory, MiB":
            return self.median("vqvec", "memory") / 1024
        if name.endswith(" / floor"):
            what = "memory" if name.startswith("memory") else "cpu"
            return self.ratio("vqvec", self.baseline, what)
        return self.ratio(name, "vqvec")


@dataclasses.dataclass(frozen=True)
class Latency:
    """Jobs on a slow file system: medians of seconds by job, at each of the delays."""

    tasks: int
    counts: dict  # latency.Counts by program
    programs: dict
    requests: dict  # by remedied job
    remedies: dict

    def slowest(self, program):
        return self.programs[program][-1]


def milliseconds(value):
    digits = 0 if value >= 1e6 else 1 if value >= 1e4 else 2
    return f"{value / 1e3:.{digits}f}"


def table(head, rows):
    widths = [max(len(row[i]) for row in [head, *rows]) for i in range(len(head))]
    numeric = [all(row[i][:1].isdigit() or row[i] == "" for row in rows) for i in range(len(head))]

    def line(cells):
        padded = [
            cell.rjust(width) if right else cell.ljust(width)
            for cell, width, right in zip(cells, widths, numeric)
        ]
        return "| " + " | ".join(padded) + " |\n"

    rule = ["-" * (width - 1) + (":" if right else "-") for width, right in zip(widths, numeric)]
    return line(head) + line(rule) + "".join(line(row) for row in rows)


def summary(results, latency):
    """Two sentences."""
    by_name = {result.workload.name: result for result in results}
    big, many = by_name["big"], by_name["many"]
    ratios = [r.ratio(peer, "vqvec") for r in (big, many) for peer in r.peers]
    slow = latency.slowest("vqvec")
    slow_ratios = [latency.slowest(name) / slow for name in latency.programs if name != "vqvec"]

    def of(result):
        return (f"{result.median('vqvec', 'cpu') / 1e6:.2g} s and "
                f"{result.median('vqvec', 'memory') / 1024:.0f} MiB")  # fmt: skip

    sentences = (
        f"For two tasks of {big.workload.data.atoms:,} atoms, `vqvec` needs {of(big)}, and for "
        f"{many.workload.data.number:,} tasks of {many.workload.data.atoms} atoms {of(many)}; with "
        f"NumPy, awk and Miller, both take {min(ratios):.2g} to {max(ratios):.0f} times as long. "
        f"On a file system that takes {DELAYS[-1] / 1000:g} ms to answer each request, as one on a "
        f"network may, {latency.tasks:,} tasks take {slow:.1f} s, and with the others "
        f"{min(slow_ratios):.2g} to {max(slow_ratios):.2g} times as long."
    )
    return wrapped(sentences)


def wrapped(text):
    lines = [""]
    for word in text.split():
        if len(lines[-1]) + len(word) + 1 > 100:
            lines.append("")
        lines[-1] += (" " if lines[-1] else "") + word
    return "\n".join(lines) + "\n"


def jobs_table(results):
    head = ["job", "vqvec, ms", "vqvec, MiB", *(f"{peer} / vqvec" for peer in PEERS)]
    rows = []
    for result in results:
        rows.append([
            result.workload.name,
            milliseconds(result.median("vqvec", "cpu")),
            f"{result.median('vqvec', 'memory') / 1024:.1f}",
            *(f"{result.ratio(peer, 'vqvec'):.1f}" if peer in result.runs else ""
              for peer in PEERS),
        ])  # fmt: skip
    return table(head, rows)


def programs_table(results):
    head = ["job", "program", "rounds", "time, ms", "wall time, ms", "memory, MiB",
            "time / vqvec"]  # fmt: skip
    rows = []
    for result in results:
        for program in ["vqvec", *result.peers]:
            low, high = result.quartiles(program, "cpu")
            rows.append([
                result.workload.name,
                program,
                str(len(result.runs[program])),
                f"{milliseconds(result.median(program, 'cpu'))}"
                f" ({milliseconds(low)} - {milliseconds(high)})",
                milliseconds(result.median(program, "wall")),
                f"{result.median(program, 'memory') / 1024:.1f}",
                f"{result.ratio(program, 'vqvec'):.1f}" if program in PEERS else "",
            ])  # fmt: skip
    return table(head, rows)


def floor_table(results):
    head = ["job", "floor, ms", "vqvec, ms", "time / floor", "floor, MiB", "vqvec, MiB",
            "memory / floor"]  # fmt: skip
    rows = []
    for result in results:
        times = [result.median(name, "cpu") for name in (result.baseline, "vqvec")]
        memories = [result.median(name, "memory") for name in (result.baseline, "vqvec")]
        rows.append([
            result.workload.name,
            *map(milliseconds, times),
            f"{result.quantity('time / floor'):.2f}",
            *(f"{memory / 1024:.1f}" for memory in memories),
            f"{result.quantity('memory / floor'):.2f}",
        ])  # fmt: skip
    return table(head, rows)


def aims_table(results, latency):
    rows = []

    def add(job, quantity, aim, value):
        is_met = value <= aim if quantity in AT_MOST else value >= aim
        direction = "at most" if quantity in AT_MOST else "at least"
        shown = f"{quantity} / vqvec" if quantity in PEERS else quantity
        rows.append([job, shown, f"{aim:g} {direction}", f"{value:.2f}", "yes" if is_met else "no"])

    for result in results:
        for quantity, aim in result.workload.aims.items():
            if quantity in result.runs or quantity in AT_MOST:
                add(result.workload.name, quantity, aim, result.quantity(quantity))
    if latency:
        counts = latency.counts["vqvec"]
        measured = (counts.calls, counts.failing)
        for (quantity, aim), value in zip(LATENCY_AIMS.items(), measured):
            add("many", quantity, aim, value)
    return table(["job", "quantity", "aim", "measured", "met"], rows)


def seconds_head():
    return ["without delay, s", *(f"with {delay / 1000:g} ms, s" for delay in DELAYS[1:])]


def seconds_cells(seconds):
    return [f"{value:.{2 if value < 10 else 1}f}" for value in seconds]


def latency_table(latency):
    head = ["program", "calls", "calls that wait", "requests", *seconds_head()]
    rows = []
    for name, seconds in latency.programs.items():
        counts = latency.counts[name]
        numbers = (counts.calls, sum(counts.waiting.values()), counts.requests)
        rows.append([name, *(f"{number:.0f}" for number in numbers), *seconds_cells(seconds)])
    return table(head, rows)


def remedies_table(latency):
    head = ["job", "requests", *seconds_head()]
    rows = [[name, str(latency.requests[name]), *seconds_cells(seconds)]
            for name, seconds in latency.remedies.items()]  # fmt: skip
    return table(head, rows)


def network(latency):
    waiting = latency.counts["vqvec"].waiting
    most_first = sorted(waiting, key=waiting.get, reverse=True)
    names = [f"{round(waiting[name])} `{name}`" for name in most_first if round(waiting[name])]
    return NETWORK.format(
        tasks=latency.tasks,
        programs=latency_table(latency),
        explanation=wrapped(
            f"In `vqvec`, {', '.join(names[:-1])} and {names[-1]} wait. It lists the directory of "
            "each task, since any of several files may be there; the scripts know which. The safe "
            "scripts make the same requests. With such delays all programs mostly wait, so the "
            "number of requests decides."),
        remedies=remedies_table(latency),
    )


def growth_tables(growths):
    """`growths`: pairs of a Growth and the median microseconds at each of its points."""
    text = ""
    for growth, times in growths:
        per_unit = [time / point[0] for point, time in zip(growth.points, times)]
        middle = per_unit[len(per_unit) // 2]
        unit = f"microseconds per {growth.unit}"
        rows = [
            [f"{point[0]:,}", milliseconds(time), f"{each:.3g}", f"{each / middle:.2f}"]
            for point, time, each in zip(growth.points, times, per_unit)
        ]
        text += table([growth.name, "time, ms", unit, "relative to the middle row"], rows) + "\n"
    return text


def jobs_list(results):
    lines = [f"- `{r.workload.name}`: {r.workload.about}\n" for r in results]
    return "".join(lines)


def document(results, growths, latency, machine):
    text = "# Performance\n\n" + summary(results, latency)
    text += "\n![Processor time of each program](performance.svg)\n"
    text += "\nProcessor time and memory of `vqvec`, and how many times as long the others take. "
    text += "The\n[safe](#how-it-was-measured) scripts check their inputs as `vqvec` does.\n\n"
    text += jobs_table(results)
    text += "\nThe jobs:\n\n" + jobs_list(results)
    text += "\n## Network file systems\n\n" + network(latency)
    text += "\n## Growth\n\n"
    text += "Growth of the program alone is linear if the last column does not increase.\n\n"
    text += growth_tables(growths)
    text += "## All programs\n\n" + programs_table(results)
    text += "\n## How it was measured\n\n" + METHOD
    text += "\n## The machine\n\n" + "".join(f"- {line}\n" for line in machine)
    return text


def developers_document(results, latency):
    return FLOOR.format(floor=floor_table(results), aims=aims_table(results, latency))


COLOURS = {"vqvec": "#1f6fb4", "NumPy": "#e0a030", "safe NumPy": "#f0cf90", "awk": "#6aa84f",
           "safe awk": "#b5d3a8", "Miller": "#b4574d"}  # fmt: skip


def chart(results):
    """Horizontal bars on a logarithmic axis: the processor time of each program."""
    bar, gap, left, width = 16, 18, 170, 560
    times = [r.median(p, "cpu") / 1e3 for r in results for p in ("vqvec", *r.peers)]
    first, last = (math.floor(math.log10(min(times))), math.ceil(math.log10(max(times))))

    def x_of(time):
        return left + width * (math.log10(time) - first) / (last - first)

    body = []
    y = 52
    for result in results:
        body.append(f'<text x="12" y="{y + 12}" font-weight="bold">{result.workload.name}</text>')
        for program in ("vqvec", *result.peers):
            time = result.median(program, "cpu")
            x = x_of(time / 1e3)
            body.append(f'<text x="{left - 8}" y="{y + 12}" text-anchor="end">{program}</text>')
            body.append(f'<rect x="{left}" y="{y + 1}" width="{x - left:.1f}" '
                        f'height="{bar - 2}" fill="{COLOURS[program]}"/>')  # fmt: skip
            body.append(f'<text x="{x + 6:.1f}" y="{y + 12}" fill="#555">'
                        f"{milliseconds(time)}</text>")  # fmt: skip
            y += bar
        y += gap
    axis = []
    for power in range(first, last + 1):
        x = x_of(10**power)
        axis.append(f'<line x1="{x:.1f}" y1="44" x2="{x:.1f}" y2="{y - gap + 4}" stroke="#ddd"/>')
        axis.append(f'<text x="{x:.1f}" y="40" text-anchor="middle" fill="#555">'
                    f"{10.0**power:g}</text>")  # fmt: skip
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{left + width + 80}" height="{y}" '
        'font-family="sans-serif" font-size="12">',
        '<rect width="100%" height="100%" fill="white"/>',
        '<text x="12" y="20" font-size="14">Processor time in milliseconds '
        "(logarithmic; shorter is better)</text>",
        *axis,
        *body,
        "</svg>\n",
    ])  # fmt: skip
