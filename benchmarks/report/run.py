# SPDX-License-Identifier: BSL-1.0
"""The measurements of one run, read from the JSON files of its families."""

import json
import re
import statistics
import sys
from pathlib import Path


class Run:
    def __init__(self, files, is_whole):
        """The families in the order of their files. A whole run has figures for whatever is asked of it."""
        self.is_whole = is_whole
        read = [json.loads(Path(file).read_text()) for file in files]
        self.families = {family["family"]: family for family in read}

    def works(self, family):
        return self.families.get(family, {}).get("works", [])

    def rows(self, family, pattern):
        """The rows with figures of the works whose names match; none if they were not measured."""
        works = [work for work in self.works(family) if re.fullmatch(pattern, work["name"])]
        rows = [row for work in works for row in work["rows"] if row["ns"]]
        if not rows and self.is_whole:
            sys.exit(f"the run has no figures for '{pattern}' of {family}")
        return rows

    def all_rows(self):
        return [row for family in self.families for work in self.works(family) for row in work["rows"]]

    def targets(self):
        """The number of targets met, and the number of targets."""
        verdicts = [row[key] for row in self.all_rows() for key in ("met", "peakMet") if row[key] is not None]
        return sum(verdicts), len(verdicts)


def quartiles(row):
    """The times between which the middle half of a row's repetitions is."""
    if len(row["repetitions"]) < 2:
        return row["ns"], row["ns"]
    low, _, high = statistics.quantiles(row["repetitions"], n=4, method="inclusive")
    return low, high
