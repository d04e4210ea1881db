"""The measurements of one run, read from the JSON files of its families."""

import json
import statistics
from pathlib import Path


class Run:
    def __init__(self, files):
        """The families in the order of their files."""
        read = [json.loads(Path(file).read_text()) for file in files]
        self.families = {family["family"]: family for family in read}

    def works(self, family):
        return self.families.get(family, {}).get("works", [])

    def rows(self, family, work):
        """The rows with figures of the work of that name; none if it was not measured."""
        return [row for each in self.works(family) if each["name"] == work for row in each["rows"] if row["ns"]]

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
