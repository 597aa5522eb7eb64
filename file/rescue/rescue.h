// Files too damaged to be read are written anew by qpdf.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "file/file_bytes.h"
#include "file/status.h"

// Makes `out`, which is new, a clean copy of the damaged file: a sound cross-reference section, the objects that can be
// reached from the trailer, their streams as they were. An encrypted file stays so; the empty password or `password` opens it. qpdf
// works in a process of its own with bounds on its time and memory, which grow with the file. The status of a failure
// is DAMAGED, ENCRYPTED where the password is wrong, or IO where there is no room for the copy; its text, the end of a sentence,
// says why the file can't be repaired. Any thread may call; the program's child processes are left alone.
CPDFStatus rescue_file(const uint8_t* data, size_t size, const std::string& password, CPDFFileBytes& out);
