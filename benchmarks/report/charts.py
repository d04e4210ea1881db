# SPDX-License-Identifier: BSL-1.0
"""The charts of a run, as SVG texts: the same run gives the same bytes.

Colours are of medium brightness on no background, so that they show on a light page and on a dark one.
"""

import io
import re

import matplotlib
from matplotlib.figure import Figure
from matplotlib.ticker import FixedLocator, FuncFormatter, NullFormatter, NullLocator

from run import quartiles

INK = "#7a7f87"
OURS = {"color": "#2f81f7", "marker": "o", "markersize": 11, "zorder": 2.5}
LIMIT = {"color": "#8a8f98", "marker": "|", "markersize": 13, "markeredgewidth": 2.5, "zorder": 3}
FIRST = {"color": "#d9730d", "marker": "s", "markersize": 7, "zorder": 3}
FIRST_TOO = {**FIRST, "markerfacecolor": "none", "markeredgewidth": 1.6}
SECOND = {"color": "#2ea043", "marker": "^", "markersize": 8, "zorder": 3}
THIRD = {"color": "#a371f7", "marker": "D", "markersize": 6.5, "zorder": 3}
FOURTH = {"color": "#d6336c", "marker": "v", "markersize": 8, "zorder": 3}

STYLE = {
    "svg.fonttype": "none",
    "svg.hashsalt": "qzl_io",
    "font.family": "sans-serif",
    "font.sans-serif": ["DejaVu Sans"],
    "font.size": 11,
    "text.color": INK,
    "axes.labelcolor": INK,
    "axes.edgecolor": INK,
    "axes.titlesize": 12.5,
    "axes.titleweight": "bold",
    "axes.spines.top": False,
    "axes.spines.right": False,
    "xtick.color": INK,
    "ytick.color": INK,
    "grid.color": INK,
    "grid.alpha": 0.3,
    "legend.frameon": False,
    "savefig.transparent": True,
}

ROUND = [step * decade for decade in (0.01, 0.1, 1, 10, 100, 1000, 10000) for step in (1, 2, 5)]

# The lines of the charts: label, family, work.
READING = [
    ("records, 1 MB", "sdl_read", "read value by value: records, 1 MB"),
    ("records, 16 MB", "sdl_read", "read value by value: records, 16 MB"),
    ("records, a file of 16 MB", "sdl_read", "read value by value from a file: records, 16 MB"),
    ("strings, 1 MB", "sdl_read", "read value by value: strings, 1 MB"),
    ("numbers, 1 MB", "sdl_read", "read value by value: numbers, 1 MB"),
    ("nested blocks, 1 MB", "sdl_read", "read value by value: nested, 1 MB"),
    ("comments, 1 MB", "sdl_read", "read value by value: comments, 1 MB"),
]
WRITING = [
    ("SDL records, 1 MB", "sdl_write", "write to memory: records, 1 MB"),
    ("SDL records, 16 MB", "sdl_write", "write to memory: records, 16 MB"),
    ("JSON to SDL: strings, 8 MB", "json", "JSON to SDL, file to file: strings, 8 MB"),
    ("JSON to SDL: numbers, 8 MB", "json", "JSON to SDL, file to file: numbers, 8 MB"),
    ("JSON to SDL: objects, 8 MB", "json", "JSON to SDL, file to file: objects, 8 MB"),
]
TYPED = [
    ("into memory with room", "typed_values", "typed values into a memory stream with room, 16 MB"),
    ("into a growing stream", "typed_values", "typed values into a growing stream, 16 MB"),
    ("from memory", "typed_values", "typed values read from memory, 16 MB"),
    ("to a file", "files", "typed values to a file, 16 MB"),
    ("from a file", "files", "typed values from a file, 16 MB"),
]


def plain(value, _=None):
    return f"{value:g}"


def draw_dots(axes, run, lines, series):
    """A line for each work, and on it a dot for each contender at its time; a bar spans the middle half of its
    repetitions. `series` has the legend, the style and a pattern of the contenders' names. Returns the times."""
    times = []
    for place, (_, family, work) in enumerate(lines):
        axes.axhline(place, color=INK, alpha=0.18, linewidth=1, zorder=1)
        for row in run.rows(family, work):
            for _, style, pattern in series:
                if re.fullmatch(pattern, row["contender"]):
                    times += quartiles(row)
                    axes.plot(quartiles(row), [place, place], color=style["color"], linewidth=1.5, zorder=2)
                    axes.plot(row["ns"], place, linestyle="none", **style)
            if row["kind"] == "ours":
                axes.annotate(f"{row['ns']:.3g}", (row["ns"], place), (0, 7), textcoords="offset points",
                              ha="center", color=OURS["color"], fontsize=10, fontweight="bold")
    axes.set_yticks(range(len(lines)), [label for label, _, _ in lines])
    axes.set_ylim(len(lines) - 0.5, -0.7)
    axes.tick_params(axis="y", length=0)
    axes.spines["left"].set_visible(False)
    for legend, style, _ in series:
        axes.plot([], [], linestyle="none", label=legend, **style)
    return times


def log_axis(axis, ticks):
    axis.set_major_locator(FixedLocator(ticks))
    axis.set_minor_locator(NullLocator())
    axis.set_major_formatter(FuncFormatter(lambda value, _: f"{value:g}"))
    axis.set_minor_formatter(NullFormatter())


def round_ticks(times):
    """Round numbers from below the least of the times to above the greatest."""
    first = max(tick for tick in ROUND if tick <= min(times))
    last = min(tick for tick in ROUND if tick >= max(times))
    return [tick for tick in ROUND if first <= tick <= last]


def dot_chart(run, title, lines, series, columns=3):
    height = 0.45 * len(lines)
    figure = Figure(figsize=(9, height + 1.7), layout="constrained")
    axes = figure.add_subplot()
    axes.set_xscale("log")
    ticks = round_ticks(draw_dots(axes, run, lines, series) or [1, 10])  # a filter may leave no row
    log_axis(axes.xaxis, ticks)
    axes.set_xlim(ticks[0], ticks[-1])
    axes.grid(axis="x")
    axes.set_xlabel("nanoseconds for one value, logarithmic; left is faster")
    axes.set_title(title, loc="left")
    axes.legend(loc="upper center", bbox_to_anchor=(0.5, -0.55 / height), ncols=columns)
    return figure


def reading(run):
    series = [
        ("qzl_io", OURS, "eSDLReader.*"),
        ("RapidJSON", FIRST, "RapidJSON SAX, copying handler|RapidJSON SAX, FileReadStream .*"),
        ("toml++", SECOND, r"toml\+\+"),
        ("by hand: a bare tokenizer", LIMIT, "(one read and a )?bare switch tokenizer"),
        ("RapidJSON with SSE2", FIRST_TOO, ".*, built with SSE2"),
        ("libconfig++", THIRD, r"libconfig\+\+"),
        ("simdjson On-Demand", FOURTH, "simdjson On-Demand"),
    ]
    return dot_chart(run, "Reading a document value by value", READING, series)


def writing(run):
    series = [
        ("qzl_io", OURS, "eSDLWriter|JsonToSdl"),
        ("by hand: text appended", LIMIT, "appending by hand .*"),
        ("RapidJSON", FIRST, "RapidJSON Writer .*"),
        ("cpprestsdk and text by hand", SECOND, ".* and hand-written text"),
        ("cpprestsdk's parsing alone", THIRD, ".* parse alone"),
    ]
    return dot_chart(run, "Writing SDL, and converting JSON to it", WRITING, series, columns=2)


def typed(run):
    series = [
        ("qzl_io", OURS, "e(Memory|File)Stream .*"),
        ("by hand: memcpy", LIMIT, "memcpy .*|a growing vector by hand"),
        ("protobuf's coded streams", FIRST, "protobuf .*"),
        ("std::stringbuf", SECOND, "std::stringbuf.*"),
    ]
    return dot_chart(run, "Typed values on streams, 16 MB", TYPED, series, columns=4)


def growth(run):
    figure = Figure(figsize=(9, 4.2), layout="constrained")
    over_size, over_length = figure.subplots(1, 2)
    draw_growth_over_size(over_size, run)
    draw_texts(over_length, run)
    return figure


def draw_growth_over_size(axes, run):
    works = [
        ("reading", OURS, "memory", "reading a file value by value, 9 values a record"),
        ("writing", FIRST, "memory", "writing a file, with its records generated meanwhile"),
        ("converting JSON", SECOND, "memory", "converting JSON, file to file"),
    ]
    sizes = set()
    for legend, style, family, work in works:
        rows = run.rows(family, work)
        base = rows[0]["ns"]
        rows = sorted(rows, key=lambda row: row["size"])
        sizes.update(row["size"] for row in rows)
        axes.plot([row["size"] for row in rows], [row["ns"] / base for row in rows], label=legend, **style)
        for row in rows:
            low, high = quartiles(row)
            axes.plot([row["size"]] * 2, [low / base, high / base], color=style["color"])
    axes.axhline(1.15, color=INK, linestyle="--", linewidth=1.2, label="allowed: 1.15")
    axes.set_xscale("log")
    log_axis(axes.xaxis, sorted(sizes))
    axes.set_ylim(bottom=0)
    axes.grid(axis="y")
    axes.set_xlabel("size of the document in MB, logarithmic")
    axes.set_ylabel("time for one value, 16 MB = 1")
    axes.set_title("Cost over the size of a document", loc="left")
    axes.legend(loc="lower right")


def draw_texts(axes, run):
    appended = "texts of 0 to 40 characters, appended"
    overwriting = "texts of 0 to 40 characters, overwriting among the data"
    lines = [
        ("std::string appended", OURS, "-", appended, "std::string"),
        ("std::string overwriting", OURS, "--", overwriting, "std::string"),
        ("const char* appended", SECOND, "-", appended, "const char*"),
        ("const char* overwriting", SECOND, "--", overwriting, "const char*"),
        ("by hand: memcpy", LIMIT, "-", appended, "memcpy by hand"),
    ]
    for legend, style, dash, work, contender in lines:
        rows = [row for row in run.rows("texts", work) if row["contender"] == contender]
        axes.plot([row["size"] for row in rows], [row["ns"] for row in rows], dash, color=style["color"], label=legend)
    axes.set_ylim(bottom=0)
    axes.set_xlim(0, 40)
    axes.grid(axis="y")
    axes.set_xlabel("characters of the text")
    axes.set_ylabel("nanoseconds for one text")
    axes.set_title("Cost of a text over its length", loc="left")
    axes.legend(loc="best", fontsize=9.5)


# Each chart with the families that it shows.
CHARTS = {
    "reading": (reading, {"sdl_read"}),
    "writing": (writing, {"sdl_write", "json"}),
    "typed-values": (typed, {"typed_values", "files"}),
    "growth": (growth, {"memory", "texts"}),
}


def svg(figure):
    """The figure as a text. Its title describes it to readers who cannot see it."""
    title = "; ".join(axes.get_title(loc="left") for axes in figure.axes)
    out = io.StringIO()
    figure.savefig(out, format="svg", metadata={"Date": None, "Creator": None, "Title": title})
    text = re.sub(r"[ \t]+$", "", out.getvalue(), flags=re.MULTILINE)
    return text[text.index("<svg"):]


def draw_all(run):
    """The charts by their names, without those of families that were not measured."""
    with matplotlib.rc_context(STYLE):
        return {name: svg(draw(run)) for name, (draw, families) in CHARTS.items() if families <= set(run.families)}
