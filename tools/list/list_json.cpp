#include <string>
#include <vector>

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/document.h"
#include "document/lookup/field_text.h"
#include "document/lookup/page_map.h"
#include "document/lookup/value_text.h"
#include "formats/export/json_text.h"
#include "forms/field_inherit.h"
#include "forms/field_kind.h"
#include "forms/field_walk.h"
#include "tools/list/list_internal.h"
#include "tools/verb.h"

namespace {

constexpr size_t FLUSH_SIZE = 1 << 16;

constexpr const char* WIDGET_KEYS[] = {"Subtype", "P"};
constexpr CPDFKeySet WIDGET_KEY_SET(WIDGET_KEYS);

// Writes the objects of the list, one field at a time.
class JsonList {
public:
    explicit JsonList(CPDFDocument& document) : m_document(document) { m_pages.load(document.xref(), document.root()); }

    void put_all(LIST_WHAT what)
    {
        m_out = "[";
        for_each_field(m_document.form(), [&](CPDFField& field) {
            if (!is_listed(field, what))
                return;
            m_out += m_first ? "\n" : ",\n";
            m_first = false;
            append_field(field);
            if (m_out.size() >= FLUSH_SIZE)
                flush();
        });
        m_out += m_first ? "]\n" : "\n]\n";
        flush();
    }

private:
    void flush()
    {
        put(m_out);
        m_out.clear();
    }

    void append_field(CPDFField& field)
    {
        const PDF_FIELD_KIND& kind = field_kind(field);
        m_out += "{\"name\":";
        append_json_text(m_out, full_name_with_no(field));
        m_out.append(",\"type\":\"").append(kind.type_name).append("\",\"kind\":\"").append(kind.name);
        m_out.append("\",\"flags\":").append(std::to_string(field.m_flags));
        m_out.append(",\"readOnly\":").append(field.m_flags & FIELD_READ_ONLY ? "true" : "false");
        m_out.append(",\"required\":").append(field.m_flags & FIELD_REQUIRED ? "true" : "false");
        append_value(",\"value\":", field.m_value);
        append_value(",\"default\":", field.m_def_value);
        append_options(field);
        append_numbers(",\"selected\":[", field.m_sels, field.m_sel_cnt);
        const int32_t limit = field.m_type == FIELD_TEXT ? max_length(field) : 0;
        m_out.append(",\"maxLength\":").append(limit > 0 ? std::to_string(limit) : "null");
        m_out.append(",\"object\":").append(std::to_string(field.m_ref.num));
        collect_widgets(field);
        append_numbers(",\"widgets\":[", m_widgets.data(), m_widgets.size());
        const int32_t page = page_of_widgets();
        m_out.append(",\"page\":").append(page ? std::to_string(page) : "null").append("}");
    }

    void append_value(const char* key, const CPDFObj& object)
    {
        m_out += key;
        append_json_value(m_out, value_text(m_document.xref(), object));
    }

    void append_options(const CPDFField& field)
    {
        m_out += ",\"options\":[";
        for (int32_t i = 0; i < field.m_opt_cnt; ++i) {
            m_out += i ? ",{\"value\":" : "{\"value\":";
            append_json_text(m_out, utf8_of(field.m_opts[i].val));
            m_out += ",\"text\":";
            append_json_text(m_out, utf8_of(field.m_opts[i].text));
            m_out += '}';
        }
        m_out += ']';
    }

    template <typename Number, typename Count>
    void append_numbers(const char* key, const Number* numbers, Count count)
    {
        m_out += key;
        for (Count i = 0; i < count; ++i) {
            if (i)
                m_out += ',';
            m_out += std::to_string(numbers[i]);
        }
        m_out += ']';
    }

    // The widgets that show `field`: its own, and for a named field those of the kids without a name.
    void collect_widgets(const CPDFField& field)
    {
        m_widgets.clear();
        collect_own_widgets(field);
        if (field.m_name.len > 0)
            collect_widgets_of_unnamed_kids(field);
    }

    void collect_own_widgets(const CPDFField& field)
    {
        if (is_widget(field.m_ref))
            m_widgets.push_back(field.m_ref.num);
        for (int32_t i = 0; i < field.m_widget_cnt; ++i) {
            if (field.m_widgets[i].num != field.m_ref.num)
                m_widgets.push_back(field.m_widgets[i].num);
        }
    }

    void collect_widgets_of_unnamed_kids(const CPDFField& field)
    {
        for (int32_t i = 0; i < field.m_kid_cnt; ++i) {
            const CPDFField* kid = field.m_kids[i];
            if (!kid || kid->m_name.len > 0)
                continue;
            collect_own_widgets(*kid);
            collect_widgets_of_unnamed_kids(*kid);
        }
    }

    bool is_widget(const PDF_REF& ref)
    {
        if (m_pages.page_of_annotation(ref.num))
            return true;
        CPDFObj object;
        m_document.xref().get_entity(object, ref, &WIDGET_KEY_SET);
        const CPDFDictionary* dict = object.dictionary();
        const CPDFObj* subtype = dict ? dict->get_item(CPDFDictionary::sm_tag_subtype) : nullptr;
        return subtype && subtype->is_name("Widget");
    }

    int32_t page_of_widgets()
    {
        for (const uint32_t num : m_widgets) {
            if (const int32_t page = m_pages.page_of_annotation(num))
                return page;
        }
        for (const uint32_t num : m_widgets) {
            CPDFObj object;
            m_document.xref().get_entity(object, {num, 0}, &WIDGET_KEY_SET);
            const CPDFDictionary* dict = object.dictionary();
            const CPDFObj* page = dict ? dict->get_item("P") : nullptr;
            const int32_t number = page && page->type == PDF_OBJ_REF ? m_pages.page_of(page->ref.num) : 0;
            if (number)
                return number;
        }
        return 0;
    }

    CPDFDocument& m_document;
    CPDFPageMap m_pages;
    std::vector<uint32_t> m_widgets;  // of the field being written
    std::string m_out;
    bool m_first = true;
};

}  // namespace

void put_list_json(CPDFDocument& document, LIST_WHAT what)
{
    JsonList(document).put_all(what);
}
