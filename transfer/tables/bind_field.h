// How record fields become statement parameters, by the type of the field.
#pragma once

#include <string>

#include "host/dbUtils.h"

namespace chattransfer {

/// Binds parameter `index`, counted from 1. The text is not copied: it must outlive the execution.
inline void bindField(imsdk::dbCommand& command, int index, const std::string& text) {
    command.bindParam(index, text);
}
void bindField(imsdk::dbCommand& command, int index, const std::string&& text) = delete;
inline void bindField(imsdk::dbCommand& command, int index, long long number) {
    command.bindParam(index, number);
}
inline void bindField(imsdk::dbCommand& command, int index, int number) {
    command.bindParam(index, number);
}
inline void bindField(imsdk::dbCommand& command, int index, signed char number) {
    command.bindParam(index, int{number});
}

}  // namespace chattransfer
