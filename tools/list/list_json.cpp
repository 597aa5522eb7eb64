#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "document/document.h"
#include "document/lookup/field_options.h"
#include "document/lookup/field_text.h"
#include "document/lookup/page_map.h"
#include "document/lookup/value_text.h"
#include "document/lookup/widget_binder.h"
#include "formats/export/json_text.h"
#include "forms/field_inherit.h"
#include "forms/field_kind.h"
#include "forms/field_walk.h"
#include "tools/list/list_internal.h"
#include "tools/verb.h"

namespace {

constexpr size_t FLUSH_SIZE = 1 << 16;

constexpr CPDFKeySet PAGE_KEY{"P"};

// Writes the objects of the list, one field at a time.
class JsonList {
public:
    explicit JsonList(CPDFDocument& document) : m_document(document), m_names(document.form())
    {
        m_pages.load(document.xref(), document.root());
        m_binder.bind_references(document.xref(), document.form(), m_pages);
    }

    CPDFStatus put_all(LIST_WHAT what)
    {
        m_out = "[";
        for_each_field(m_document.form(), [&](CPDFField& field) {
            if (!is_listed(field, what) || m_option_bytes > LIMIT_LISTED_OPTIONS)
                return;
            m_out += m_first ? "\n" : ",\n";
            m_first = false;
            append_field(field);
            if (m_out.size() >= FLUSH_SIZE)
                flush();
        });
        m_out += m_first ? "]\n" : "\n]\n";
        flush();
        if (m_option_bytes > LIMIT_LISTED_OPTIONS)
            return CPDFStatus::failed(PDF_CODE::LIMIT, "the options of its fields are larger than what is supported");
        if (m_document.read_too_much())
            return CPDFStatus::failed(PDF_CODE::LIMIT,
                                      "the fields take more work to list than the size of the file justifies");
        return {};
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
        put_text("{\"name\":");
        append_json_text(m_out, m_names.name_of(field));
        put_text(",\"type\":\"").put_text(kind.type_name).put_text("\",\"kind\":\"").put_text(kind.name);
        put_text("\",\"flags\":").put_text(std::to_string(field.m_flags));
        put_text(",\"readOnly\":").put_text(field.m_flags & FIELD_READ_ONLY ? "true" : "false");
        put_text(",\"required\":").put_text(field.m_flags & FIELD_REQUIRED ? "true" : "false");
        append_value(",\"value\":", field.m_value);
        append_value(",\"default\":", field.m_def_value);
        append_shown(field);
        append_options(field);
        append_numbers(",\"selected\":[", std::span(field.m_sels, static_cast<size_t>(field.m_sel_cnt)),
                       [](int32_t index) { return index; });
        const int32_t limit = field.m_type == FIELD_TEXT ? max_length(field) : 0;
        put_text(",\"maxLength\":").put_text(limit > 0 ? std::to_string(limit) : "null");
        put_text(",\"object\":").put_text(std::to_string(field.m_ref.num));
        collect_widgets(field);
        append_numbers(",\"widgets\":[", m_widgets, [](const PDF_REF& widget) { return widget.num; });
        const int32_t page = page_of_widgets();
        put_text(",\"page\":").put_text(page ? std::to_string(page) : "null").put_text("}");
    }

    // Of literals the length is known, which adds up over many fields.
    JsonList& put_text(std::string_view text)
    {
        m_out.append(text);
        return *this;
    }

    void append_value(std::string_view key, const CPDFObj& object)
    {
        m_out += key;
        append_json_value(m_out, value_text(m_document.xref(), object));
    }

    void append_shown(const CPDFField& field)
    {
        put_text(",\"shown\":");
        if (const std::optional<std::string> shown = m_document.shown_text(field))
            append_json_text(m_out, *shown);
        else
            put_text("null");
    }

    void append_options(const CPDFField& field)
    {
        const CPDFFieldOptions options(field);
        const size_t before = m_out.size();
        put_text(",\"options\":[");
        for (int32_t i = 0; i < options.count(); ++i) {
            put_text(i ? ",{\"value\":" : "{\"value\":");
            append_json_text(m_out, options.value(i));
            put_text(",\"text\":");
            append_json_text(m_out, options.text(i));
            m_out += '}';
        }
        m_out += ']';
        m_option_bytes += m_out.size() - before;
    }

    template <typename List, typename NumberOf>
    void append_numbers(std::string_view key, const List& list, NumberOf&& number_of)
    {
        m_out += key;
        bool first = true;
        for (const auto& item : list) {
            if (!first)
                m_out += ',';
            first = false;
            m_out += std::to_string(number_of(item));
        }
        m_out += ']';
    }

    // The widgets that show `field`; of a field without a name, which shows the value of the one above it, its own.
    void collect_widgets(CPDFField& field)
    {
        m_widgets.clear();
        if (&value_field(field) == &field) {
            for (const CPDFAnnotWidget* widget : m_binder.widgets_of(field))
                m_widgets.push_back(widget->m_ref);
            return;
        }
        if (field.m_widget && field.m_widget->m_ref.num == field.m_ref.num)
            m_widgets.push_back(field.m_ref);
        for (const PDF_REF& widget : std::span(field.m_widgets, static_cast<size_t>(field.m_widget_cnt))) {
            if (widget.num != field.m_ref.num)
                m_widgets.push_back(widget);
        }
    }

    int32_t page_of_widgets()
    {
        for (const PDF_REF& widget : m_widgets) {
            if (const int32_t page = m_pages.page_of_annotation(widget.num))
                return page;
        }
        for (const PDF_REF& widget : m_widgets) {
            CPDFObj object;
            m_document.xref().get_entity(object, widget, &PAGE_KEY);
            const CPDFDictionary* dict = object.dictionary();
            const CPDFObj* page = dict ? dict->get_item("P") : nullptr;
            const int32_t number = page && page->type == PDF_OBJ_REF ? m_pages.page_of(page->ref.num) : 0;
            if (number)
                return number;
        }
        return 0;
    }

    CPDFDocument& m_document;  // borrowed from the caller
    CPDFNumberedNames m_names;
    CPDFPageMap m_pages;
    CPDFWidgetBinder m_binder;
    std::vector<PDF_REF> m_widgets;  // of the field being written
    size_t m_option_bytes = 0;
    std::string m_out;
    bool m_first = true;
};

}  // namespace

CPDFStatus put_list_json(CPDFDocument& document, const COMMAND_INPUT& input, LIST_WHAT what)
{
    std::unique_ptr<JsonList> list;
    do
        list = std::make_unique<JsonList>(document);
    while (mend_document(document, input));
    return list->put_all(what);
}
