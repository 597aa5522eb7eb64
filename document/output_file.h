// Writing a file so that its reader sees the old contents or the new ones, never a part.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "document/status.h"

// Writes the pieces one behind the other to a temporary file beside `path`, flushes it to disk and renames it to `path`.
// After a failure the file at `path` is as it was and the temporary one is gone.
CPDFStatus write_file(const std::string& path, const std::vector<std::string_view>& pieces);
