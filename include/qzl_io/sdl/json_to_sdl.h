#pragma once

#include <qzl_io/export.h>
#include <qzl_io/file_name.h>

// Converts the JSON document in the file `input` (UTF-8, a leading byte-order mark is skipped) to an SDL text in the
// file `output`. Members keep the document's order, repeated names included:
//
// - a member becomes a block headed by its name, written bare whatever characters it holds;
// - an object or array that is an element of an array becomes a block without a name;
// - elements stand one per line; true and false are 1 and 0, null is nothing;
// - an integer from -2147483648 to 4294967295 is written as a 32-bit integer (from 2147483648 on as the negative
//   number with the same bits); another one within 64 bits gives 0 and the warning "Json number not parsed
//   correctly.";
// - a number with a fraction or an exponent, or an integer beyond 64 bits, is narrowed to a float; one beyond the
//   floats gives 0 and the warning of eSDLWriter;
// - names and strings end at their first NUL character.
//
// The context of a warning about a value names the input and the place in it, as in /items/3/name.
//
// Returns true when the whole text stands in `output`. Otherwise makes one warning, whose message is the failure's
// own and whose context names the file, and returns false. A previous `output` stays as it was unless the failure is
// that the disk does not take the new one: it is opened when the whole text is ready.
//
// Conversions may run in several threads at once; they take turns while parsing.
QZL_IO_API bool JsonToSdl(const eFileName& input, const eFileName& output);
