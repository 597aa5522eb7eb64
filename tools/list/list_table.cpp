#include <algorithm>
#include <array>
#include <cstring>
#include <unordered_set>
#include <vector>

#include "core/limits.h"
#include "document/document.h"
#include "document/lookup/field_notes.h"
#include "document/lookup/field_text.h"
#include "document/lookup/held_value.h"
#include "document/lookup/page_map.h"
#include "forms/field_kind.h"
#include "forms/field_walk.h"
#include "tools/list/field_words.h"
#include "tools/list/list_internal.h"
#include "tools/terminal_text.h"
#include "tools/verb.h"

namespace {

enum LIST_COLUMN {
    COLUMN_NUMBER,
    COLUMN_KIND,
    COLUMN_PAGE,
    COLUMN_NAME,
    COLUMN_VALUE,
    COLUMN_SHOWN,
    COLUMN_FLAGS,
    COLUMN_COUNT
};

using LIST_ROW = std::array<std::string, COLUMN_COUNT>;
using LIST_WIDTHS = std::array<int, COLUMN_COUNT>;

constexpr int GAP = 2;
constexpr int LEAST_WIDTH = 8;
constexpr int USUAL_WIDTH = 80;  // where there is no terminal

// Of values that many fields may share only so many bytes are shown: `inherited` counts them.
std::string shown_value(const CPDFField& field, size_t& inherited)
{
    const CPDFField* holder = value_holder(field);
    if (!holder || (holder != &field && inherited > LIMIT_LISTED_OPTIONS))
        return {};
    std::string value = own_value(*holder).joined();
    inherited += holder != &field ? value.size() : 0;
    return value;
}

// The first page that lists a widget of the field, its own dictionary or one below it without a name; 0 where none does.
int32_t page_of_field(const CPDFField& field, const CPDFPageMap& pages)
{
    int32_t page = pages.page_of_annotation(field.m_ref.num);
    for (int32_t i = 0; i < field.m_widget_cnt && !page; ++i)
        page = pages.page_of_annotation(field.m_widgets[i].num);
    for (int32_t i = 0; i < field.m_kid_cnt && !page; ++i) {
        if (field.m_kids[i] && field.m_kids[i]->m_name.len <= 0)
            page = page_of_field(*field.m_kids[i], pages);
    }
    return page;
}

// Calls `use(field, row)` for each field and value; nothing in a row is cut. Returns how many fields have the name of one
// before them.
template <typename Use>
size_t for_each_row(CPDFDocument& document, PDF_LISTED what, const Use& use)
{
    CPDFNumberedNames names(document.form());
    size_t inherited = 0;
    size_t listed = 0;
    std::unordered_set<size_t> hashes;  // of full names
    size_t number = 0;                  // as CPDFDocument::find_field counts
    const CPDFPageMap& pages = document.pages();
    for_each_field(document.form(), [&](CPDFField& field) {
        const bool has_name = field.m_name.len > 0;
        number += has_name;
        if (!is_listed(field, what))
            return;
        const int32_t page = page_of_field(field, pages);
        std::string name = names.name_of(field);
        hashes.insert(std::hash<std::string>()(name));
        ++listed;
        use(field, LIST_ROW{has_name ? std::to_string(number) : "", field_kind(field).name,
                            page ? std::to_string(page) : "", std::move(name), shown_value(field, inherited),
                            document.shown_text(field).value_or(""), flag_words(field)});
    });
    return listed - hashes.size();
}

void widen(LIST_WIDTHS& widths, const LIST_ROW& row)
{
    for (size_t i = 0; i < COLUMN_COUNT; ++i)
        widths[i] = std::max(widths[i], columns_of(row[i]));
}

// A column without a width is left out.
int total_width(const LIST_WIDTHS& widths)
{
    int total = -GAP;
    for (const int width : widths)
        total += width > 0 ? width + GAP : 0;
    return total;
}

// Leaves flags out where there is no room for them, then takes from the widest column until the row fits `total`.
void narrow(LIST_WIDTHS& widths, int total)
{
    if (total_width(widths) > total)
        widths[COLUMN_FLAGS] = 0;
    for (int left = total_width(widths) - total; left > 0; --left) {
        int& widest = *std::max_element(widths.begin() + COLUMN_NAME, widths.begin() + COLUMN_FLAGS);
        if (widest <= LEAST_WIDTH)
            return;
        --widest;
    }
}

void cut(LIST_ROW& row, const LIST_WIDTHS& widths)
{
    for (size_t i = COLUMN_NAME; i < COLUMN_COUNT; ++i) {
        if (widths[i] > 0)
            row[i] = i == COLUMN_NAME ? cut_middle(row[i], widths[i]) : cut_end(row[i], widths[i]);
    }
}

void put_row(const LIST_ROW& row, const LIST_WIDTHS& widths)
{
    std::string out;
    for (size_t i = 0; i < COLUMN_COUNT; ++i) {
        if (widths[i] == 0)
            continue;
        out += row[i];
        const int padding = std::max(widths[i] - columns_of(row[i]), 0) + GAP;
        out.append(static_cast<size_t>(padding), ' ');
    }
    out.erase(out.find_last_not_of(' ') + 1);
    put(out += '\n');
}

// Rows of printable cells in one text: a string for each cell would take more memory than what it holds.
class KeptRows {
public:
    void add(const LIST_ROW& row)
    {
        for (const std::string& cell : row)
            (m_text += cell) += '\n';
    }

    template <typename Use>
    void for_each(const Use& use) const
    {
        for (size_t at = 0; at < m_text.size();) {
            LIST_ROW row;
            for (std::string& cell : row) {
                const size_t end = m_text.find('\n', at);
                cell.assign(m_text, at, end - at);
                at = end + 1;
            }
            use(row);
        }
    }

private:
    std::string m_text;  // each cell and a line feed
};

void put_line(const char* word, const std::string& text)
{
    if (!text.empty())
        put("  " + std::string(word) + std::string(8 - std::min<size_t>(std::strlen(word), 7), ' ') + printable(text) +
            "\n");
}

}  // namespace

// No cell is kept wider than a row, so that long values do not take memory.
size_t put_list_table(CPDFDocument& document, PDF_LISTED what, const std::vector<PDF_XFA_VALUE>& data)
{
    const int terminal = terminal_columns();
    const int total = terminal ? terminal : USUAL_WIDTH;
    const LIST_ROW heading = {"NO", "KIND", "PAGE", "NAME", "VALUE", "SHOWN", "FLAGS"};
    LIST_WIDTHS widths{};
    LIST_WIDTHS whole;
    whole.fill(total);
    KeptRows rows;
    const auto add = [&](LIST_ROW row) {
        for (std::string& cell : row)
            cell = printable(cell);
        cut(row, whole);
        widen(widths, row);
        rows.add(row);
    };
    const size_t same = for_each_row(document, what, [&](const CPDFField&, LIST_ROW row) { add(std::move(row)); });
    for (const PDF_XFA_VALUE& at : data)
        add({"", "data", "", at.path, at.value, "", ""});
    need_memory();
    for (size_t i = 0; i < COLUMN_COUNT; ++i) {
        if (widths[i] > 0 || i == COLUMN_NAME || i == COLUMN_VALUE)
            widths[i] = std::max(widths[i], columns_of(heading[i]));
    }
    narrow(widths, total);
    put_row(heading, widths);
    rows.for_each([&](LIST_ROW& row) {
        cut(row, widths);
        put_row(row, widths);
    });
    return same;
}

size_t put_list_long(CPDFDocument& document, PDF_LISTED what, const std::vector<PDF_XFA_VALUE>& data)
{
    size_t listed = 0;
    const size_t same = for_each_row(document, what, [&](const CPDFField& field, const LIST_ROW& row) {
        put(row[COLUMN_KIND] + "  " + printable(row[COLUMN_NAME]) + "\n");
        put_line("number", row[COLUMN_NUMBER]);
        put_line("page", row[COLUMN_PAGE]);
        put_line("value", row[COLUMN_VALUE]);
        put_line("shown", row[COLUMN_SHOWN]);
        put_line("label", document.field_notes().label_of(field.m_ref).value_or(""));
        put_line("takes", taken_words(document, field, listed));
        put_line("flags", row[COLUMN_FLAGS]);
    });
    for (const PDF_XFA_VALUE& at : data) {
        put("data  " + printable(at.path) + "\n");
        put_line("value", at.value);
    }
    return same;
}
