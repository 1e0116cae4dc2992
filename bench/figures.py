#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Makes tables and pictures of the lines that the programs of bench/ print.

Usage: bench/figures.py [--markdown] [--pictures FOLDER] [--before FILE] [FILE ...]

FILE is what a program printed; several files make one report, none means standard input. Tables and limits are printed
as text, or with --markdown as a page of documentation. --pictures draws SVG pictures into FOLDER; a page links them as
if it were next to FOLDER. --before shows the figures of an earlier run next to those of the later one.

Exit code: 0; 1 when a limit is missed; 2 when something was wrong with the options or a file.
"""

import argparse
import json
import math
import pathlib
import statistics
import sys
from collections import defaultdict, namedtuple

READERS = ("LTCReader", "libltc", "libltc, filtered")
VERDICTS = ("right", "refused", "wrong", "broken")

BLOCK_LIMIT, BLOCK_ROWS = 50, 10_000    # [ms] the longest block, in tables of at most so many rows
GROWTH_LIMIT = 1.5                      # of the cost per row, from the fewest rows to the most
TIMECODE_LIMIT = 2                      # [ms] CPU time of a timecode that all rows take over
MEMORY_LIMIT = 6                        # [KiB per row]
POINTER_LIMIT, QUIT_LIMIT = 100, 1      # [ms], [s] under a tree of foreign files
FLOOR_LIMIT, CPU_LIMIT = 1.05, 3        # times the floor's time; [% of the tools' CPU time]
BATCH_LIMIT, BATCH_CPU_LIMIT = 1.02, 2  # the same for ostrel-batch, to the window's time
READER_LIMIT = 10                       # [ms] more than opening a file of one channel

Table = namedtuple("Table", "title columns rows isDetail", defaults=(False,))
Check = namedtuple("Check", "name value limit")
# series: (name, values of x, values of y); ticks: names of whole numbers on the horizontal axis
Chart = namedtuple("Chart", "title horizontal vertical series ticks scale", defaults=(None, "linear"))


class Failure(Exception):
    """Why there is no report, in one line for the user."""


class Report:
    def __init__(self):
        self.tables, self.notes, self.checks, self.pictures = [], [], [], {}

    def table(self, title, columns, rows, is_detail=False):
        self.tables.append(Table(title, columns, [list(row) for row in rows], is_detail))


def grouped(lines, *keys):
    """Lists of `lines` with the same values of `keys`, by those values, in order of appearance."""
    groups = defaultdict(list)
    for line in lines:
        groups[tuple(line[key] for key in keys)].append(line)
    return groups


def percent(part, whole):
    return 100 * part / whole if whole else 0


def median(values):
    values = list(values)
    return statistics.median(values) if values else 0


# How well LTCReader reads


def answers_of(lines, reader):
    return [line["readers"][reader] for line in lines if reader in line["readers"]]


def count(answers, verdict):
    return sum(answer["verdict"] == verdict for answer in answers)


def errors_of(answers):
    return [answer["error"] for answer in answers if "error" in answer]


def error_text(errors):
    return f"{median(errors):.0f}, {max(errors, default=0):.0f}"


def right_shares(grades, reader):
    """Of each of `grades` the share of recordings that `reader` reads right; none are read where it gave up."""
    return [percent(count(answers, "right"), len(answers)) / 100
            for answers in (answers_of(lines, reader) for lines in grades.values())]


def half_position(shares):
    """Where half of the recordings are read, as a number of the grade: the last one where all are above half, none
    where even the first one is below."""
    if shares[0] < 0.5:
        return None
    for grade, share in enumerate(shares):
        if share < 0.5:
            return grade - 1 + (shares[grade - 1] - 0.5) / (shares[grade - 1] - share)
    return len(shares) - 1


def half_point(values, shares):
    position = half_position(shares)
    if position is None:
        return "none"
    before = int(position)
    after = min(before + 1, len(values) - 1)
    value = values[before] + (position - before) * (values[after] - values[before])
    return ("beyond " if position >= len(values) - 1 else "") + f"{value:.4g}"


def readings(lines, report):
    points, shortfalls, charts = [], [], defaultdict(list)
    for (section, name, unit, graded), curve in grouped(lines, "section", "curve", "unit", "graded").items():
        grades = {grade: group for (grade,), group in grouped(curve, "grade").items()}
        rows = []
        for grade, group in grades.items():
            row = [f"{grade:g}"]
            for reader in READERS:
                answers = answers_of(group, reader)
                shares = (f"{percent(count(answers, verdict), len(answers)):.0f}"
                          for verdict in ("right", "wrong", "refused"))
                row.append(" / ".join(shares) if answers else "-")
            rows.append(row + [error_text(errors_of(answers_of(group, READERS[0])))])
        report.table(f"{section}: {name} ({unit})",
                     ["grade", *(f"{reader}: right / wrong / refused %" for reader in READERS),
                      "position error: median, largest [samples]"], rows, is_detail=graded)
        if not graded:
            continue
        shares = {reader: right_shares(grades, reader) for reader in READERS}
        values = list(grades)
        points.append([name, section, unit] + [half_point(values, shares[reader]) if answers_of(curve, reader) else "-"
                                               for reader in READERS])
        ours = half_position(shares[READERS[0]])
        for reader in READERS[1:]:
            # A quarter of the distance between two grades is within the chance of the draw.
            position = half_position(shares[reader])
            if position is not None and (ours is None or position > ours + 0.25):
                shortfalls.append(f"{reader} reaches farther: {name}")
        series = [(reader, range(len(values)), [100 * share for share in shares[reader]]) for reader in READERS]
        charts[section].append(Chart(name, unit, "% read right", series, [f"{value:g}" for value in values]))
    if points:
        report.table("50 % points", ["Impairment", "Section", "Unit", *READERS], points)
        report.notes += shortfalls or ["libltc reaches farther on no curve"]
    for section, drawn in charts.items():
        report.pictures[f"ltc-{section.lower()}"] = drawn
    add_details(lines, report)


def add_details(lines, report):
    def ours(wanted):
        return answers_of(filter(wanted, lines), READERS[0])

    answered = [answer for answer in ours(lambda line: True) if answer["verdict"] != "refused"]
    rate, flag, channel = (percent(sum(answer[key] for answer in answered), len(answered))
                           for key in ("rate", "count", "channel"))
    report.notes.append(f"LTCReader's {len(answered)} answers: rate class right in {rate:.2f} %, drop-frame flag in "
                        f"{flag:.2f} %, channel in {channel:.2f} %")
    for what, wanted in (("clean", lambda line: line["curve"] == "clean"),
                         ("white noise of equal power, 3 s",
                          lambda line: line["curve"].startswith("white noise, 3 s") and line["grade"] == 0)):
        errors = errors_of(ours(wanted))
        report.notes.append(f"Position, {what}: median and largest error {error_text(errors)} samples "
                            f"({len(errors)} files)")
    spikes = ours(lambda line: line["curve"] == "spikes, -50 to -1 dBFS"
                  or line["curve"] == "spikes by level" and line["grade"] >= -50)
    read = percent(count(spikes, "right"), len(spikes))
    report.notes.append(f"Spikes of 20 to 500 us, -50 dBFS and louder: {read:.1f} % right ({len(spikes)} files)")
    report.table("Totals", ["reader", "files", "right", "wrong", "refused", "other channel"],
                 [[reader, len(answers), *(count(answers, verdict) for verdict in ("right", "wrong", "refused")),
                   sum(not answer.get("channel", True) for answer in answers)]
                  for reader in READERS for answers in [answers_of(lines, reader)]])


def sounds(lines, report):
    groups = {name: group for (name,), group in grouped(lines, "curve").items()} | {"all": lines}
    report.table("Recordings without timecode: timecodes read", ["sound", "files", *READERS],
                 [[name, len(group)] + [count(answers_of(group, reader), "wrong") if answers_of(group, reader) else "-"
                                        for reader in READERS] for name, group in groups.items()])


def costs(lines, report):
    report.table("CPU time for 3 s at 48 kHz, means", ["recording", "LTCReader [ms]", "libltc, one channel [ms]"],
                 [[name.removeprefix("cost of "), *(statistics.mean(line[reader] for line in group)
                                                    for reader in READERS[:2])]
                  for (name,), group in grouped(lines, "curve").items()])


def odd(lines, report):
    grades = ("", ", easy", ", at the edge", ", beyond")
    for title, name_of in (("Behaviour", lambda line: (line["behaviour"],)),
                           ("Disturbance", lambda line: (line["disturbance"], line["grade"])),
                           ("Length [s]", lambda line: (line["seconds"],)),
                           ("Recordings", lambda line: ("all",))):
        groups = defaultdict(list)
        for line in lines:
            groups[name_of(line)].append(line)
        rows = []
        for name, group in sorted(groups.items()):
            counts = {verdict: count(group, verdict) for verdict in VERDICTS}
            rows.append([f"{name[0]}{grades[name[1]] if len(name) > 1 else ''}", len(group),
                         len(group) - counts["refused"], *counts.values()])
        report.table(title, [title.lower(), "files", "answers", *VERDICTS], rows)
    calibration(lines, report)


def calibration(lines, report):
    """How often the likeliest timecode is wrong and how often its confidence says so: of all that were answered and
    those that were only not proven."""
    last = 6
    decades = [[] for _ in range(last + 1)]
    for line in lines:
        if line["verdict"] != "refused" or line["too_noisy"] and line["confidence"] > 0:
            doubt = min(max(1 - line["confidence"], 1e-12), 1)
            decades[min(int(-math.log10(doubt)), last)].append((doubt, not line["likely_right"]))
    rows = []
    for place, likeliest in enumerate(decades):
        claimed, wrong = (sum(column) for column in zip(*likeliest)) if likeliest else (0, 0)
        files = max(len(likeliest), 1)
        rows.append([f"1e-{place} " + ("and less" if place == last else f"to 1e-{place + 1}"), len(likeliest), wrong,
                     f"{wrong / files:.2g}", f"{claimed / files:.2g}"])
    report.table("Confidence", ["1 - confidence", "likeliest", "wrong", "wrong share", "claimed"], rows)
    drawn = [(float(row[4]), float(row[3])) for row in rows if row[2]]
    claims = [10.0**-place for place in range(last, -1, -1)]
    report.pictures["ltc-confidence"] = [Chart(
        "Wrong ones among the likeliest timecodes", "share that the confidence claims", "share that is wrong",
        ([("measured", *zip(*sorted(drawn)))] if drawn else []) + [("as claimed", claims, claims)], scale="log")]


# How fast the program is


def steps(lines, report):
    charts = []
    for (shoot,), group in grouped(lines, "shoot").items():
        by_rows = {rows: group for (rows,), group in grouped(group, "rows").items()}
        names = [line["step"] for line in next(iter(by_rows.values()))]
        cost = {rows: {line["step"]: line["cpu_s"] * 1e6 / rows for line in run} for rows, run in by_rows.items()}
        for title, unit, figure in (("CPU time", "us per row", lambda line: line["cpu_s"] * 1e6 / line["rows"]),
                                    ("time", "us per row", lambda line: line["time_s"] * 1e6 / line["rows"]),
                                    ("longest block", "ms", lambda line: line["block_ms"])):
            rows = [[number] + [figure(line) for line in run] for number, run in by_rows.items()]
            report.table(f"{shoot}: {title} [{unit}]", ["rows", *names], rows)
            if title != "time":
                charts.append(chart_of(f"{shoot}: {title}", unit, rows, ["rows", *names]))
        fewest, most = min(by_rows), max(by_rows)
        for line in group:
            # There every result concerns every row.
            every_row = shoot == "all of one moment" and line["step"].startswith("read")
            where = f"{shoot}, {line['step']}, {line['rows']} rows: "
            if line["rows"] == most > fewest and not every_row:
                report.checks.append(Check(f"{where}cost per row to that at {fewest}",
                                           cost[most][line["step"]] / cost[fewest][line["step"]], GROWTH_LIMIT))
            if line["rows"] <= BLOCK_ROWS:
                report.checks.append(Check(where + "longest block [ms]", line["block_ms"], BLOCK_LIMIT))
                if every_row:  # every second result is a timecode
                    report.checks.append(Check(where + "CPU time of a timecode [ms]",
                                               2e3 * line["cpu_s"] / line["rows"], TIMECODE_LIMIT))
    report.pictures["speed-window"] = charts


def memory(lines, report):
    for (shoot,), group in grouped(lines, "shoot").items():
        report.table(f"{shoot}: heap after the import",
                     ["rows", "KiB per row", "KiB of probe JSON per row, for comparison"],
                     [[line["rows"], line["bytes"] / 1024, line["json_bytes"] / 1024] for line in group])
    report.checks += [Check(f"{line['shoot']}, {line['rows']} rows: memory per row [KiB]", line["bytes"] / 1024,
                            MEMORY_LIMIT) for line in lines]


def foreign(lines, report):
    report.table("A folder tree without media",
                 ["files", "ms to the busy pointer", "ms of the longest block", "s to quit meanwhile"],
                 [[line["files"], line["answer_ms"], line["block_ms"], line["quit_s"]] for line in lines])
    for line in lines:
        report.checks.append(Check("foreign files: the busy pointer [ms]", line["answer_ms"], POINTER_LIMIT))
        report.checks.append(Check("foreign files: quitting meanwhile [s]", line["quit_s"], QUIT_LIMIT))


def rounds(lines, report):
    for (work,), all_rounds in grouped(lines, "work").items():
        times, processes, batches = [], [], []
        for (files,), group in grouped(all_rounds, "files").items():
            def of(who, what, other="", to="", group=group):
                """The median of a figure, or of what it is to another one."""
                return median(line[who][what] / (line[other][to] if to else 1) for line in group)

            def usage(who, floor):
                """Time, compared with the floor's, and CPU time."""
                return [of(who, "time_s"), of(who, "time_s", floor, "time_s"), of(who, "tools_cpu_s"),
                        of(who, "own_cpu_s"), 100 * of(who, "own_cpu_s", who, "tools_cpu_s")]

            def alive(who, figure, group=group):
                return median(figure([number for _, number in line[who]["processes"]]) for line in group)

            ours = usage("program", "floor")
            times.append([files, *ours, of("floor", "time_s"), of("floor", "tools_cpu_s"), of("floor", "own_cpu_s")])
            processes.append([files, of("program", "peak_mib"), alive("program", max),
                              *(alive(who, statistics.mean) for who in ("program", "floor")),
                              max(line["block_ms"] for line in group)])
            name = f"{work} of {files} files: "
            report.checks += [Check(name + "time to that of the floor", ours[1], FLOOR_LIMIT),
                              Check(name + "our CPU time [% of the child processes']", ours[4], CPU_LIMIT)]
            if "batch" in group[0]:
                batch = usage("batch", "program")
                batches.append([files, *batch])
                report.checks += [Check(name + "time of ostrel-batch to that of the window", batch[1], BATCH_LIMIT),
                                  Check(name + "CPU time of ostrel-batch [% of its child processes']", batch[4],
                                        BATCH_CPU_LIMIT)]
        columns = ["s CPU of the child processes", "s CPU of its own", "% of the child processes'"]
        report.table(f"{work}: time and CPU time, medians",
                     ["files", "s", "times the floor", *columns, "s of the floor",
                      "s CPU of the floor's child processes", "s CPU of the bare launcher"], times)
        report.table(f"{work}: memory and processes",
                     ["files", "MiB at most", "processes at most", "processes on average", "floor's on average",
                      "ms of the longest block"], processes)
        if batches:
            report.table(f"{work}: the same by ostrel-batch, medians",
                         ["files", "s", "times the window", *columns], batches)
        last = all_rounds[-1]
        report.pictures[f"speed-{work}"] = [
            chart_of(work, "s", [[row[0], row[1], row[6]] for row in times], ["files", "program", "floor"]),
            chart_of("CPU time of our process", "% of the child processes'", [[row[0], row[5]] for row in times],
                     ["files", "program"]),
            Chart(f"Processes, {last['files']} files", "s", "processes alive",
                  [("program", *zip(*last["program"]["processes"]))])]


def reader(lines, report):
    rows = []
    for (channels,), group in grouped(lines, "channels").items():
        times = [median(line[program] for line in group) for program in ("reader_ms", "opener_ms")]
        rows.append([channels, *times, times[0] - times[1]])
        if channels == 1:
            report.checks.append(Check("one channel: more than opening the file [ms]", rows[-1][3], READER_LIMIT))
    report.table("LTCReader: time from start to exit, medians",
                 ["channels", "ms", "ms of a program that only opens the file", "ms more"], rows)
    report.pictures["speed-reader"] = [chart_of("LTCReader, 3 s of sound", "ms from start to exit",
                                                [row[:3] for row in rows], ["channels", "LTCReader", "only opened"])]


def chart_of(title, vertical, rows, columns):
    horizontal, *series = zip(*rows)
    return Chart(title, columns[0], vertical, [(name, horizontal, values) for name, values in zip(columns[1:], series)],
                 scale="semilog")


# Files, text and pictures

KINDS = {"reading": readings, "sound": sounds, "cost": costs, "odd": odd, "step": steps, "memory": memory,
         "foreign": foreign, "round": rounds, "reader": reader}


def lines_of(path):
    with open(path, encoding="utf-8") if path != "-" else sys.stdin as file:
        for number, line in enumerate(file, 1):
            try:
                figures = json.loads(line)
                if figures["kind"] not in (*KINDS, "run"):
                    raise ValueError
            except (ValueError, KeyError, TypeError):
                raise Failure(f"{path}:{number}: no figures of a benchmark") from None
            yield figures


def report_of(paths):
    kinds = defaultdict(list)
    for path in paths:
        for line in lines_of(path):
            kinds[line["kind"]].append(line)
    runs = kinds.pop("run", [])
    if not kinds or not runs:
        raise Failure("nothing was measured")
    report = Report()
    for kind, lines in kinds.items():
        try:
            KINDS[kind](lines, report)
        except (LookupError, TypeError, ValueError) as reason:
            raise Failure(f"a line of kind \"{kind}\" is not as expected: {reason!r}") from None
    return runs, report


def cell_text(value):
    if not isinstance(value, float):
        return str(value)
    digits = 0 if abs(value) >= 100 or value == round(value) else 1 if abs(value) >= 10 else 3
    return f"{value:.{digits}f}"


def table_text(table, is_markdown):
    cells = [[str(cell) for cell in table.columns], *([cell_text(cell) for cell in row] for row in table.rows)]
    if is_markdown:
        cells.insert(1, ["---"] * len(table.columns))
        return f"## {table.title}\n\n" + "".join("| " + " | ".join(row) + " |\n" for row in cells)
    widths = [max(len(row[column]) for row in cells) for column in range(len(table.columns))]
    cells.insert(1, ["-" * width for width in widths])
    return f"{table.title}\n\n" + "".join(
        "  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip() + "\n" for row in cells)


def with_earlier(table, earlier):
    """`table` with "before > after" in the cells whose row, known by its first cell, the table of the same title has in
    `earlier`."""
    rows = {row[0]: row for other in earlier if other.title == table.title for row in other.rows}
    return table._replace(rows=[
        [f"{cell_text(before)} > {cell_text(after)}" if place and before != after else after
         for place, (before, after) in enumerate(zip(rows.get(row[0], row), row))] for row in table.rows])


def check_text(check):
    kept = "kept:   " if check.value <= check.limit else "MISSED: "
    return f"{kept}{check.name}: {cell_text(float(check.value))} (at most {check.limit})"


def draw(path, charts):
    # Only pictures need it.
    import matplotlib
    matplotlib.use("svg")
    matplotlib.rcParams.update({"svg.fonttype": "none", "svg.hashsalt": path.name, "font.size": 8})
    from matplotlib import pyplot
    columns = min(3, len(charts))
    figure, cells = pyplot.subplots(math.ceil(len(charts) / columns), columns, squeeze=False, layout="constrained",
                                    figsize=(3.6 * columns, 2.7 * math.ceil(len(charts) / columns)))
    for cell in cells.flat[len(charts):]:
        cell.set_axis_off()
    for cell, chart in zip(cells.flat, charts):
        for (name, horizontal, vertical), style in zip(chart.series, ("-", "--", ":", "-.") * 3):
            cell.plot(horizontal, vertical, style, label=name, marker="." if len(horizontal) < 20 else "")
        cell.set_title(chart.title, fontsize="medium")
        cell.set(xlabel=chart.horizontal, ylabel=chart.vertical)
        if chart.scale != "linear":
            cell.set_xscale("log")
        if chart.scale == "semilog":
            cell.set_xticks(chart.series[0][1], chart.series[0][1])
            cell.minorticks_off()
        if chart.scale == "log":
            cell.set_yscale("log")
        else:
            cell.set_ylim(bottom=0)
        if chart.ticks:
            step = len(chart.ticks) // 8 + 1
            cell.set_xticks(range(0, len(chart.ticks), step), chart.ticks[::step])
        cell.grid(color="#ddd")
        cell.legend(fontsize="small")
    figure.savefig(path, metadata={"Date": None})
    pyplot.close(figure)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--markdown", action="store_true")
    parser.add_argument("--pictures", type=pathlib.Path, metavar="FOLDER")
    parser.add_argument("--before", metavar="FILE")
    parser.add_argument("files", nargs="*", metavar="FILE")
    options = parser.parse_args()
    runs, report = report_of(options.files or ["-"])
    tables = [table for table in report.tables if not (table.isDetail and options.markdown)]
    if options.before:
        earlier = report_of([options.before])[1].tables
        tables = [with_earlier(table, earlier) for table in tables]
    if options.markdown:
        print("# Results of " + ", ".join(dict.fromkeys(run["program"] for run in runs)) + "\n")
    for date_and_machine in dict.fromkeys(f"{run['date']}, {run['machine']}" for run in runs):
        print(f"Measured on {date_and_machine}:\n")
    print("\n".join("    " + command for command in dict.fromkeys(run["command"] for run in runs)) + "\n")
    for table in tables:
        print(table_text(table, options.markdown))
    bullet = "- " if options.markdown else ""
    print("\n".join(bullet + line for line in [*report.notes, *map(check_text, report.checks)]))
    if options.pictures:
        options.pictures.mkdir(parents=True, exist_ok=True)
        for name, charts in report.pictures.items():
            draw(options.pictures / f"{name}.svg", charts)
            if options.markdown:
                print(f"\n![{name}]({options.pictures.name}/{name}.svg)")
    return 0 if all(check.value <= check.limit for check in report.checks) else 1


if __name__ == "__main__":
    try:
        sys.exit(main())
    except (Failure, OSError) as failure:
        print(f"figures.py: {failure}", file=sys.stderr)
        sys.exit(2)
