#include <algorithm>
#include <array>

#include "document/document.h"
#include "document/lookup/field_text.h"
#include "document/lookup/value_text.h"
#include "forms/field_kind.h"
#include "forms/field_walk.h"
#include "tools/list/list_internal.h"
#include "tools/terminal_text.h"
#include "tools/verb.h"

namespace {

enum LIST_COLUMN { COLUMN_KIND, COLUMN_NAME, COLUMN_VALUE, COLUMN_SHOWN, COLUMN_FLAGS, COLUMN_COUNT };

using LIST_ROW = std::array<std::string, COLUMN_COUNT>;
using LIST_WIDTHS = std::array<int, COLUMN_COUNT>;

constexpr int GAP = 2;
constexpr int LEAST_WIDTH = 8;

// Where nothing is cut, columns are padded to no more than this, so that one long value does not widen every line.
constexpr int MOST_PADDING = 60;

std::string flag_words(const CPDFField& field, const PDF_FIELD_KIND& kind)
{
    std::string words;
    for (const PDF_FIELD_FLAG_WORD& at : field_flag_words()) {
        if (!(field.m_flags & at.flag) || !at.has_kind(kind))
            continue;
        if (!words.empty())
            words += ' ';
        words += at.word;
    }
    return words;
}

LIST_ROW row_of(CPDFDocument& document, CPDFField& field, CPDFNumberedNames& names)
{
    const PDF_FIELD_KIND& kind = field_kind(field);
    return {kind.name, printable(names.name_of(field)), printable(value_text(*field.m_xref, field.m_value).joined()),
            printable(document.shown_text(field).value_or("")), flag_words(field, kind)};
}

void widen(LIST_WIDTHS& widths, const LIST_ROW& row, int limit)
{
    for (size_t i = 0; i < COLUMN_COUNT; ++i)
        widths[i] = std::max(widths[i], std::min(columns_of(row[i]), limit));
}

// A column without a width is left out.
int total_width(const LIST_WIDTHS& widths)
{
    int total = -GAP;
    for (const int width : widths)
        total += width > 0 ? width + GAP : 0;
    return total;
}

// Takes from the widest column until the row fits `total`.
void narrow(LIST_WIDTHS& widths, int total)
{
    for (int left = total_width(widths) - total; left > 0; --left) {
        int& widest = *std::max_element(widths.begin() + COLUMN_NAME, widths.end());
        if (widest <= LEAST_WIDTH)
            return;
        --widest;
    }
}

// The start of a long name is what it shares with others, so that is cut.
void cut(LIST_ROW& row, const LIST_WIDTHS& widths)
{
    row[COLUMN_NAME] = cut_start(row[COLUMN_NAME], widths[COLUMN_NAME]);
    row[COLUMN_VALUE] = cut_end(row[COLUMN_VALUE], widths[COLUMN_VALUE]);
    row[COLUMN_SHOWN] = cut_end(row[COLUMN_SHOWN], widths[COLUMN_SHOWN]);
    row[COLUMN_FLAGS] = cut_end(row[COLUMN_FLAGS], widths[COLUMN_FLAGS]);
}

void put_row(const LIST_ROW& row, const LIST_WIDTHS& widths)
{
    std::string line;
    for (size_t i = 0; i < COLUMN_COUNT; ++i) {
        if (widths[i] == 0)
            continue;
        line += row[i];
        const int padding = std::max(widths[i] - columns_of(row[i]), 0) + GAP;
        line.append(static_cast<size_t>(padding), ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    put(line += '\n');
}

}  // namespace

// Two passes, so that the memory does not grow with the form.
void put_list_table(CPDFDocument& document, LIST_WHAT what)
{
    const int terminal = terminal_columns();
    CPDFNumberedNames names(document.form());
    const auto for_each_row = [&](auto&& use) {
        for_each_field(document.form(), [&](CPDFField& field) {
            if (is_listed(field, what))
                use(row_of(document, field, names));
        });
    };
    const LIST_ROW heading = {"KIND", "NAME", "VALUE", "SHOWN", "FLAGS"};
    LIST_WIDTHS widths{};
    widen(widths, heading, LEAST_WIDTH);
    bool formatted = false;
    for_each_row([&](const LIST_ROW& row) {
        widen(widths, row, terminal ? terminal : MOST_PADDING);
        formatted = formatted || !row[COLUMN_SHOWN].empty();
    });
    if (!formatted)
        widths[COLUMN_SHOWN] = 0;
    if (terminal)
        narrow(widths, terminal);
    put_row(heading, widths);
    for_each_row([&](LIST_ROW row) {
        if (terminal)
            cut(row, widths);
        put_row(row, widths);
    });
}
