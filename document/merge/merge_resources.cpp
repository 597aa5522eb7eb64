#include <cstring>
#include <memory>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/stream.h"
#include "core/xref_table.h"
#include "document/edit/new_object.h"
#include "document/merge/merge_internal.h"
#include "file/syntax/lexer.h"

namespace {

constexpr const char* RESOURCES = "DR";
constexpr const char* FONT = "Font";

// Whether objects of two documents say the same. What takes much work to compare differs.
class Comparison {
public:
    Comparison(CPDFXRefTable& a, CPDFXRefTable& b) : m_a(a), m_b(b) {}

    bool same(const CPDFObj& a, const CPDFObj& b, int depth = 0)
    {
        constexpr int DEEPEST = 8;
        const CPDFEntryView one(&m_a, &a);
        const CPDFEntryView two(&m_b, &b);
        if (depth > DEEPEST || --m_values_left < 0 || one->type != two->type)
            return false;
        switch (one->type) {
        case PDF_OBJ_REAL:
            return one->fval == two->fval;
        case PDF_OBJ_STRING:
            return one->str.len == two->str.len &&
                   (one->str.len <= 0 ||
                    std::memcmp(one->str.buf, two->str.buf, static_cast<size_t>(one->str.len)) == 0);
        case PDF_OBJ_NAME:
            return two->is_name(one->name);
        case PDF_OBJ_ARRAY:
            return same_items(*one->arr, *two->arr, depth + 1);
        case PDF_OBJ_DICT:
            return same_entries(*one->dict, *two->dict, depth + 1);
        case PDF_OBJ_STREAM:
            return same_entries(one->stream->dict, two->stream->dict, depth + 1) &&
                   same_data(*one->stream, *two->stream);
        default:
            return one->type == PDF_OBJ_NULL || one->ival == two->ival;
        }
    }

private:
    bool same_items(const CPDFArray& a, const CPDFArray& b, int depth)
    {
        bool equal = a.count == b.count;
        for (int32_t i = 0; equal && i < a.count; ++i)
            equal = same(a.items[i], b.items[i], depth);
        return equal;
    }

    bool same_entries(const CPDFDictionary& a, const CPDFDictionary& b, int depth)
    {
        bool equal = a.count == b.count;
        for (int32_t i = 0; equal && i < a.count; ++i)
            equal = std::strcmp(a.items[i]->key(), b.items[i]->key()) == 0 &&
                    same(a.items[i]->value, b.items[i]->value, depth);
        return equal;
    }

    bool same_data(const CPDFStreamRec& a, const CPDFStreamRec& b)
    {
        const std::unique_ptr<CPDFStream> one(m_a.make_stream(&a));
        const std::unique_ptr<CPDFStream> two(m_b.make_stream(&b));
        int len = 0;
        int other_len = 0;
        const VXBlock<unsigned char> data(one ? one->buffer_load(LIMIT_FONT_FILE, len) : nullptr);
        const VXBlock<unsigned char> other(two ? two->buffer_load(LIMIT_FONT_FILE, other_len) : nullptr);
        return data && other && len == other_len && std::memcmp(data.get(), other.get(), static_cast<size_t>(len)) == 0;
    }

    CPDFXRefTable& m_a;  // borrowed from the caller
    CPDFXRefTable& m_b;
    int m_values_left = 20000;
};

// How a default appearance spells the name.
std::string spelled(const std::string& name)
{
    return name_syntax(name).substr(1);
}

void merge_category(MERGE& merge, const char* category, CPDFDictionary& present, const CPDFDictionary& added)
{
    for (int32_t i = 0; i < added.count; ++i) {
        const std::string name = added.items[i]->key();
        const CPDFObj* own = present.get_item(name.c_str());
        CPDFObj value;
        value.copy_from(&added.items[i]->value);
        std::string free = name;
        if (own && (std::strcmp(category, FONT) != 0 ||
                    Comparison(merge.into.xref, merge.from.xref).same(*own, added.items[i]->value)))
            continue;
        for (int number = 2; present.get_item(free.c_str()) || (own && added.get_item(free.c_str())); ++number)
            free = name + "_" + std::to_string(number);
        if (own)
            merge.fonts[spelled(name)] = spelled(free);
        merge.copier.renumber(value);
        present.set_item(free.c_str(), &value);
    }
}

}  // namespace

// Categories other than fonts are named by contents alone, which have resources of their own.
void merge_resources(MERGE& merge, CPDFDictionary& form, const CPDFDictionary& other)
{
    CPDFObj added;
    const CPDFDictionary* theirs = copy_dictionary(merge.from.xref, other, RESOURCES, added);
    CPDFObj all;
    CPDFDictionary* resources = copy_dictionary(merge.into.xref, form, RESOURCES, all);
    if (!theirs || !resources || theirs->count == 0)
        return;
    for (int32_t i = 0; i < theirs->count; ++i) {
        const char* key = theirs->items[i]->key();
        const CPDFEntryView category(&merge.from.xref, &theirs->items[i]->value);
        if (!category->dictionary())
            continue;
        CPDFObj present;
        if (CPDFDictionary* dict = copy_dictionary(merge.into.xref, *resources, key, present))
            merge_category(merge, key, *dict, *category->dict);
        resources->set_item(key, &present);
    }
    put_apart(merge.into.xref, form, RESOURCES, all);
}

std::string renamed_fonts(const RENAMED& fonts, const std::string& appearance)
{
    std::string out;
    const auto* begin = reinterpret_cast<const uint8_t*>(appearance.data());
    CPDFLexer lexer(begin, begin + appearance.size());
    while (!lexer.done()) {
        const uint8_t* at = lexer.at();
        const bool is_name = *at == '/';
        if (*at == '(')
            lexer.skip_literal();
        else if (is_name || !is_regular(*at))
            lexer.move_to(at + 1);
        if (is_name || is_regular(*at))
            lexer.skip_regular();
        std::string token(at, lexer.at());
        const auto found = is_name ? fonts.find(token.substr(1)) : fonts.end();
        out += found == fonts.end() ? token : "/" + found->second;
    }
    return out;
}
