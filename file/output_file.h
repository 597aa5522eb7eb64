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

// Writes `input` and `update` one behind the other to a file without a name, flushes it to disk and gives it the name
// `path`. After a failure the file at `path` is as it was and nothing else is left. For a moment, where there is a file to
// replace, the new one is called `path` with ".formwork-new" behind it, and on file systems without unnamed files from the
// start with ".formwork-part"; the next output to `path` takes away what a killed program left under that name. A link is followed; a device
// or a pipe is written to as it is.
CPDFStatus write_file(const std::string& path, const PDF_OUTPUT_INPUT& input, std::string_view update);

// Removes the files under such names. For programs that a signal ends: safe in its handler, and the last call to this file.
void remove_partial_outputs();
