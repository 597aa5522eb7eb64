// Runs the built command on small files and hands back what it said.
#pragma once

#include <sys/wait.h>

#include <cstdlib>

#include "tests/support/pdf_builder.h"

struct CommandResult {
    int exit;
    std::string out;
    std::string err;
};

class CommandFolder : public TempFolder {
public:
    // Runs `formwork` with these arguments, each passed as it is.
    CommandResult run(const std::vector<std::string>& arguments) const
    {
        std::string line = quote(FORMWORK_COMMAND);
        for (const std::string& argument : arguments)
            line += " " + quote(argument);
        line += " >" + quote(path(".out")) + " 2>" + quote(path(".err")) + " </dev/null";
        const int status = std::system(line.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read_text_file(path(".out")),
                read_text_file(path(".err"))};
    }

private:
    static std::string quote(const std::string& word)
    {
        std::string quoted = "'";
        for (const char c : word)
            quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
        return quoted + "'";
    }
};

// A PDF file of these objects, numbered from 1; the first is the catalog.
inline std::string pdf_of(const std::vector<std::string>& objects)
{
    PdfBuilder file;
    for (const std::string& object : objects)
        file.object(static_cast<uint32_t>(&object - objects.data()) + 1, object);
    return file.table().text;
}
