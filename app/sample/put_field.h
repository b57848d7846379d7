// Members of the JSON documents that a sample is made of.
#pragma once

#include <new>

#include "transfer/format/json_fields.h"

namespace app {

/// setField(), for documents that have to be whole: std::bad_alloc when there is no memory for the member.
template <class Value>
void putField(JSON_Object* object, const char* key, const Value& value) {
    if (!chattransfer::setField(object, key, value)) throw std::bad_alloc();
}

}  // namespace app
