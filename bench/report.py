#!/usr/bin/env python3
"""Makes tables, JSON and docs/performance.md from the output of the benchmark programs.

    report.py table|json RESULTS
    report.py docs RESULTS DOCS

RESULTS contains a NAME.json for each program: for bench_* in the form that report.h describes, for growth_* as Google
Benchmark prints it.
"""

import collections
import datetime
import json
import os
import platform
import re
import string
import sys

import picture

PROGRAMS = {
    "bench_channel_command": "a short command",
    "bench_channel_output": "large output",
    "bench_parsers": "listing parsers",
    "bench_file_list": "file lists as JSON",
    "bench_regex": "listings, compared with regular expressions",
    "bench_phone": "on a simulated phone",
    "bench_adb_protocol": "the adb server's protocol without adb",
    "bench_client": "the client",
}
MIB = 1024 * 1024


def load(results, name):
    path = os.path.join(results, name + ".json")
    if not os.path.exists(path):
        return None
    with open(path, encoding="utf-8") as file:
        return json.load(file)


def all_rows(results):
    return {name: rows for name in PROGRAMS if (rows := load(results, name))}


def amount(value, unit):
    """Three significant figures and the unit with a prefix: 1.43 ms, 183 MiB."""
    if unit == "B":
        return f"{value / MIB:.3g} MiB" if value < 1000 * MIB else f"{value / MIB / 1024:.3g} GiB"
    for scale, prefix in ((1, ""), (1e-3, "m"), (1e-6, "µ")):
        if value >= scale:
            return f"{value / scale:.3g} {prefix}s"
    return f"{value / 1e-9:.3g} ns"


def ratio_text(ratio):
    return f"{ratio:.2f}" if ratio >= 0.1 else f"{ratio:.2g}"


def cells(row):
    missed = "" if row["ratio"] <= row["goal"] else " missed"
    return [
        row["name"],
        row["against"],
        amount(row["ours"], row["unit"]),
        amount(row["floor"], row["unit"]),
        ratio_text(row["ratio"]),
        f"{row['goal']:g}{missed}",
    ]


HEADINGS = ["", "against", "ours", "theirs", "ratio", "goal"]


def text_table(rows):
    lines = [HEADINGS] + [cells(row) for row in rows]
    widths = [max(len(line[column]) for line in lines) for column in range(len(HEADINGS))]
    return "\n".join(
        "  ".join(
            cell.ljust(width) if column < 2 else cell.rjust(width)
            for column, (cell, width) in enumerate(zip(line, widths))
        ).rstrip()
        for line in lines
    )


def markdown_table(rows):
    lines = [HEADINGS, ["---", "---", "--:", "--:", "--:", "--:"]] + [cells(row) for row in rows]
    return "\n".join("| " + " | ".join(line) + " |" for line in lines)


def growth_points(results, program, value):
    """{series: [(x, y)]} in the program's own order; of repeated runs, the median."""
    series = {}
    for run in load(results, program)["benchmarks"]:
        if run.get("error_occurred"):
            raise SystemExit(f"{program}: {run['name']}: {run['error_message']}")
        if run.get("aggregate_name") != "median":
            continue
        name, *arguments = run["run_name"].split("/")
        x = run["threads"] if "threads:" in run["run_name"] else int(arguments[0])
        series.setdefault(name, []).append((x, value(run)))
    return series


def seconds(run):
    return run["real_time"] * {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1}[run["time_unit"]]


def picked(series, names):
    return {name: series[name] for name in names}


def count(value):
    return f"{value:,.0f}"


def size(value):
    return amount(value, "B")


def mebibytes(value):
    return f"{value:g} MiB"


def secs(value):
    return amount(value, "s")


Growth = collections.namedtuple("Growth", "listing_times listing_memory threads sizes")


def load_growth(results):
    channel = growth_points(results, "growth_channel", seconds)
    sizes = picked(channel, ["output through the channel", "read into memory already there"])
    sizes.update(growth_points(results, "growth_transfer", seconds))
    return Growth(
        growth_points(results, "growth_listing", seconds),
        growth_points(results, "growth_listing", lambda run: run["peak_bytes"] / MIB),
        picked(channel, ["through the channel", "bare posix_spawn, read, wait"]),
        sizes,
    )


def pictures(growth):
    panel = picture.Panel
    return {
        "listings": [
            panel("Time of a listing", "files", growth.listing_times, x_text=count, y_text=secs, x_base=10),
            panel("Maximum memory", "files", growth.listing_memory, x_text=count, y_text=mebibytes, x_base=10),
        ],
        "commands": [
            panel("Time per short command", "threads", growth.threads, x_text=count, y_text=secs, x_base=2),
            panel("Time of output and files", "size", growth.sizes, x_text=size, y_text=secs, x_base=4),
        ],
    }


def growth_table(series, x_heading, x_text, y_text):
    xs = sorted({x for points in series.values() for x, _ in points})
    lines = [[x_heading] + [x_text(x) for x in xs], ["---"] + ["--:"] * len(xs)]
    for name, points in series.items():
        values = dict(points)
        lines.append([name] + [y_text(values[x]) if x in values else "" for x in xs])
    return "\n".join("| " + " | ".join(line) + " |" for line in lines)


def first_match(path, pattern, otherwise):
    try:
        with open(path, encoding="utf-8") as file:
            match = re.search(pattern, file.read(), re.MULTILINE)
    except OSError:
        return otherwise
    return match.group(1).strip() if match else otherwise


def machine():
    """The kind of machine; never its name."""
    processor = first_match("/proc/cpuinfo", r"^model name\s*:\s*(.*)$", platform.processor() or platform.machine())
    hypervisor = first_match("/proc/cpuinfo", r"^flags.*\b(hypervisor)\b", "")
    memory = os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES") / MIB / 1024
    kind = " (a virtual machine)" if hypervisor else ""
    return (
        f"{os.cpu_count()} processors of {processor}{kind}, {memory:.0f} GiB, "
        f"{platform.system()} {platform.release().split('-')[0]}"
    )


def write(path, text):
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def write_docs(results, docs):
    with open(os.path.join(results, "circumstances"), encoding="utf-8") as file:
        load_before, load_after, niceness = file.read().split()
    growth = load_growth(results)
    for name, panels in pictures(growth).items():
        write(os.path.join(docs, f"performance-{name}.svg"), picture.draw(panels))
    values = {name: markdown_table(rows) for name, rows in all_rows(results).items()}
    values.update(
        date=datetime.date.today().isoformat(),
        machine=machine(),
        load_before=load_before,
        load_after=load_after,
        niceness=niceness,
        listing_times=growth_table(growth.listing_times, "files", count, secs),
        listing_memory=growth_table(growth.listing_memory, "files", count, lambda value: f"{value:.3g} MiB"),
        threads=growth_table(growth.threads, "threads", count, secs),
        sizes=growth_table(growth.sizes, "size", size, secs),
    )
    here = os.path.dirname(os.path.abspath(__file__))
    with open(os.path.join(here, "performance.md.in"), encoding="utf-8") as file:
        write(os.path.join(docs, "performance.md"), string.Template(file.read()).substitute(values))


def main():
    what, results = sys.argv[1:3]
    rows = all_rows(results)
    if what == "json":
        json.dump([row for of_program in rows.values() for row in of_program], sys.stdout, indent=2)
        print()
    elif what == "table":
        for name, of_program in rows.items():
            print(f"{PROGRAMS[name]}\n\n{text_table(of_program)}\n")
    elif what == "docs":
        write_docs(results, sys.argv[3])


main()
