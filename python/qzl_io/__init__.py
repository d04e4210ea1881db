# SPDX-License-Identifier: BSL-1.0
"""SDL documents: reading, checking, editing, laying out, and conversion from JSON.

    import qzl_io

    document = qzl_io.Document.open("scene.sdl")
    for mistake in document.check():
        print(mistake.rendered, end="")
    document.set("scene/light[0]/power", 2.5)
    document.save("scene.sdl")

The work is done by the shared library qzl_io_c, which is looked for by the environment variable QZL_IO_C_LIBRARY,
beside this module, and where the system looks for libraries. An object is used by one thread at a time; a schema by any
number of them.
"""

from __future__ import annotations

import ctypes
import enum
import os
from dataclasses import dataclass
from typing import Any, Dict, Iterator, List, Optional, Tuple, Type, TypeVar, Union

from . import _library as _c
from ._library import library as _functions

__all__ = [
    "Document",
    "Error",
    "FileError",
    "JsonLosses",
    "Kind",
    "LimitError",
    "Limits",
    "Mistake",
    "MistakeError",
    "Node",
    "NotFoundError",
    "Reader",
    "RefusedError",
    "Schema",
    "Token",
    "UnavailableError",
    "Where",
    "WrongKindError",
    "version",
]

Value = Union[bool, int, float, str]
FileName = Union[str, "os.PathLike[str]"]


def version() -> str:
    """The version of the library."""
    return _text(_functions.qzl_version())


class Kind(enum.IntEnum):
    """What a part of a document, or a token, is."""

    NONE = 0
    DOCUMENT = 1
    BLOCK = 2
    BLOCK_END = 3
    NAME = 4
    WORD = 5
    STRING = 6
    INTEGER = 7
    FLOAT = 8
    OPERATOR = 9
    CALCULATION = 10


class Where(enum.IntEnum):
    """Where Document.insert inserts."""

    WITHIN = 0
    BEFORE = 1
    AFTER = 2


@dataclass(frozen=True)
class Mistake:
    """What is wrong, and where. Lines and columns are counted from 1, and 0 if there is no place."""

    message: str
    source: str = ""
    line: int = 0
    column: int = 0
    offset: int = 0
    is_warning: bool = False
    expected: str = ""
    found: str = ""
    suggestion: str = ""
    rendered: str = ""


@dataclass(frozen=True)
class Node:
    """A part of a document: how it was when it was found."""

    kind: Kind
    name: str
    mark: str
    text: str
    offset: int
    line: int
    column: int
    values: int
    blocks: int


@dataclass(frozen=True)
class Token:
    """A token. The value is an int, a float or a text: of a block its mark."""

    kind: Kind
    value: Union[int, float, str]
    depth: int


@dataclass(frozen=True)
class JsonLosses:
    """What of a JSON document its SDL text does not tell, counted value by value."""

    names: int
    integers: int
    floats: int
    booleans: int
    nulls: int
    empty_objects: int
    texts: int
    first_name: str


@dataclass(frozen=True)
class Limits:
    """What is accepted of a text; None: anything."""

    source_bytes: Optional[int] = None
    token_bytes: Optional[int] = None
    json_depth: Optional[int] = None


class Error(Exception):
    """A call that failed. The mistake tells what, and where if it is about a text."""

    def __init__(self, mistake: Mistake) -> None:
        super().__init__(mistake.rendered.rstrip("\n") or mistake.message)
        self.mistake = mistake


class NotFoundError(Error, LookupError):
    """Nothing is at the path."""


class WrongKindError(Error, TypeError):
    """The value is of another kind, or does not fit."""


class RefusedError(Error, ValueError):
    """The edit cannot be made; nothing has changed."""


class MistakeError(Error, ValueError):
    """The text has a mistake."""


class LimitError(Error, ValueError):
    """The text exceeds a limit."""


class FileError(Error, OSError):
    """The file could not be opened, read or written."""


class UnavailableError(Error, NotImplementedError):
    """The library was built without JSON."""


class _ArgumentError(Error, ValueError):
    pass


_ERRORS: Dict[int, Type[Error]] = {
    _c.NOT_FOUND: NotFoundError,
    _c.WRONG_KIND: WrongKindError,
    _c.REFUSED: RefusedError,
    _c.MISTAKE: MistakeError,
    _c.LIMIT: LimitError,
    _c.FILE: FileError,
    _c.BAD_ARGUMENT: _ArgumentError,
    _c.UNAVAILABLE: UnavailableError,
}


def _text(given: Optional[bytes]) -> str:
    return (given or b"").decode("utf-8", "surrogateescape")


def _text_at(address: Optional[int], size: int) -> str:
    return _text(ctypes.string_at(address, size)) if address else ""


def _bytes(text: str) -> bytes:
    return text.encode("utf-8", "surrogateescape")


def _passed(text: str) -> Tuple[bytes, int]:
    encoded = _bytes(text)
    return encoded, len(encoded)


def _passed_name(name: FileName) -> Tuple[bytes, int]:
    return _passed(os.fspath(name))


_T = TypeVar("_T", bound=ctypes.Structure)


def _sized(structure: Type[_T]) -> _T:
    return structure(ctypes.sizeof(structure))


def _mistake(told: _c.CMistake) -> Mistake:
    return Mistake(
        message=_text(told.message),
        source=_text(told.source),
        line=told.line,
        column=told.column,
        offset=told.offset,
        is_warning=bool(told.is_warning),
        expected=_text(told.expected),
        found=_text(told.found),
        suggestion=_text(told.suggestion),
        rendered=_text(told.rendered),
    )


def _limits(limits: Optional[Limits]) -> Any:
    if limits is None:
        return None
    values = (limits.source_bytes, limits.token_bytes, limits.json_depth)
    known = (_c.UNLIMITED if value is None else value for value in values)
    return ctypes.byref(_c.CLimits(ctypes.sizeof(_c.CLimits), *known))


class _Handle:
    """Owns a handle of the library, and raises what its calls return."""

    _kind = ""

    def __init__(self) -> None:
        self._handle = ctypes.c_void_p()
        status = getattr(_functions, f"qzl_{self._kind}_new")(ctypes.byref(self._handle))
        if status == _c.NO_MEMORY:
            raise MemoryError(_text(_functions.qzl_status_text(status)))
        if status != _c.OK:
            raise Error(Mistake(_text(_functions.qzl_status_text(status))))

    def __del__(self) -> None:
        handle = getattr(self, "_handle", None)
        if handle:
            getattr(_functions, f"qzl_{self._kind}_free")(handle)
            handle.value = None

    def _call(self, function: str, *arguments: Any) -> None:
        status = self._status(function, *arguments)
        if status != _c.OK:
            self._fail(status)

    def _status(self, function: str, *arguments: Any) -> int:
        result: int = getattr(_functions, f"qzl_{self._kind}_{function}")(self._handle, *arguments)
        return result

    def _fail(self, status: int) -> None:
        if status == _c.NO_MEMORY:
            raise MemoryError(_text(_functions.qzl_status_text(status)))
        told = _sized(_c.CMistake)
        getattr(_functions, f"qzl_{self._kind}_error")(self._handle, ctypes.byref(told))
        raise _ERRORS.get(status, Error)(_mistake(told))

    def _given_text(self, function: str, *arguments: Any) -> str:
        address, size = ctypes.c_void_p(), ctypes.c_size_t()
        self._call(function, *arguments, ctypes.byref(address), ctypes.byref(size))
        return _text_at(address.value, size.value)


class Schema(_Handle):
    """What documents of a kind may hold. With mistakes in it the schema raises MistakeError."""

    _kind = "schema"

    @classmethod
    def open(cls, name: FileName) -> "Schema":
        schema = cls()
        schema._call("open", *_passed_name(name))
        return schema

    @classmethod
    def parse(cls, text: str, name: str = "") -> "Schema":
        schema = cls()
        schema._call("parse", *_passed(text), *_passed(name))
        return schema


class Document(_Handle):
    """An SDL text that people and programs edit. What is not edited stays byte for byte.

    Paths name parts, as in scene/light[name="sun"]/power; the empty path is the document. Bytes that are not UTF-8 are
    in texts as with the error handler surrogateescape.
    """

    _kind = "document"

    def __init__(self, text: str = "", name: str = "", limits: Optional[Limits] = None) -> None:
        super().__init__()
        self._call("limit", _limits(limits))
        self._call("parse", *_passed(text), *_passed(name))

    @classmethod
    def open(cls, name: FileName, limits: Optional[Limits] = None) -> "Document":
        document = cls(limits=limits)
        document._call("open", *_passed_name(name))
        return document

    @classmethod
    def from_json(cls, text: str, limits: Optional[Limits] = None) -> Tuple["Document", JsonLosses]:
        return cls._of_json("parse_json", _passed(text), limits)

    @classmethod
    def open_json(cls, name: FileName, limits: Optional[Limits] = None) -> Tuple["Document", JsonLosses]:
        return cls._of_json("open_json", _passed_name(name), limits)

    @classmethod
    def _of_json(cls, call: str, argument: Tuple[bytes, int], limits: Optional[Limits]) -> Tuple["Document", JsonLosses]:
        document = cls(limits=limits)
        losses = _sized(_c.CJsonLosses)
        document._call(call, *argument, ctypes.byref(losses))
        counts = {field[0]: getattr(losses, field[0]) for field in losses._fields_[1:-1]}
        return document, JsonLosses(**counts, first_name=_text(losses.first_name))

    def save(self, name: FileName) -> None:
        """Saves in one step: after a failure the file is as it was."""
        self._call("save", *_passed_name(name))

    def __str__(self) -> str:
        return self._given_text("text")

    def format(self, indent: Optional[int] = None, lf: bool = False) -> str:
        """The text laid out anew, by default with tabs and CR LF. A document with errors raises MistakeError."""
        layout = _c.CLayout(ctypes.sizeof(_c.CLayout), -1 if indent is None else indent, int(lf))
        return self._given_text("format", ctypes.byref(layout))

    def check(self, schema: Optional[Schema] = None, most: Optional[int] = None) -> List[Mistake]:
        """All that is wrong, in the order of the places."""
        count = ctypes.c_size_t()
        limit = ctypes.c_size_t(-1).value if most is None else most
        self._call("check", schema._handle if schema else None, limit, ctypes.byref(count))
        told = _sized(_c.CMistake)
        mistakes = []
        for index in range(count.value):
            self._call("mistake", index, ctypes.byref(told))
            mistakes.append(_mistake(told))
        return mistakes

    def count(self, path: str) -> int:
        count = ctypes.c_size_t()
        self._call("count", *_passed(path), ctypes.byref(count))
        return count.value

    def find(self, path: str, index: int = 0) -> Node:
        """What is at the path, or the part with the index of what is."""
        told = _sized(_c.CNode)
        self._call("find", *_passed(path), index, ctypes.byref(told))
        return Node(
            kind=Kind(told.kind),
            name=_text(told.name),
            mark=_text(told.mark),
            text=_text_at(told.text, told.text_size),
            offset=told.offset,
            line=told.line,
            column=told.column,
            values=told.values,
            blocks=told.blocks,
        )

    def find_all(self, path: str) -> List[Node]:
        return [self.find(path, index) for index in range(self.count(path))]

    def get_bool(self, path: str) -> bool:
        value = ctypes.c_int32()
        self._call("get_bool", *_passed(path), ctypes.byref(value))
        return bool(value.value)

    def get_int(self, path: str) -> int:
        value = ctypes.c_int64()
        self._call("get_integer", *_passed(path), ctypes.byref(value))
        return value.value

    def get_float(self, path: str) -> float:
        value = ctypes.c_double()
        self._call("get_number", *_passed(path), ctypes.byref(value))
        return value.value

    def get_str(self, path: str) -> str:
        return self._given_text("get_string", *_passed(path))

    def set(self, path: str, value: Value) -> None:
        """Sets the value at the path, of whatever kind it was; a block without one gets it."""
        if isinstance(value, bool):
            self._call("set_bool", *_passed(path), value)
        elif isinstance(value, int):
            if not -(2**63) <= value < 2**63:
                raise OverflowError("the integer has more than 64 bits")
            self._call("set_integer", *_passed(path), value)
        elif isinstance(value, float):
            self._call("set_number", *_passed(path), value)
        else:
            self._call("set_string", *_passed(path), *_passed(value))

    def set_word(self, path: str, word: str) -> None:
        self._call("set_word", *_passed(path), *_passed(word))

    def insert(self, path: str, source: str, where: Where = Where.WITHIN) -> None:
        """Inserts SDL text at a part."""
        self._call("insert", *_passed(path), where, *_passed(source))

    def rename(self, path: str, name: str) -> None:
        self._call("rename", *_passed(path), *_passed(name))

    def remove(self, path: str) -> None:
        self._call("remove", *_passed(path))


class Reader(_Handle):
    """Reads an SDL text token by token, without comments and hidden blocks: for token in Reader(text)."""

    _kind = "reader"

    def __init__(self, text: str = "", name: str = "", limits: Optional[Limits] = None) -> None:
        super().__init__()
        self._call("limit", _limits(limits))
        self._call("parse", *_passed(text), *_passed(name))

    @classmethod
    def open(cls, name: FileName, limits: Optional[Limits] = None) -> "Reader":
        reader = cls(limits=limits)
        reader._call("open", *_passed_name(name))
        return reader

    def __iter__(self) -> Iterator[Token]:
        return self

    def __next__(self) -> Token:
        told = _sized(_c.CToken)
        status = self._status("next", ctypes.byref(told))
        if status == _c.END:
            raise StopIteration
        if status != _c.OK:
            self._fail(status)
        kind = Kind(told.kind)
        value: Union[int, float, str]
        if kind is Kind.INTEGER:
            value = told.integer
        elif kind is Kind.FLOAT:
            value = told.number
        else:
            value = _text_at(told.text, told.text_size)
        return Token(kind, value, told.depth)

    def skip_block(self) -> None:
        """Skips the rest of the innermost block."""
        self._call("skip_block")

    def place(self) -> Tuple[int, int, int]:
        """Offset, line and column of the last token."""
        offset, line, column = ctypes.c_uint64(), ctypes.c_uint32(), ctypes.c_uint32()
        self._call("place", ctypes.byref(offset), ctypes.byref(line), ctypes.byref(column))
        return offset.value, line.value, column.value
