"""Presents the numbers of a benchmark run as tables and a chart."""

import math
import statistics

SUMMARY = """\
# Performance

Processor time and memory that `vqvec` needs for each [job](#the-jobs), and how many times as long
NumPy, awk and Miller take for it. The [floor](#how-it-was-measured) is what no program can avoid.
"""

METHOD = """\
Two kinds of program were measured in the same run:

- The **floor** (`bench/floor.cpp`) does, for each job, only the work that no program can avoid. It
  makes the same system calls, reads each byte once, converts only the numbers that are used or
  written, and writes the same bytes. It has no statement, no map and no checks. For the job
  `small`, which is nothing but start-up, the floor is `/bin/true`.
- The **peers** (`bench/peers/`) are what a user might write instead: a Python script with NumPy, an
  awk program and a Miller program. They do the same job and give the same numbers, but know in
  advance which files exist, and look for no others.

The programs of a job run in turn, so that other load on the machine affects them equally; a slow
program runs in fewer rounds. Each round begins with a run that is discarded, since memory is slow
for a while after a program that used much of it. Times are processor time (user and system) unless
stated otherwise, given as medians with quartiles in brackets. Ratios are medians of the ratios
within each round. Files are read from the page cache.

To repeat the measurement, run `script/bench` (a quarter of an hour, 3 GB of disk), or
`script/bench --quick` (smaller data; prints the results only). It builds in `build/bench` and
generates its data, always the same, in `build/bench-data`. A full run replaces this file and the
chart.
"""

BASELINE = {"small": "true"}
PEERS = ("NumPy", "awk", "Miller")


class Result:
    """All runs of one workload: lists of microseconds and KiB, by program, in order of rounds."""

    def __init__(self, workload, runs):
        self.workload = workload
        self.runs = runs

    @property
    def baseline(self):
        return BASELINE.get(self.workload.name, "floor")

    def median(self, program, what):
        return statistics.median(run[what] for run in self.runs[program])

    def quartiles(self, program, what):
        values = [run[what] for run in self.runs[program]]
        low, _, high = statistics.quantiles(values, n=4, method="inclusive")
        return low, high

    def ratio(self, program, other, what):
        """Of `program` to `other`, over the rounds that have both."""
        pairs = zip(self.runs[program], self.runs[other])
        return statistics.median(one[what] / two[what] for one, two in pairs)


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


def summary_table(results):
    head = ["job", "vqvec, ms", "vqvec, MiB", *(f"{peer} / vqvec" for peer in PEERS),
            "vqvec / floor"]  # fmt: skip
    rows = []
    for result in results:
        rows.append([
            result.workload.name,
            milliseconds(result.median("vqvec", "cpu")),
            f"{result.median('vqvec', 'memory') / 1024:.1f}",
            *(f"{result.ratio(peer, 'vqvec', 'cpu'):.1f}" if peer in result.runs else ""
              for peer in PEERS),
            f"{result.ratio('vqvec', result.baseline, 'cpu'):.2f}",
        ])  # fmt: skip
    return table(head, rows)


def programs_table(results):
    head = ["job", "program", "rounds", "time, ms", "wall, ms", "memory, MiB",
            "time / floor", "memory / floor", "time / vqvec"]  # fmt: skip
    rows = []
    for result in results:
        for program in result.runs:
            low, high = result.quartiles(program, "cpu")
            rows.append([
                result.workload.name,
                program,
                str(len(result.runs[program])),
                f"{milliseconds(result.median(program, 'cpu'))}"
                f" ({milliseconds(low)} - {milliseconds(high)})",
                milliseconds(result.median(program, "wall")),
                f"{result.median(program, 'memory') / 1024:.1f}",
                f"{result.ratio(program, result.baseline, 'cpu'):.2f}",
                f"{result.ratio(program, result.baseline, 'memory'):.2f}",
                f"{result.ratio(program, 'vqvec', 'cpu'):.1f}" if program in PEERS else "",
            ])  # fmt: skip
    return table(head, rows)


def aims_table(results):
    rows = []

    def add(result, quantity, aim, value, met):
        rows.append([result.workload.name, quantity, aim, f"{value:.2f}", "yes" if met else "no"])

    for result in results:
        work = result.workload
        base = result.baseline
        time = result.ratio("vqvec", result.baseline, "cpu")
        add(result, f"time / {base}", f"{work.floor_aim:g} at most", time, time <= work.floor_aim)
        if work.memory_aim is not None:
            memory = result.ratio("vqvec", result.baseline, "memory")
            aim = f"{work.memory_aim:g} at most"
            add(result, f"memory / {base}", aim, memory, memory <= work.memory_aim)
        for peer in [p for p in PEERS if p in result.runs]:
            if work.name == "small" and peer != "awk":
                continue
            faster = result.ratio(peer, "vqvec", "cpu")
            aim = f"{work.peer_aim:g} at least"
            add(result, f"times faster than {peer}", aim, faster, faster >= work.peer_aim)
    return table(["job", "quantity", "aim", "measured", "met"], rows)


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


def document(results, growths, machine, missing):
    text = SUMMARY + "\n" + summary_table(results)
    text += "\n![Time of each program, relative to the floor](performance.svg)\n"
    text += "\n## The jobs\n\n" + jobs_list(results)
    text += "\n## Measured\n\n" + programs_table(results)
    text += "\n## Growth\n\n"
    text += "Growth of the program alone is linear if the last column does not increase.\n\n"
    text += growth_tables(growths)
    text += "## How it was measured\n\n" + METHOD
    text += "\n## The machine\n\n" + "".join(f"- {line}\n" for line in machine)
    if missing:
        text += "\nNot installed for this measurement: " + ", ".join(missing) + ".\n"
    return text


COLOURS = {"true": "#bdbdbd", "floor": "#8c8c8c", "vqvec": "#1f6fb4", "NumPy": "#e0a030",
           "awk": "#6aa84f", "Miller": "#b4574d"}  # fmt: skip


def chart(results):
    """Horizontal bars on a logarithmic axis: the time of each program, relative to the floor."""
    bar, gap, left, width = 16, 18, 170, 560
    highest = max(r.ratio(p, r.baseline, "cpu") for r in results for p in r.runs)
    decades = max(1, math.ceil(math.log10(highest)))
    lowest = 0.5

    def x_of(ratio):
        share = math.log10(max(ratio, lowest) / lowest) / (decades - math.log10(lowest))
        return left + width * share

    body = []
    y = 52
    for result in results:
        body.append(f'<text x="12" y="{y + 12}" font-weight="bold">{result.workload.name}</text>')
        for program in result.runs:
            ratio = result.ratio(program, result.baseline, "cpu")
            time = milliseconds(result.median(program, "cpu"))
            body.append(f'<text x="{left - 8}" y="{y + 12}" text-anchor="end">{program}</text>')
            body.append(f'<rect x="{left}" y="{y + 1}" width="{x_of(ratio) - left:.1f}" '
                        f'height="{bar - 2}" fill="{COLOURS[program]}"/>')  # fmt: skip
            body.append(f'<text x="{x_of(ratio) + 6:.1f}" y="{y + 12}" fill="#555">'
                        f"{ratio:.2f} ({time} ms)</text>")  # fmt: skip
            y += bar
        y += gap
    axis = []
    for power in range(decades + 1):
        x = x_of(10**power)
        axis.append(f'<line x1="{x:.1f}" y1="44" x2="{x:.1f}" y2="{y - gap + 4}" stroke="#ddd"/>')
        axis.append(f'<text x="{x:.1f}" y="40" text-anchor="middle" fill="#555">{10**power}</text>')
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{left + width + 150}" height="{y}" '
        'font-family="sans-serif" font-size="12">',
        '<rect width="100%" height="100%" fill="white"/>',
        '<text x="12" y="20" font-size="14">Processor time relative to the floor '
        "(logarithmic; lower is better)</text>",
        *axis,
        *body,
        "</svg>\n",
    ])  # fmt: skip
