// Text for terminals: made harmless, measured in columns, cut to fit. UTF-8 in and out.
#pragma once

#include <string>
#include <string_view>

// `text` on one line: control characters, line breaks and what changes the writing direction become escapes (\n, \x1b,
// \u202e), so that text from a file can't drive the terminal. Malformed bytes become U+FFFD.
std::string printable(std::string_view text);

// The same, but line feeds and tabs stay.
std::string printable_lines(std::string_view text);

// Columns that `text`, printable, takes on a terminal: 2 for a wide character, 0 for a combining one.
int columns_of(std::string_view text);

// Printable text cut to at most `columns`, at least 1, with an ellipsis for what is left out at its end or its start.
std::string cut_end(std::string_view text, int columns);
std::string cut_start(std::string_view text, int columns);
// The same in the middle: names differ at their ends.
std::string cut_middle(std::string_view text, int columns);

// Columns of the terminal on standard output, 0 when that is no terminal.
int terminal_columns();
