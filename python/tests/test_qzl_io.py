# SPDX-License-Identifier: BSL-1.0
"""Tests of the module qzl_io."""

import ctypes
import json
import os
import re
import tempfile
import threading
import unittest
from pathlib import Path

import qzl_io
from qzl_io import Kind, Limits, Where, _library

SCENE = """{scene ; made by hand
  {light "sun" 1.5}
  {light "lamp" {power 2} {sum (+ 1 2)}}
  mode = fast
}
"""

HEADER = Path(__file__).parents[2] / "include" / "qzl_io_c.h"


def has_json() -> bool:
    try:
        qzl_io.Document.from_json("{}")
    except qzl_io.UnavailableError:
        return False
    return True


class Documents(unittest.TestCase):
    def test_every_byte_comes_back(self) -> None:
        for text in ("", SCENE, "{a\r\n", "caf\u00e9 \U0001f600", "a\0b", "\udcff"):
            with self.subTest(text):
                self.assertEqual(str(qzl_io.Document(text)), text)

    def test_values_are_read_and_set(self) -> None:
        document = qzl_io.Document(SCENE)
        self.assertEqual(document.get_str("scene/light"), "sun")
        self.assertEqual(document.get_float("scene/light/1"), 1.5)
        self.assertEqual(document.get_int("scene/light[1]/power"), 2)
        self.assertEqual(document.get_float("scene/light[1]/sum"), 3.0)
        self.assertEqual(document.get_str("scene/mode"), "fast")
        self.assertIs(document.get_bool("scene/light[1]/power"), True)
        for value, text in ((True, "1"), (-(2**63), str(-(2**63))), (0.1, "0.1"), ('a"\n', '"a\\"\\n"')):
            with self.subTest(value):
                document.set("scene/light[1]/power", value)
                self.assertEqual(document.find("scene/light[1]/power").text, "{power " + text + "}")
        document.set_word("scene/mode", "slow")
        self.assertIn("; made by hand", str(document))
        self.assertIn("mode = slow", str(document))

    def test_parts_are_found(self) -> None:
        document = qzl_io.Document(SCENE)
        self.assertEqual([node.line for node in document.find_all("scene/light")], [2, 3])
        lamp = document.find("scene/light", 1)
        self.assertEqual((lamp.kind, lamp.name, lamp.column, lamp.values, lamp.blocks), (Kind.BLOCK, "light", 3, 1, 2))
        self.assertEqual(document.find("").kind, Kind.DOCUMENT)
        self.assertEqual(document.count("scene/nothing"), 0)

    def test_edits_leave_all_else(self) -> None:
        document = qzl_io.Document("{a ; one\n\t{b 1}\n}")
        document.insert("a", "{c 2}")
        document.insert("a/c", "{d}", Where.BEFORE)
        document.rename("a/b", "e")
        document.remove("a/c")
        self.assertEqual(str(document), "{a ; one\n\t{e 1}\n\t{d}\n}")

    def test_failures_are_exceptions_of_their_kind(self) -> None:
        document = qzl_io.Document(SCENE)
        table = (
            (qzl_io.NotFoundError, LookupError, lambda: document.get_int("scene/none")),
            (qzl_io.WrongKindError, TypeError, lambda: document.get_int("scene/light")),
            (qzl_io.RefusedError, ValueError, lambda: document.insert("scene", "{")),
            (qzl_io.RefusedError, ValueError, lambda: document.set("scene/mode", float("nan"))),
            (qzl_io.FileError, OSError, lambda: qzl_io.Document.open("no/such/file.sdl")),
            (qzl_io.LimitError, ValueError, lambda: qzl_io.Document("123", limits=Limits(source_bytes=2))),
            (qzl_io.MistakeError, ValueError, lambda: qzl_io.Document("$", "x.sdl").format()),
            (qzl_io.Error, ValueError, lambda: document.get_int("a//b")),
            (OverflowError, OverflowError, lambda: document.set("scene/mode", 2**63)),
        )
        for own, general, call in table:
            with self.subTest(own.__name__):
                with self.assertRaises(own) as raised:
                    call()
                self.assertIsInstance(raised.exception, general)
                self.assertGreater(len(str(raised.exception)), 5)
        self.assertEqual(str(document), SCENE)

    def test_mistakes_have_places(self) -> None:
        mistakes = qzl_io.Document('{a\n "b\n $\n)', "a.sdl").check()
        self.assertEqual([(m.line, m.column, m.is_warning) for m in mistakes],
                         [(2, 2, False), (3, 2, False), (4, 1, True), (4, 2, False)])
        self.assertEqual(mistakes[1].found, "'$'")
        self.assertTrue(mistakes[1].rendered.startswith("a.sdl:3:2: error: "))
        self.assertEqual(len(qzl_io.Document("$ 1 $").check(most=1)), 1)

    def test_format(self) -> None:
        document = qzl_io.Document("{a\n{b 1}}")
        self.assertEqual(document.format(), "{a\r\n\t{b 1}}\r\n")
        self.assertEqual(document.format(indent=2, lf=True), "{a\n  {b 1}}\n")

    def test_files(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            name = Path(folder) / "sz\u00e9ne \u2600.sdl"
            qzl_io.Document(SCENE).save(name)
            self.assertEqual(name.read_bytes(), SCENE.encode())
            self.assertEqual(str(qzl_io.Document.open(name)), SCENE)
            self.assertEqual(len(list(qzl_io.Reader.open(name))), 22)

    def test_schemas(self) -> None:
        schema = qzl_io.Schema.parse("{schema {block light {count 0 many} {value float {range 0 10}}}}")
        mistakes = qzl_io.Document("{light 1} {light 11} {lihgt 1}").check(schema)
        self.assertEqual([m.column for m in mistakes], [18, 23])
        self.assertEqual(mistakes[1].suggestion, "light")
        with self.assertRaises(qzl_io.MistakeError) as raised:
            qzl_io.Schema.parse("{schema {blokc}}", "rules.sdls")
        self.assertEqual(raised.exception.mistake.source, "rules.sdls")

    @unittest.skipUnless(has_json(), "the library was built without JSON")
    def test_json(self) -> None:
        values = {"name": "x", "ports": [80, 443], "deep": {"on": True, "none": None}}
        document, losses = qzl_io.Document.from_json(json.dumps(values))
        self.assertEqual(document.get_str("name"), "x")
        self.assertEqual(document.get_int("ports/1"), 443)
        self.assertEqual((losses.booleans, losses.names), (1, 0))
        with self.assertRaises(qzl_io.MistakeError):
            qzl_io.Document.from_json('{"a": }')
        with self.assertRaises(qzl_io.LimitError):
            qzl_io.Document.from_json("[[[1]]]", Limits(json_depth=2))


class Readers(unittest.TestCase):
    def test_tokens(self) -> None:
        tokens = [(t.kind, t.value, t.depth) for t in qzl_io.Reader('{#m a = -5 "b\\n" w ; c\n (+ 1 2) * }')]
        self.assertEqual(tokens, [
            (Kind.BLOCK, "m", 0), (Kind.NAME, "a", 1), (Kind.INTEGER, -5, 1), (Kind.STRING, "b\n", 1),
            (Kind.WORD, "w", 1), (Kind.FLOAT, 3.0, 1), (Kind.OPERATOR, "*", 1), (Kind.BLOCK_END, "", 0),
        ])

    def test_blocks_are_skipped_and_places_told(self) -> None:
        reader = qzl_io.Reader("{a {b 1} 2}\n3")
        self.assertEqual(next(reader).kind, Kind.BLOCK)
        reader.skip_block()
        self.assertEqual(next(reader).value, 3)
        self.assertEqual(reader.place(), (12, 2, 1))
        self.assertEqual(list(reader), [])
        with self.assertRaises(qzl_io.RefusedError):
            reader.skip_block()

    def test_a_mistake_ends_the_reading(self) -> None:
        reader = qzl_io.Reader("1\n}", "x.sdl")
        next(reader)
        for _ in range(2):
            with self.assertRaises(qzl_io.MistakeError) as raised:
                next(reader)
            self.assertEqual((raised.exception.mistake.line, raised.exception.mistake.source), (2, "x.sdl"))


class Library(unittest.TestCase):
    def test_version(self) -> None:
        self.assertRegex(qzl_io.version(), r"^\d+\.\d+\.\d+$")

    def test_the_header_declares_what_is_called(self) -> None:
        if not HEADER.exists():
            self.skipTest("the header is not beside the module")
        declared = set(re.findall(r"^QZL_IO_C_API .*?qzl_(\w+)\(", HEADER.read_text(encoding="utf-8"), re.MULTILINE))
        others = {"status_text", "version", "document_free", "schema_free", "reader_free"}
        self.assertEqual(declared, set(_library._STATUS_FUNCTIONS) | others)

    def test_the_header_declares_the_same_structures(self) -> None:
        if not HEADER.exists():
            self.skipTest("the header is not beside the module")
        types = {
            "size_t": ctypes.c_size_t, "qzl_status": ctypes.c_int32, "int32_t": ctypes.c_int32,
            "uint32_t": ctypes.c_uint32, "int64_t": ctypes.c_int64, "uint64_t": ctypes.c_uint64,
            "double": ctypes.c_double,
        }
        structures = {
            "qzl_mistake": _library.CMistake, "qzl_limits": _library.CLimits, "qzl_layout": _library.CLayout,
            "qzl_json_losses": _library.CJsonLosses, "qzl_node": _library.CNode, "qzl_token": _library.CToken,
        }
        text = HEADER.read_text(encoding="utf-8")
        found = dict(re.findall(r"^typedef struct (\w+) \{\n(.*?)^\}", text, re.MULTILINE | re.DOTALL))
        self.assertEqual(set(found), set(structures))
        for name, body in found.items():
            members = re.findall(r"^ +(const char\*|\w+) (\w+);", body, re.MULTILINE)
            ours = structures[name]._fields_
            self.assertEqual([member for _, member in members], [field[0] for field in ours], name)
            for (declared, member), field in zip(members, ours):
                expected = types.get(declared)
                if expected is None:
                    self.assertIn(field[1], (ctypes.c_char_p, ctypes.c_void_p), member)
                else:
                    self.assertIs(field[1], expected, member)

    def test_threads_have_objects_of_their_own(self) -> None:
        schema = qzl_io.Schema.parse("{schema {block a {value int}}}")
        found = []

        def work(number: int) -> None:
            for _ in range(20):
                document = qzl_io.Document("{a %d} {b} $" % number)
                found.append((document.get_int("a") == number, len(document.check(schema))))

        threads = [threading.Thread(target=work, args=(number,)) for number in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(found, [(True, 2)] * 80)


if __name__ == "__main__":
    unittest.main()
