// The JSON library: everything of parson's API under its own names, and two exact 64-bit accessors.
//
// What differs from stock parson, and why:
//  - Every integer of up to 19 digits that fits 64 bits is kept exactly beside the double (message ids do not fit one).
//  - The locale of the process changes nothing: numbers are read and written with ".".
//  - Integral numbers are written without exponent and without fraction, whatever their size.
//  - json_parse_file takes regular files only: a FIFO, a socket or a directory gives null at once instead of blocking.
//  - json_serialize_to_file writes beside the target, flushes and renames: the file is whole or not there, and
//    readable by its owner only.
//
// The library is compiled privately: the names below are mapped to names of this component, so a program that also uses
// a parson of its own links both without a clash. Values must not be handed from one to the other. Include this header
// instead of parson.h, never after it.
//
// Threads: a value, with all that is in it, belongs to one thread at a time; values of other roots may be used on other
// threads. Process-wide are the library's settings (json_set_...): a program sets them before its second thread begins.
#pragma once

#if defined(parson_parson_h) && !defined(CHAT_TRANSFER_JSON_NAMES_H)
#error \
    "include host/json.h instead of parson.h, not after it: the JSON functions of this component have names of their own"
#endif

#include "host/json_names.h"  // generated: maps each json_... function to its private name

#include <chat_transfer/parson.h>  // the installed library header

extern "C" {

/// The member `name` as a signed 64-bit integer, exactly as its literal stood in the parsed text. 0 when the member is
/// missing or not a number. A number with a fraction is truncated toward zero; one outside 64 bits becomes the nearest
/// limit.
long long json_object_get_int64(const JSON_Object* object, const char* name);

/// The element at `index` (from 0), by the same rules.
long long json_array_get_int64(const JSON_Array* array, size_t index);

/// json_parse_file() for files of a stranger's folder: a symbolic link under the name `filename` is not followed but
/// gives null.
JSON_Value* json_parse_file_no_link(const char* filename);
}
