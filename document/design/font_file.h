// A font file as a font of the form.
#pragma once

#include <string>

#include "document/edit/edit.h"

// Whether `name` is meant as a path: it has a '/', or the ending of a font file.
bool is_font_path(const std::string& name);

// Why the file can't be a font of the form, the end of a sentence that begins with the path; empty when it can.
std::string wrong_font_file(const std::string& path);

// Embeds the characters of WinAnsiEncoding of the font, unless the form has it so already, and makes `resource` its name in
// "DR". The form dictionary is an object of its own. Fails for a file that can't be, and when memory runs out.
CPDFStatus embed_font(EDIT_TARGET& target, const std::string& path, std::string& resource);
