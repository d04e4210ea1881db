# SPDX-License-Identifier: BSL-1.0
"""The session that docs/other-languages.md shows."""

import doctest
import unittest
from pathlib import Path

PAGE = Path(__file__).parents[2] / "docs" / "other-languages.md"


class Page(unittest.TestCase):
    def test_the_session_is_what_happens(self) -> None:
        if not PAGE.exists():
            self.skipTest("the page is not beside the module")
        session = PAGE.read_text(encoding="utf-8").split("python3\n>>>", 1)[1].split("```", 1)[0]
        test = doctest.DocTestParser().get_doctest(">>>" + session, {}, "session", str(PAGE), 0)
        runner = doctest.DocTestRunner(optionflags=doctest.ELLIPSIS)
        said: "list[str]" = []
        runner.run(test, out=said.append)
        self.assertGreater(runner.tries, 6)
        self.assertEqual(runner.failures, 0, "".join(said))


if __name__ == "__main__":
    unittest.main()
