// Writing a file so that its reader sees the old contents or the new ones, never a part.
#pragma once

#include <memory>
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

// The same for what is written piece by piece. Nothing of it is left unless finish() is reached.
class CPDFOutputFile {
public:
    CPDFOutputFile();
    ~CPDFOutputFile();
    CPDFOutputFile(const CPDFOutputFile&) = delete;
    CPDFOutputFile& operator=(const CPDFOutputFile&) = delete;

    CPDFStatus open(const std::string& path);
    CPDFStatus write(const PDF_OUTPUT_INPUT& input, std::string_view update);
    // Gives the file its name; the last call.
    CPDFStatus finish();

private:
    class PartialName;

    void open_unnamed();
    void open_named();
    void drop();
    bool name_file();
    CPDFStatus failure() const;

    std::string m_path;
    std::string m_target;                    // that the links of m_path lead to
    std::unique_ptr<PartialName> m_partial;  // of the file from its start
    bool m_is_unnamed = false;               // the file has no name yet
    int m_fd = -1;                           // owned
};

// What a killed program left of an output to `path` that is not written again: a whole file takes its place, a part goes.
void finish_left_output(const std::string& path);

// Removes the files under such names. For programs that a signal ends: safe in its handler, and the last call to this file.
void remove_partial_outputs();
