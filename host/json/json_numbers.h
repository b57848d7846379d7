// Inside of the JSON library's private build: how numbers are read, and how the exact value of a literal stays with its
// value.
//
// A parson number is a double, which holds integers up to 2^53. The literal of a larger one passes through
// chatTransferJsonToDouble while the text is parsed; the very next allocation that parson makes is that number's value,
// and every block that parson gets from us has room for an exact integer in front. So the exact value lives and dies
// with the JSON value itself: no table beside the documents, no order of freeing to respect.
#pragma once

#include <stddef.h>  // NOLINT(modernize-deprecated-headers): also included from C

#ifdef __cplusplus
extern "C" {
#endif

/// strtod with "." as the decimal point in every locale. Remembers the exact value of an integer literal that a double
/// cannot hold for the next allocation on this thread.
double chatTransferJsonToDouble(const char* text, char** end);

/// parson's allocation functions.
void* chatTransferJsonAllocate(size_t size);
void chatTransferJsonRelease(void* block);

/// The library forgets the block of a name with an embedded NUL when it refuses the text. So a parse is bracketed by
/// these two, and a failed one frees every block that it made and did not free itself.
void chatTransferJsonBeginParse(void);
void chatTransferJsonEndParse(int succeeded);

/// What the library's own allocation hook sets: where the blocks come from. Null pointers stand for malloc and free.
void chatTransferJsonSetSource(void* (*allocate)(size_t), void (*release)(void*));

/// 1 and the exact integer when the block of a JSON value carries one, else 0.
int chatTransferJsonExactValue(const void* block, long long* exact);

/// Gives the block of a JSON value its exact integer.
void chatTransferJsonSetExactValue(void* block, long long exact);

/// Gives the block `to` the exact integer of the block `from`, if that has one.
void chatTransferJsonCopyExactValue(const void* from, void* to);

#ifdef __cplusplus
}
#endif
