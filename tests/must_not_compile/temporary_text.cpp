// A command keeps the pointer of a text until it is executed.
#include <string>

#include "host/dbUtils.h"

std::string name();

void bind(imsdk::dbCommand& command) {
#ifdef MISTAKE
    command.bindParam(1, name());
#else
    const std::string kept = name();
    command.bindParam(1, kept);
    command.bindParam(2, "literal");
    command.bindParam(3, nullptr);
    command.bindParam(4, 0);
    command.bindParam(5, 0LL);
    command.bindParam(6, kept.c_str());
#endif
}
