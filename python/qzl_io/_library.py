# SPDX-License-Identifier: BSL-1.0
"""The shared library qzl_io_c and its functions."""

from __future__ import annotations

import ctypes
import ctypes.util
import os
import sys
from ctypes import POINTER, c_char_p, c_double, c_int32, c_int64, c_size_t, c_uint32, c_uint64, c_void_p
from pathlib import Path

OK, END, NOT_FOUND, WRONG_KIND, REFUSED, MISTAKE, LIMIT, FILE, BAD_ARGUMENT, NO_MEMORY, UNAVAILABLE, INTERNAL = range(12)

UNLIMITED = 2**64 - 1


class CMistake(ctypes.Structure):
    _fields_ = [
        ("size", c_size_t),
        ("status", c_int32),
        ("is_warning", c_int32),
        ("offset", c_uint64),
        ("line", c_uint32),
        ("column", c_uint32),
        ("source", c_char_p),
        ("message", c_char_p),
        ("expected", c_char_p),
        ("found", c_char_p),
        ("suggestion", c_char_p),
        ("rendered", c_char_p),
    ]


class CLimits(ctypes.Structure):
    _fields_ = [
        ("size", c_size_t),
        ("source_bytes", c_uint64),
        ("token_bytes", c_uint64),
        ("json_depth", c_uint64),
    ]


class CLayout(ctypes.Structure):
    _fields_ = [("size", c_size_t), ("indent", c_int32), ("lf", c_int32)]


class CJsonLosses(ctypes.Structure):
    _fields_ = [
        ("size", c_size_t),
        ("names", c_uint64),
        ("integers", c_uint64),
        ("floats", c_uint64),
        ("booleans", c_uint64),
        ("nulls", c_uint64),
        ("empty_objects", c_uint64),
        ("texts", c_uint64),
        ("first_name", c_char_p),
    ]


class CNode(ctypes.Structure):
    _fields_ = [
        ("size", c_size_t),
        ("kind", c_int32),
        ("line", c_uint32),
        ("column", c_uint32),
        ("reserved", c_uint32),
        ("offset", c_uint64),
        ("values", c_uint64),
        ("blocks", c_uint64),
        ("name", c_char_p),
        ("mark", c_char_p),
        ("text", c_void_p),
        ("text_size", c_size_t),
    ]


class CToken(ctypes.Structure):
    _fields_ = [
        ("size", c_size_t),
        ("kind", c_int32),
        ("reserved", c_int32),
        ("depth", c_uint64),
        ("integer", c_int64),
        ("number", c_double),
        ("text", c_void_p),
        ("text_size", c_size_t),
    ]


_TEXT = (c_char_p, c_size_t)
_GIVEN_TEXT = (POINTER(c_void_p), POINTER(c_size_t))
_AT = (c_void_p, *_TEXT)  # a handle and a path

# The arguments of each function that returns a status.
_STATUS_FUNCTIONS = {
    "document_new": (POINTER(c_void_p),),
    "document_error": (c_void_p, POINTER(CMistake)),
    "document_limit": (c_void_p, POINTER(CLimits)),
    "document_open": (c_void_p, *_TEXT),
    "document_parse": (c_void_p, *_TEXT, *_TEXT),
    "document_open_json": (c_void_p, *_TEXT, POINTER(CJsonLosses)),
    "document_parse_json": (c_void_p, *_TEXT, POINTER(CJsonLosses)),
    "document_save": (c_void_p, *_TEXT),
    "document_text": (c_void_p, *_GIVEN_TEXT),
    "document_format": (c_void_p, POINTER(CLayout), *_GIVEN_TEXT),
    "document_check": (c_void_p, c_void_p, c_size_t, POINTER(c_size_t)),
    "document_mistake": (c_void_p, c_size_t, POINTER(CMistake)),
    "document_count": (*_AT, POINTER(c_size_t)),
    "document_find": (*_AT, c_size_t, POINTER(CNode)),
    "document_get_bool": (*_AT, POINTER(c_int32)),
    "document_get_integer": (*_AT, POINTER(c_int64)),
    "document_get_number": (*_AT, POINTER(c_double)),
    "document_get_string": (*_AT, *_GIVEN_TEXT),
    "document_set_bool": (*_AT, c_int32),
    "document_set_integer": (*_AT, c_int64),
    "document_set_number": (*_AT, c_double),
    "document_set_string": (*_AT, *_TEXT),
    "document_set_word": (*_AT, *_TEXT),
    "document_insert": (*_AT, c_int32, *_TEXT),
    "document_rename": (*_AT, *_TEXT),
    "document_remove": _AT,
    "schema_new": (POINTER(c_void_p),),
    "schema_error": (c_void_p, POINTER(CMistake)),
    "schema_open": (c_void_p, *_TEXT),
    "schema_parse": (c_void_p, *_TEXT, *_TEXT),
    "schema_mistake": (c_void_p, c_size_t, POINTER(CMistake)),
    "reader_new": (POINTER(c_void_p),),
    "reader_error": (c_void_p, POINTER(CMistake)),
    "reader_limit": (c_void_p, POINTER(CLimits)),
    "reader_open": (c_void_p, *_TEXT),
    "reader_parse": (c_void_p, *_TEXT, *_TEXT),
    "reader_next": (c_void_p, POINTER(CToken)),
    "reader_skip_block": (c_void_p,),
    "reader_place": (c_void_p, POINTER(c_uint64), POINTER(c_uint32), POINTER(c_uint32)),
}


def _load() -> ctypes.CDLL:
    named = os.environ.get("QZL_IO_C_LIBRARY")
    if named:
        return ctypes.CDLL(named)
    file = {"win32": "qzl_io_c.dll"}.get(sys.platform, "libqzl_io_c.so.1")
    beside = Path(__file__).with_name(file)
    if beside.exists():
        return ctypes.CDLL(str(beside))
    try:
        return ctypes.CDLL(file)
    except OSError:
        found = ctypes.util.find_library("qzl_io_c")
        if not found:
            raise
        return ctypes.CDLL(found)


def _declared() -> ctypes.CDLL:
    library = _load()
    for name, arguments in _STATUS_FUNCTIONS.items():
        function = getattr(library, "qzl_" + name)
        function.argtypes = arguments
        function.restype = c_int32
    for handle in ("document", "schema", "reader"):
        free = getattr(library, f"qzl_{handle}_free")
        free.argtypes = (c_void_p,)
        free.restype = None
    library.qzl_status_text.argtypes = (c_int32,)
    library.qzl_status_text.restype = c_char_p
    library.qzl_version.argtypes = ()
    library.qzl_version.restype = c_char_p
    return library


library = _declared()
