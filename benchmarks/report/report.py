# SPDX-License-Identifier: BSL-1.0
"""Makes the report of a run: report.py --html FILE [--docs FOLDER] [--commit TEXT] JSON-FILE..."""

import argparse
import re
import sys
from pathlib import Path

sys.dont_write_bytecode = True  # writes nothing next to the sources

from charts import draw_all
from page import page
from run import Run
from summary import summary


def replace_figures(file, text):
    """Replaces the text between the two marks of the document."""
    old = file.read_text()
    marks = r"(<!-- figures: .*?-->\n).*?(<!-- end of figures -->)"
    if not re.search(marks, old, re.DOTALL):
        sys.exit(f"{file} has no marks for the figures")
    file.write_text(re.sub(marks, lambda found: f"{found[1]}\n{text}\n{found[2]}", old, flags=re.DOTALL))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--html", type=Path, required=True, help="the page to write")
    parser.add_argument("--docs", type=Path, help="the folder of performance.md, whose figures and charts are renewed")
    parser.add_argument("--commit", default="unknown", help="what was measured")
    parser.add_argument("files", nargs="+", help="what each family's program wrote with --json")
    given = parser.parse_args()

    run = Run(given.files, is_whole=given.docs is not None)
    charts = draw_all(run)
    given.html.write_text(page(run, charts, given.commit))
    if given.docs:
        for name, text in charts.items():
            (given.docs / "charts" / f"{name}.svg").write_text(text)
        replace_figures(given.docs / "performance.md", summary(run))


main()
