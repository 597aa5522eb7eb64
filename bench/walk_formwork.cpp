// Lists the fields of a form through the front class.

#include <cstdio>
#include <string>
#include <vector>

#include "bench/walk_main.h"
#include "core/array.h"
#include "document/document.h"
#include "document/lookup/field_text.h"
#include "forms/field_walk.h"

namespace {

// The full name of the field being visited: each field's is its parent's and its own partial name.
class NamePath {
public:
    const std::string& enter(const CPDFField& field)
    {
        while (!m_above.empty() && m_above.back().field != field.m_parent)
            m_above.pop_back();
        m_name.resize(m_above.empty() ? 0 : m_above.back().size);
        if (field.m_name.buf) {
            if (!m_name.empty())
                m_name += '.';
            m_name += utf8_of(field.m_name);
        }
        m_above.push_back({&field, m_name.size()});
        return m_name;
    }

private:
    struct LEVEL {
        const CPDFField* field;
        size_t size;  // of its full name
    };
    std::vector<LEVEL> m_above;
    std::string m_name;
};

void list_texts(const CPDFObj& value, LISTING* listing)
{
    if (value.type == PDF_OBJ_STRING) {
        const std::string text = utf8_of(value.str);
        listing_text(listing, text.data(), text.size());
    } else if (const char* text = value.name_text()) {
        listing_text(listing, text, std::char_traits<char>::length(text));
    }
}

void list_field(const CPDFField& field, const std::string& name, LISTING* listing)
{
    listing_name(listing, name.data(), name.size());
    if (const CPDFArray* values = field.m_value.array()) {
        for (int32_t i = 0; i < values->count; ++i)
            list_texts(values->items[i], listing);
    } else {
        list_texts(field.m_value, listing);
    }
    listing_end(listing);
}

int walk(const char* path, LISTING* listing)
{
    CPDFDocument document;
    if (const CPDFStatus status = document.open(path); !status.ok()) {
        std::fprintf(stderr, "walk_formwork: %s\n", status.text.c_str());
        return 0;
    }
    NamePath path_of;
    for_each_field(document.form(), [&](CPDFField& field) {
        const std::string& name = path_of.enter(field);
        if (field.m_name.buf)
            list_field(field, name, listing);
    });
    return 1;
}

}  // namespace

int main(int argc, char** argv)
{
    return walk_main(argc, argv, walk);
}
