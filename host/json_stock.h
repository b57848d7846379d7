// Inside of the JSON library's private build: the stock functions that ours are built on.
#pragma once

#include "host/json.h"

extern "C" JSON_Value* chat_transfer_stock_value_deep_copy(const JSON_Value* value);
