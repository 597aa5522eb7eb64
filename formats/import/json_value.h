// A JSON text as a value: for what is small, unlike data.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string_view>

#include "file/status.h"

// The refusal says where the text is malformed.
CPDFStatus parse_json(std::string_view text, nlohmann::json& out);
