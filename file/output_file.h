// Writing a file so that its reader sees the old contents or the new ones, never a part.
#pragma once

#include <string>
#include <string_view>

#include "file/status.h"

// Bytes that go into an output as they are. `descriptor`, when not -1, is an open file that begins with the same bytes,
// so that the system may copy them; both are borrowed.
struct PDF_OUTPUT_INPUT {
    std::string_view bytes;
    int descriptor;
};

// Writes `input` and `update` one behind the other to a temporary file beside `path`, flushes it to disk and renames it
// to `path`. After a failure the file at `path` is as it was and the temporary one is gone. A link is followed; a
// device or a pipe is written to as it is.
CPDFStatus write_file(const std::string& path, const PDF_OUTPUT_INPUT& input, std::string_view update);
