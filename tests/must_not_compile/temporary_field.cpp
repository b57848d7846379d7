// A record's text field is bound by pointer, too.
#include <string>

#include "transfer/tables/bind_field.h"

std::string name();

void bind(imsdk::dbCommand& command) {
#ifdef MISTAKE
    chattransfer::bindField(command, 1, name());
#else
    const std::string kept = name();
    chattransfer::bindField(command, 1, kept);
#endif
}
