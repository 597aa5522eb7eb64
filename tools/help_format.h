// How the help of the command is laid out.
#pragma once

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>

// Breaks what options say into lines, so that help fits a terminal of 80 columns.
class CPDFHelpFormat : public CLI::Formatter {
public:
    std::string make_option_desc(const CLI::Option* option) const override
    {
        constexpr size_t COLUMNS = 80;
        return wrapped(CLI::Formatter::make_option_desc(option), COLUMNS - get_column_width());
    }

    // The line of a verb in the list of all.
    std::string make_subcommand(const CLI::App* verb) const override
    {
        constexpr size_t NAMES = 12;
        std::string line = "  " + verb->get_name();
        line.resize(std::max(NAMES, line.size() + 1), ' ');
        return line + verb->get_description() + "\n";
    }

private:
    static std::string wrapped(std::string text, size_t width)
    {
        for (size_t line = 0; text.size() - line > width;) {
            const size_t space = text.rfind(' ', line + width);
            const size_t end = text.find('\n', line);
            if (end != std::string::npos && end <= line + width) {
                line = end + 1;
                continue;
            }
            if (space == std::string::npos || space <= line)
                break;
            text[space] = '\n';
            line = space + 1;
        }
        return text;
    }
};
