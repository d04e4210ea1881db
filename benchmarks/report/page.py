# SPDX-License-Identifier: BSL-1.0
"""A run as one self-contained HTML page."""

import html

STYLE = """
:root { color-scheme: light dark; --line: #8886; --met: #2ea043; --missed: #e5534b; }
body { font: 15px/1.5 system-ui, "DejaVu Sans", sans-serif; max-width: 72rem; margin: 2rem auto; padding: 0 1rem; }
h1, h2, h3 { line-height: 1.2; } h2 { margin-top: 3rem; border-bottom: 1px solid var(--line); }
.charts svg { max-width: 100%; height: auto; margin: 1rem 0; }
.wide { overflow-x: auto; }
table { border-collapse: collapse; font-variant-numeric: tabular-nums; }
th, td { padding: .2rem .7rem; border-bottom: 1px solid var(--line); text-align: right; white-space: nowrap; }
th:first-child, td:first-child { text-align: left; }
.ours { font-weight: 600; }
.met { color: var(--met); } .missed { background: var(--missed); color: #fff; font-weight: 600; }
dt { float: left; clear: left; width: 8rem; opacity: .7; } dd { margin-left: 8.5rem; }
"""


def element(name, content, style=""):
    kind = f' class="{style}"' if style else ""
    return f"<{name}{kind}>{content}</{name}>"


def cell(text, style=""):
    return element("td", html.escape(text), style)


def number(value, digits):
    return "" if value is None else f"{value:,.{digits}f}"


def verdict(is_met):
    return {None: "", True: "met", False: "missed"}[is_met]


def memory(value):
    if value is None:
        return ""
    return f"{value / 1e6:,.1f} MB" if value >= 1e7 else f"{value / 1e3:,.0f} KB"


def name_of(work, row):
    size = f", {row['size']:g} {work['axis']}" if work["axis"] else ""
    return row["contender"] + size


def plain_line(work, row):
    if row["failure"]:
        failure = f'<td class="missed" colspan="7">{html.escape(row["failure"])}</td>'
        return element("tr", cell(name_of(work, row)) + failure)
    rate = row["bytes"] / row["values"] / row["ns"] * 1e3 if row["bytes"] else None
    peak = memory(row["peak"]) + (f" of {memory(row['peakAllowed'])}" if row["peakAllowed"] else "")
    return element("tr", cell(name_of(work, row), row["kind"]) + cell(number(row["ns"], 2)) + cell(number(rate, 0)) +
                   cell(peak) + cell(verdict(row["peakMet"]), verdict(row["peakMet"])) + cell(number(row["ratio"], 3)) +
                   cell(number(row["target"], 2)) + cell(verdict(row["met"]), verdict(row["met"])))


def plain_table(work):
    head = ["contender", f"ns per {work['unit']}", "MB/s", "peak memory", "", "ours / theirs", "target", ""]
    return element("table", element("tr", "".join(element("th", each) for each in head)) +
                   "".join(plain_line(work, row) for row in work["rows"]))


def table_over_sizes(work, sizes):
    """A line for each contender with its times over the sizes, and a line with our ratio to each limit or peer."""
    lines = [element("tr", element("th", html.escape(work["axis"])) + "".join(element("th", f"{s:g}") for s in sizes))]
    contenders = dict.fromkeys(row["contender"] for row in work["rows"])
    for contender in contenders:
        rows = [row for row in work["rows"] if row["contender"] == contender]
        lines.append(element("tr", cell(contender, rows[0]["kind"]) +
                             "".join(cell(row["failure"] or number(row["ns"], 2)) for row in rows)))
        if any(row["met"] is not None for row in rows):
            told = f"ours / {contender}, target {number(rows[0]['target'], 2)}"
            lines.append(element("tr", cell(told) +
                                 "".join(cell(number(row["ratio"], 2), verdict(row["met"])) for row in rows)))
    return element("p", f"ns per {work['unit']}") + element("table", "".join(lines))


def work_section(work):
    sizes = sorted({row["size"] for row in work["rows"]} - {None})
    is_wide = len(sizes) > 0 and len(work["rows"]) > len(sizes)
    table = table_over_sizes(work, sizes) if is_wide else plain_table(work)
    return element("h3", html.escape(work["name"])) + element("div", table, "wide")


def family_section(family):
    missing = family["missingPeers"]
    notes = f"{family['when']}; files in {family['folder']}" + (f"; not installed: {missing}" if missing else "")
    if not family["isOptimised"]:
        notes += "; NOT AN OPTIMISED BUILD"
    return (element("h2", html.escape(family["family"])) + element("p", html.escape(notes)) +
            "".join(work_section(work) for work in family["works"]))


def missed_of(rows):
    """The targets that the rows of one contender of a work miss; empty if they meet all."""
    failed = [row for row in rows if row["failure"]]
    slow = [row for row in rows if row["met"] is False]
    large = [row for row in rows if row["peakMet"] is False]
    told = []
    if failed:
        told.append(failed[0]["failure"])
    if slow:
        share = f"{len(slow)} of {len(rows)} sizes, at worst " if len(rows) > 1 else ""
        told.append(f"{share}{max(row['ratio'] for row in slow):.3f}, target {slow[0]['target']:.2f}")
    if large:
        told.append(f"needs {memory(large[-1]['peak'])}, allowed {memory(large[-1]['peakAllowed'])}")
    return "; ".join(told)


def missed_list(run):
    items = []
    for name in run.families:
        for work in run.works(name):
            for contender in dict.fromkeys(row["contender"] for row in work["rows"]):
                told = missed_of([row for row in work["rows"] if row["contender"] == contender])
                if told:
                    items.append(element("li", html.escape(f"{work['name']} / {contender}: {told}")))
    return element("ul", "".join(items)) if items else element("p", "none")


def chart_section(charts):
    if not charts:
        return ""
    return element("h2", "Charts") + element("div", "".join(element("div", each) for each in charts.values()), "charts")


def page(run, charts, commit):
    first = next(iter(run.families.values()))
    met, every = run.targets()
    facts = [("begun", first["when"]), ("machine", f"{first['processor']}, {first['processors']} processors"),
             ("build", first["build"]), ("commit", commit), ("targets", f"{met} of {every} met")]
    head = element("dl", "".join(element("dt", name) + element("dd", html.escape(value)) for name, value in facts))
    return ("<!DOCTYPE html>\n" + '<html lang="en"><head><meta charset="utf-8"><title>qzl_io: speed</title>' +
            '<meta name="viewport" content="width=device-width">' + element("style", STYLE) + "</head><body>" +
            element("h1", "qzl_io: speed") + head + chart_section(charts) +
            element("h2", "Targets missed") + missed_list(run) +
            "".join(family_section(family) for family in run.families.values()) + "</body></html>\n")
