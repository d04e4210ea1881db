# SPDX-License-Identifier: BSL-1.0
"""The short tables of docs/performance.md, from the figures of a run."""

import re

# The lines of the table of comparisons: label, family, pattern of the works that the line sums up.
BESIDE_OTHERS = [
    ("SDL value read: records", "sdl_read", "read value by value: records, .*"),
    ("SDL value read: strings", "sdl_read", "read value by value: strings, .*"),
    ("SDL value read: numbers", "sdl_read", "read value by value: numbers, .*"),
    ("SDL value read: nested blocks", "sdl_read", "read value by value: nested, .*"),
    ("SDL value read: records under comments", "sdl_read", "read value by value: comments, .*"),
    ("SDL value read from a file: records", "sdl_read", "read value by value from a file: .*"),
    ("SDL value read: texts of unusual shape", "sdl_read", "read an unusual text: .*"),
    ("SDL token", "sdl_read", "lexing alone: .*"),
    ("keyword looked up", "keywords", "keyword look-up, table of .*"),
    ("SDL value written: records", "sdl_write", "write to memory: records, .*"),
    ("SDL value written: strings", "sdl_write", "write to memory: strings, .*"),
    ("SDL value written: numbers", "sdl_write", "write to memory: numbers, .*"),
    ("SDL value written: nested blocks", "sdl_write", "write to memory: nested, .*"),
    ("document to be edited, loaded", "documents", "load to be edited: .*"),
    ("one record in a thousand found by index", "documents", "find one in a thousand .*"),
    ("every record of a document looked at", "documents", "look at every record: .*"),
    ("document loaded, changed and written", "documents", "load, set one value .*"),
    ("typed value written to memory with room", "typed_values", "typed values into a memory stream with room, .*"),
    ("typed value written to a growing stream", "typed_values", "typed values into a growing stream, .*"),
    ("typed value read from memory", "typed_values", "typed values read from memory, .*"),
    ("typed value written to a file", "files", "typed values to a file, .*"),
    ("typed value written to a file, in records of mixed sizes", "files", "records of mixed sizes to a file, .*"),
    ("typed value read from a file", "files", "typed values from a file, .*"),
    ("typed value read from a file, in records of mixed sizes", "files", "records of mixed sizes from a file, .*"),
    ("text of 0 to 40 characters, appended", "texts", "texts of 0 to 40 characters, appended"),
    ("text of 0 to 40 characters, over other data", "texts", "texts of 0 to 40 characters, overwriting .*"),
    ("text of mixed lengths, either way", "texts", "texts of mixed lengths, .*"),
    ("4 KiB read from a file", "files", "bulk Read .*"),
    ("4 KiB written to a file", "files", "bulk Write .*"),
    ("4 KiB of a file copied", "files", "CopyTo .*"),
    ("JSON value converted to SDL: strings", "json", "JSON to SDL, file to file: strings, .*"),
    ("JSON value converted to SDL: numbers", "json", "JSON to SDL, file to file: numbers, .*"),
    ("JSON value converted to SDL: objects", "json", "JSON to SDL, file to file: objects, .*"),
    ("the same with simdjson: strings", "json_simdjson", "JSON to SDL, file to file: strings, .*"),
    ("the same with simdjson: numbers", "json_simdjson", "JSON to SDL, file to file: numbers, .*"),
    ("the same with simdjson: objects", "json_simdjson", "JSON to SDL, file to file: objects, .*"),
    ("file walked over, of 200 or 20,000 files", "services", "walk over [^,]*"),
    ("file and its size, walked over", "services", "walk over .*, each one's size asked"),
    ("file copied, of 200 or 20,000 files", "services", "copy of .*"),
    ("file deleted, of 200 or 20,000 files", "services", "deletion of .*"),
    ("folder purged, of 200 or 20,000 empty ones", "services", "purge of .*"),
]

# The lines of the table of our own ratios: label, family, pattern of the works.
BESIDE_OURSELVES = [
    ("block skipped, beside one read", "sdl_read", "skip a block: .*"),
    ("keyword in a table of 100 or 1000, beside one in a table of 10", "keywords", ".*, cost as the table grows"),
    ("value read from a file of 128 MB, beside one of 16 MB", "memory", "reading a file .*"),
    ("value read from such a text in memory", "memory", "reading a text .*"),
    ("value written to such a file", "memory", "writing a file.*"),
    ("value of such a text written to memory", "memory", "writing to memory.*"),
    ("value converted from such a file", "memory", "converting JSON.*"),
    ("record read with limits, with its place, or to the last byte", "safety", "safety in reading records, .*"),
    ("typed value read with limits, checked, or in a transaction", "safety", "safety in reading typed values .*"),
    ("document of 1 KB saved in one step, beside one written in place", "files", "saving a document of [0-9]* KB"),
    ("document of 1 or 100 MB saved in one step, beside one written in place", "files",
     "saving a document of [0-9]* MB"),
]

# The lines of the table of memory: label, family, pattern of the works.
PEAKS = [
    ("reading SDL from a file", "memory", "reading a file .*"),
    ("writing SDL to a file", "memory", "writing a file.*"),
    ("converting JSON: strings", "json", ".*: strings, .*"),
    ("converting JSON: numbers", "json", ".*: numbers, .*"),
    ("converting JSON: objects", "json", ".*: objects, .*"),
    ("with simdjson: strings", "json_simdjson", ".*: strings, .*"),
    ("with simdjson: numbers", "json_simdjson", ".*: numbers, .*"),
    ("with simdjson: objects", "json_simdjson", ".*: objects, .*"),
]

SHORT_NAMES = [
    ("RapidJSON.* SSE2", "RapidJSON with SSE2"),
    ("RapidJSON.*", "RapidJSON"),
    ("simdjson.*", "simdjson"),
    ("protobuf.*", "protobuf"),
    ("C stdio.*", "C stdio"),
    ("std::stringbuf.*", "std::stringbuf"),
    ("std::unordered_map.*", "std::unordered_map"),
    ("cpprestsdk.* hand-written text", "cpprestsdk, text by hand"),
]


def short(name):
    return next((told for pattern, told in SHORT_NAMES if re.fullmatch(pattern, name)), name)


def ratio(value):
    return f"{value:.2f}" if value >= 0.1 else f"{value:.3f}"


def span(texts):
    """The first and the last of ordered texts, 'first to last'; only one if they are equal."""
    return texts[0] if texts[0] == texts[-1] else f"{texts[0]} to {texts[-1]}"


def judged(rows):
    """The rows' ratios, with their target if a row misses it."""
    ordered = sorted(rows, key=lambda row: row["ratio"])
    text = span([ratio(row["ratio"]) for row in ordered])
    missed = sum(not row["met"] for row in rows)
    if missed == 0:
        return text
    of_all = f" by {missed} of {len(rows)} rows" if len(rows) > 1 else ""
    return f"{text} **(target {ratio(rows[0]['target'])} missed{of_all})**"


def peers_cell(rows):
    names = {}
    for row in rows:
        if row["kind"] == "peer" and row["target"]:
            names.setdefault(short(row["contender"]), []).append(row)
    closest_first = sorted(names.items(), key=lambda item: -max(row["ratio"] for row in item[1]))
    return ", ".join(f"{name} {judged(each)}" for name, each in closest_first)


def limit_cell(rows):
    limits = [row for row in rows if row["kind"] == "limit" and row["target"]]
    return judged(limits) if limits else ""


def ours_cell(rows):
    first = rows[0]["contender"]
    times = sorted(row["ns"] for row in rows if row["contender"] == first)
    return span([f"{time:,.3g}" if time < 1000 else f"{time:,.0f}" for time in times]) + " ns"


def table(head, lines):
    rule = "|".join("---" for _ in head)
    return "\n".join(["| " + " | ".join(head) + " |", f"|{rule}|"] + ["| " + " | ".join(line) + " |" for line in lines])


def beside_others(run):
    lines = []
    for label, family, pattern in BESIDE_OTHERS:
        rows = run.rows(family, pattern)
        lines.append((label, ours_cell(rows), peers_cell(rows), limit_cell(rows)))
    return table(("time for one", "ours", "ours over theirs", "ours over the limit by hand"), lines)


def beside_ourselves(run):
    lines = []
    for label, family, pattern in BESIDE_OURSELVES:
        rows = [row for row in run.rows(family, pattern) if row["kind"] == "ours" and row["target"]]
        lines.append((label, judged(rows), span([ratio(target) for target in sorted({row["target"] for row in rows})])))
    return table(("time for one", "times as long", "allowed"), lines)


def megabytes(value):
    return f"{value / 1e6:,.1f} MB"


def peaks(run):
    lines = []
    for label, family, pattern in PEAKS:
        allowed = [row for row in run.rows(family, pattern) if row["peakAllowed"]]
        row = max(allowed, key=lambda row: row["peakAllowed"])
        missed = "" if row["peakMet"] else " **(missed)**"
        lines.append((f"{label} of {megabytes(row['bytes'])}", megabytes(row["peak"]) + missed,
                      megabytes(row["peakAllowed"])))
    return table(("work", "peak memory", "allowed"), lines)


def summary(run):
    met, every = run.targets()
    first = next(iter(run.families.values()))
    return (f"{met} of {every} targets are met in this run ({first['when']}; {first['processor']}, "
            f"{first['processors']} processors; {first['build']}).\n\n"
            f"{beside_others(run)}\n\n{beside_ourselves(run)}\n\n{peaks(run)}\n")
