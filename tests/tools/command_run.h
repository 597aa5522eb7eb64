// Runs the built command on small files and hands back what it said.
#pragma once

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/pdf_builder.h"

struct CommandResult {
    int exit;
    std::string out;
    std::string err;
};

// A folder of its own for one test, removed at the end.
class CommandFolder {
public:
    CommandFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "formwork-XXXXXX").string();
        m_path = ::mkdtemp(pattern.data());
    }
    ~CommandFolder() { std::filesystem::remove_all(m_path); }
    CommandFolder(const CommandFolder&) = delete;
    CommandFolder& operator=(const CommandFolder&) = delete;

    std::string path(const std::string& name) const { return (m_path / name).string(); }

    std::string write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(m_path / name, std::ios::binary) << bytes;
        return path(name);
    }

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

    std::filesystem::path m_path;
};

// A PDF file of these objects, numbered from 1; the first is the catalog.
inline std::string pdf_of(const std::vector<std::string>& objects)
{
    PdfBuilder file;
    for (const std::string& object : objects)
        file.object(static_cast<uint32_t>(&object - objects.data()) + 1, object);
    return file.table().text;
}
