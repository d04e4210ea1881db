// SPDX-License-Identifier: BSL-1.0
#ifndef QZL_IO_C_H
#define QZL_IO_C_H

// NOLINTBEGIN(modernize-deprecated-headers, modernize-use-using): this is C

#include <stddef.h>
#include <stdint.h>

#include <qzl_io_c/export.h>

// SDL documents for C, and for every language that calls C: reading token by token, finding mistakes, editing, laying
// out, and conversion from JSON. C99 and C++.
//
//     qzl_document* document;
//     double power = 0;
//     if (qzl_document_new(&document) == QZL_OK &&
//         qzl_document_open(document, "scene.sdl", QZL_TERMINATED) == QZL_OK &&
//         qzl_document_get_number(document, "scene/light[1]/power", QZL_TERMINATED, &power) == QZL_OK)
//         printf("%g\n", power);
//     qzl_document_free(document);
//
// Status. Every function that can fail returns a qzl_status. A failure of a call with a handle is also kept in the
// handle, with a message and, if it is about a text, the place: qzl_document_error and its kin tell it until the next
// call with the handle. No exception leaves the library, no function prints or ends the program, and the handlers that
// an application has installed in the C++ library are neither called nor changed.
//
// Texts are bytes with a size: UTF-8, as far as documents of others are. A size of QZL_TERMINATED stands for all before
// the first NUL; a null text of size 0 is the empty text. Names of files are UTF-8 on every system. A text that the
// library returns is followed by a NUL, belongs to the handle, and is good until the next call with that handle; only
// qzl_document_error and its kin, and qzl_document_mistake and its kin, leave texts of other functions good.
//
// Structures begin with their size, which the caller sets to sizeof. Later versions add members at the end. A structure
// that is smaller than in the first version gives QZL_BAD_ARGUMENT; of a larger one, the members that this library does
// not know are set to zero, or where they are read, must be zero.
//
// Threads. A handle is used by one thread at a time; different handles by any threads at the same time. A schema may be
// used by any number of threads at once while none opens or frees it.
//
// Handles are freed by their free functions, which take null, too.

#ifdef __cplusplus
extern "C" {
#endif

// What a call returned: one of the constants below. A function adds none to those that it names, apart from
// QZL_BAD_ARGUMENT, QZL_NO_MEMORY and QZL_INTERNAL, which all may return.
typedef int32_t qzl_status;
enum qzl_status_value {
    QZL_OK = 0,
    QZL_END = 1,          // nothing more is to be read
    QZL_NOT_FOUND = 2,    // nothing is at the path, or no item has the index
    QZL_WRONG_KIND = 3,   // the value is of another kind, or does not fit into the type
    QZL_REFUSED = 4,      // the edit cannot be made; nothing has changed
    QZL_MISTAKE = 5,      // the text, SDL or JSON, has a mistake
    QZL_LIMIT = 6,        // the text exceeds a limit
    QZL_FILE = 7,         // the file could not be opened, read or written
    QZL_BAD_ARGUMENT = 8, // null where something must be, a structure of a wrong size, a path that is none
    QZL_NO_MEMORY = 9,
    QZL_UNAVAILABLE = 10, // this library was built without JSON
    QZL_INTERNAL = 11     // a mistake of the library
};

// The size of a text that ends with a NUL.
#define QZL_TERMINATED SIZE_MAX
// No limit.
#define QZL_UNLIMITED UINT64_MAX

// A sentence for people; never null.
QZL_IO_C_API const char* qzl_status_text(qzl_status status);
// The library's version, as in "1.0.0".
QZL_IO_C_API const char* qzl_version(void);

// --- Structures ---

// Why a call failed, or a mistake in a text. Lines and columns are counted from 1, and 0 if there is no place.
typedef struct qzl_mistake {
    size_t size;         // sizeof(qzl_mistake)
    qzl_status status;   // QZL_OK if there is no failure
    int32_t is_warning;  // 1: readers pass it in silence
    uint64_t offset;     // bytes before the place, a byte-order mark included
    uint32_t line;       // by line feeds
    uint32_t column;     // in characters
    const char* source;  // the name of the text, as a rule a file's; empty if it has none
    const char* message; // one sentence, without the place
    const char* expected;
    const char* found;
    const char* suggestion; // the right word that is nearest to the one found; this and the two before may be empty
    const char* rendered;   // all of this and the line, as compilers show it, in several lines; empty without a place
} qzl_mistake;

// What is accepted of a text; each may be QZL_UNLIMITED.
typedef struct qzl_limits {
    size_t size;           // sizeof(qzl_limits)
    uint64_t source_bytes; // of the text, SDL or JSON
    uint64_t token_bytes;  // of a token in it
    uint64_t json_depth;   // of objects and arrays within each other; 128 at most in any case
} qzl_limits;

// How qzl_document_format lays out.
typedef struct qzl_layout {
    size_t size;    // sizeof(qzl_layout)
    int32_t indent; // blanks for each level, 16 at most; QZL_TAB: a tab
    int32_t lf;     // 0: lines end with CR LF; 1: with LF
} qzl_layout;
#define QZL_TAB (-1)

// What of a JSON document its SDL text does not tell, counted value by value.
typedef struct qzl_json_losses {
    size_t size;            // sizeof(qzl_json_losses)
    uint64_t names;         // of members, which do not read back as one word
    uint64_t integers;      // beyond 32 bits, so another number is written
    uint64_t floats;        // rounded to 32 bits
    uint64_t booleans;      // written as 1 and 0
    uint64_t nulls;         // elements of arrays, written as nothing
    uint64_t empty_objects; // written as empty arrays are
    uint64_t texts;         // cut at a NUL character
    const char* first_name; // the place of the first of the names, as in /items/3/name; empty if there is none
} qzl_json_losses;

// What a part of a document, or a token, is.
enum qzl_kind {
    QZL_KIND_NONE = 0,
    QZL_KIND_DOCUMENT = 1,
    QZL_KIND_BLOCK = 2,       // {; as a part of a document all up to its }
    QZL_KIND_BLOCK_END = 3,   // }; tokens only
    QZL_KIND_NAME = 4,        // the word after a {; tokens only
    QZL_KIND_WORD = 5,        // an identifier
    QZL_KIND_STRING = 6,      // "text"
    QZL_KIND_INTEGER = 7,     // decimal or hexadecimal
    QZL_KIND_FLOAT = 8,       // a number with a fraction or an exponent; as a token also a calculation's result
    QZL_KIND_OPERATOR = 9,    // + - * /
    QZL_KIND_CALCULATION = 10 // arithmetic such as (+ 1 2); parts of documents only
};

// A part of a document.
typedef struct qzl_node {
    size_t size;  // sizeof(qzl_node)
    int32_t kind; // of enum qzl_kind
    uint32_t line;
    uint32_t column;
    uint32_t reserved; // 0
    uint64_t offset;   // where it begins in the text
    uint64_t values;   // of a block or the document: how many of its children are not blocks
    uint64_t blocks;   // and how many are
    const char* name;  // of a block its name, empty if it has none; of a word the word
    const char* mark;  // of a block: "m" for {#m
    const char* text;  // as it stands in the document, with all that is within it; may contain NULs
    size_t text_size;
} qzl_node;

// A token.
typedef struct qzl_token {
    size_t size;      // sizeof(qzl_token)
    int32_t kind;     // of enum qzl_kind
    int32_t reserved; // 0
    uint64_t depth;   // blocks around it; of a block's own { and } likewise
    int64_t integer;  // QZL_KIND_INTEGER
    double number;    // QZL_KIND_INTEGER, QZL_KIND_FLOAT
    const char* text; // of a string its characters with escapes converted, of a block its mark; else as in the source
    size_t text_size;
} qzl_token;

typedef struct qzl_document qzl_document;
typedef struct qzl_schema qzl_schema;
typedef struct qzl_reader qzl_reader;

// --- Documents: SDL texts that people and programs edit. What is not edited stays byte for byte. ---

// An empty document, without limits. After a failure *document is null.
QZL_IO_C_API qzl_status qzl_document_new(qzl_document** document);
QZL_IO_C_API void qzl_document_free(qzl_document* document);

// Why the last call with the document failed, with QZL_OK if it did not.
QZL_IO_C_API qzl_status qzl_document_error(const qzl_document* document, qzl_mistake* error);

// Limits of what is opened and parsed from now on; null: none.
QZL_IO_C_API qzl_status qzl_document_limit(qzl_document* document, const qzl_limits* limits);

// Take the place of the content with that of a file, or with a text, whose name is for places and may be null. Any
// bytes are a document: what is wrong in them is told by qzl_document_check. After QZL_FILE and QZL_LIMIT the document
// is empty.
QZL_IO_C_API qzl_status qzl_document_open(qzl_document* document, const char* name, size_t name_size);
QZL_IO_C_API qzl_status qzl_document_parse(qzl_document* document, const char* text, size_t text_size, const char* name,
                                           size_t name_size);

// Take the place of the content with the SDL text of a JSON document (UTF-8). Losses may be null; its text is good
// until the next call with the document. After a failure the document is as it was. QZL_FILE, QZL_LIMIT, QZL_MISTAKE,
// QZL_UNAVAILABLE.
QZL_IO_C_API qzl_status qzl_document_open_json(qzl_document* document, const char* name, size_t name_size,
                                               qzl_json_losses* losses);
QZL_IO_C_API qzl_status qzl_document_parse_json(qzl_document* document, const char* text, size_t text_size,
                                                qzl_json_losses* losses);

// Saves the text in a file, in one step: after a failure the file is as it was. QZL_FILE.
QZL_IO_C_API qzl_status qzl_document_save(qzl_document* document, const char* name, size_t name_size);
// The text as it is now.
QZL_IO_C_API qzl_status qzl_document_text(qzl_document* document, const char** text, size_t* text_size);
// The text laid out anew, with the same values and comments; null: with tabs and CR LF. The document does not change.
// QZL_MISTAKE if the document has errors; the error is the first one.
QZL_IO_C_API qzl_status qzl_document_format(qzl_document* document, const qzl_layout* layout, const char** text,
                                            size_t* text_size);

// Finds the mistakes in the text, in the order of the places and at most so many, and what breaks the rules of a
// schema, which may be null. Count, which may be null, becomes their number. QZL_OK whatever is found.
QZL_IO_C_API qzl_status qzl_document_check(qzl_document* document, const qzl_schema* schema, size_t most,
                                           size_t* count);
// One of the mistakes that the last qzl_document_check has found, whatever has been called since; its texts are good
// until the next such call, or qzl_document_check, with the document. QZL_NOT_FOUND.
QZL_IO_C_API qzl_status qzl_document_mistake(qzl_document* document, size_t index, qzl_mistake* mistake);

// Paths name parts of a document, as in scene/light[name="sun"]/power:
//
//     path      = step { "/" step }
//     step      = name { filter } | "*" { filter } | number
//     filter    = "[" number "]" | "[" name "=" value "]"
//
// A name is that of blocks, regardless of the case of ASCII letters; in the last step, where no block has the name, it
// stands for a word. "*" is any block. A number is the value with that index in its block, counted from 0. A filter [2]
// takes the third of what the step finds in one block; [name="sun"] takes blocks with a child of that name whose first
// value is that one. The empty path is the document. A text that is no path gives QZL_BAD_ARGUMENT.

// How many parts are at a path; and that with the index, counted from 0. QZL_NOT_FOUND. Questions for one path after
// the other index take the time of one search.
QZL_IO_C_API qzl_status qzl_document_count(qzl_document* document, const char* path, size_t path_size, size_t* count);
QZL_IO_C_API qzl_status qzl_document_find(qzl_document* document, const char* path, size_t path_size, size_t index,
                                          qzl_node* node);

// Read the value at a path; of a block or a word it is the first value that follows. An integer that is not 0 is true.
// A number takes integers, floats and calculations. A string has its escapes converted, and of words it is the word.
// QZL_NOT_FOUND, QZL_WRONG_KIND.
QZL_IO_C_API qzl_status qzl_document_get_bool(qzl_document* document, const char* path, size_t path_size,
                                              int32_t* value);
QZL_IO_C_API qzl_status qzl_document_get_integer(qzl_document* document, const char* path, size_t path_size,
                                                 int64_t* value);
QZL_IO_C_API qzl_status qzl_document_get_number(qzl_document* document, const char* path, size_t path_size,
                                                double* value);
QZL_IO_C_API qzl_status qzl_document_get_string(qzl_document* document, const char* path, size_t path_size,
                                                const char** text, size_t* text_size);

// Set that value, of whatever kind it was; a block without one gets it. A bool becomes 1 or 0, a number the shortest
// text that reads back to the same bits. QZL_NOT_FOUND; QZL_REFUSED, also for a number that is not finite and for a
// word that is no identifier.
QZL_IO_C_API qzl_status qzl_document_set_bool(qzl_document* document, const char* path, size_t path_size,
                                              int32_t value);
QZL_IO_C_API qzl_status qzl_document_set_integer(qzl_document* document, const char* path, size_t path_size,
                                                 int64_t value);
QZL_IO_C_API qzl_status qzl_document_set_number(qzl_document* document, const char* path, size_t path_size,
                                                double value);
QZL_IO_C_API qzl_status qzl_document_set_string(qzl_document* document, const char* path, size_t path_size,
                                                const char* text, size_t text_size);
QZL_IO_C_API qzl_status qzl_document_set_word(qzl_document* document, const char* path, size_t path_size,
                                              const char* word, size_t word_size);

// Where qzl_document_insert inserts.
enum qzl_where {
    QZL_WITHIN = 0, // at the end of the block, or of the document
    QZL_BEFORE = 1,
    QZL_AFTER = 2
};

// Inserts SDL text, of one item or several, at a part. It takes line ends and indentation from what is beside it.
// QZL_NOT_FOUND, QZL_REFUSED, also for text that has a mistake.
QZL_IO_C_API qzl_status qzl_document_insert(qzl_document* document, const char* path, size_t path_size, int32_t where,
                                            const char* text, size_t text_size);
// Gives a block another name. QZL_NOT_FOUND, QZL_REFUSED.
QZL_IO_C_API qzl_status qzl_document_rename(qzl_document* document, const char* path, size_t path_size,
                                            const char* name, size_t name_size);
// Removes a part, with its lines if nothing else is on them. QZL_NOT_FOUND, QZL_REFUSED.
QZL_IO_C_API qzl_status qzl_document_remove(qzl_document* document, const char* path, size_t path_size);

// --- Schemas: what documents of a kind may hold ---

// A schema without rules. After a failure *schema is null.
QZL_IO_C_API qzl_status qzl_schema_new(qzl_schema** schema);
QZL_IO_C_API void qzl_schema_free(qzl_schema* schema);
QZL_IO_C_API qzl_status qzl_schema_error(const qzl_schema* schema, qzl_mistake* error);

// Take the place of the rules with those of a schema, which is an SDL text itself. With QZL_MISTAKE the rules that are
// right apply, and qzl_schema_mistake tells what is wrong. After QZL_FILE there are no rules.
QZL_IO_C_API qzl_status qzl_schema_open(qzl_schema* schema, const char* name, size_t name_size);
QZL_IO_C_API qzl_status qzl_schema_parse(qzl_schema* schema, const char* text, size_t text_size, const char* name,
                                         size_t name_size);
// A mistake in the schema, as of the last opening. QZL_NOT_FOUND after the last one.
QZL_IO_C_API qzl_status qzl_schema_mistake(qzl_schema* schema, size_t index, qzl_mistake* mistake);

// --- Readers: SDL texts token by token ---

// A reader of an empty text. After a failure *reader is null.
QZL_IO_C_API qzl_status qzl_reader_new(qzl_reader** reader);
QZL_IO_C_API void qzl_reader_free(qzl_reader* reader);
QZL_IO_C_API qzl_status qzl_reader_error(const qzl_reader* reader, qzl_mistake* error);
QZL_IO_C_API qzl_status qzl_reader_limit(qzl_reader* reader, const qzl_limits* limits);

// Begin at the beginning of a file, or of a text, which is not needed any more when the call returns. After
// QZL_FILE and QZL_LIMIT the text is empty.
QZL_IO_C_API qzl_status qzl_reader_open(qzl_reader* reader, const char* name, size_t name_size);
QZL_IO_C_API qzl_status qzl_reader_parse(qzl_reader* reader, const char* text, size_t text_size, const char* name,
                                         size_t name_size);

// Reads the next token, without comments and hidden blocks ({##mark); arithmetic such as (+ 1 2) is one float. Included
// files are not read. QZL_END after the last one; QZL_MISTAKE at what begins no token, a } that closes nothing, an end
// within a block or a string, and numbers that do not fit; QZL_LIMIT. After either no more is read, and the call
// returns the same again.
QZL_IO_C_API qzl_status qzl_reader_next(qzl_reader* reader, qzl_token* token);
// Skips the rest of the innermost block with its }; outside all blocks QZL_REFUSED. QZL_MISTAKE if the text ends first.
QZL_IO_C_API qzl_status qzl_reader_skip_block(qzl_reader* reader);
// Where the last token begins. Any of the three may be null.
QZL_IO_C_API qzl_status qzl_reader_place(qzl_reader* reader, uint64_t* offset, uint32_t* line, uint32_t* column);

#ifdef __cplusplus
}
#endif

// NOLINTEND(modernize-deprecated-headers, modernize-use-using)

#endif
