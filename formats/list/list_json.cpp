#include "formats/list/list_json.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/alloc.h"
#include "core/limits.h"
#include "document/document.h"
#include "document/fill/filler.h"
#include "document/lookup/field_notes.h"
#include "document/lookup/field_options.h"
#include "document/lookup/field_text.h"
#include "document/lookup/held_value.h"
#include "document/lookup/page_map.h"
#include "document/lookup/value_text.h"
#include "document/xfa/data_value.h"
#include "engine/annot_widget.h"
#include "formats/export/json_text.h"
#include "forms/field_inherit.h"
#include "forms/field_kind.h"
#include "forms/field_walk.h"

namespace {

constexpr size_t FLUSH_SIZE = 1 << 16;

struct LISTED_WIDGET {
    PDF_REF ref;
    int32_t page;  // 0 for none
};

// Writes the objects of the list, one field at a time.
class JsonList {
public:
    JsonList(CPDFDocument& document, const PDF_TEXT_SINK& sink)
        : m_document(document),
          m_names(document.form()),
          m_pages(document.pages()),
          m_notes(document.field_notes()),
          m_sink(sink)
    {
    }

    CPDFStatus write_all(PDF_LISTED what, const std::vector<PDF_XFA_VALUE>& data)
    {
        const VXFailureCheck memory;
        const CPDFReadAllowance allowance = m_document.reading();
        m_out = "[";
        bool goes_on = true;
        size_t done = 0;
        const size_t all = count_fields(m_document.form());
        for_each_field(m_document.form(), [&](CPDFField& field) {
            goes_on = goes_on && m_document.go_on(static_cast<double>(done++) / static_cast<double>(all));
            if (!goes_on || !is_listed(field, what) || m_option_bytes > LIMIT_LISTED_OPTIONS)
                return;
            m_out += m_first ? "\n" : ",\n";
            m_first = false;
            append_field(field);
            if (m_out.size() >= FLUSH_SIZE)
                flush();
        });
        for (const PDF_XFA_VALUE& at : data)
            append_data(at);
        m_out += m_first ? "]\n" : "\n]\n";
        flush();
        if (!goes_on)
            return CPDFStatus::cancelled();
        if (memory.failed())
            return CPDFStatus::failed(PDF_CODE::NO_MEMORY, "there is not enough memory to list the fields");
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
        m_sink(m_out);
        m_out.clear();
    }

    void append_data(const PDF_XFA_VALUE& value)
    {
        put_text(m_first ? "\n{\"name\":" : ",\n{\"name\":");
        m_first = false;
        append_json_text(m_out, value.path);
        put_text(",\"type\":null,\"kind\":\"data\",\"value\":");
        append_json_text(m_out, value.value);
        m_out += '}';
        if (m_out.size() >= FLUSH_SIZE)
            flush();
    }

    void append_field(CPDFField& field)
    {
        const PDF_FIELD_KIND& kind = field_kind(field);
        put_text("{\"name\":");
        append_json_text(m_out, m_names.name_of(field));
        put_text(",\"type\":\"").put_text(kind.type_name).put_text("\",\"kind\":\"").put_text(kind.name);
        const uint32_t flags = effective_flags(field);
        put_text("\",\"flags\":").put_text(std::to_string(flags));
        put_text(",\"readOnly\":").put_text(flags & FIELD_READ_ONLY ? "true" : "false");
        put_text(",\"required\":").put_text(flags & FIELD_REQUIRED ? "true" : "false");
        const CPDFField* holder = value_holder(field);
        const size_t before = m_out.size();
        append_value(",\"value\":", holder ? own_value(*holder) : PDF_VALUE_TEXT());
        if (holder != &field)  // which many fields may show
            m_option_bytes += m_out.size() - before;
        append_value(",\"default\":", value_text(m_document.xref(), field.m_def_value));
        append_shown(field);
        const CPDFFieldOptions options(field);
        append_options(options);
        append_numbers(",\"selected\":[", std::span(field.m_sels, static_cast<size_t>(field.m_sel_cnt)),
                       [](int32_t index) { return index; });
        const int32_t limit = field.m_type == FIELD_TEXT ? max_length(field) : 0;
        put_text(",\"maxLength\":").put_text(limit > 0 ? std::to_string(limit) : "null");
        put_text(",\"object\":").put_text(std::to_string(field.m_ref.num));
        collect_widgets(field);
        append_numbers(",\"widgets\":[", m_widgets, [](const LISTED_WIDGET& widget) { return widget.ref.num; });
        append_notes(field);
        append_states(field);
        put_text(",\"signed\":").put_text(field.m_type != FIELD_SIGNATURE ? "null" : field.m_sign ? "true" : "false");
        if (field.m_type == FIELD_CHOICE && (!holder || holder == &field))
            holder = options.holder();
        append_text(",\"inheritedFrom\":",
                    holder && holder != &field ? std::optional(m_names.name_of(*holder)) : std::nullopt);
        put_text("}");
    }

    // Of literals the length is known, which adds up over many fields.
    JsonList& put_text(std::string_view text)
    {
        m_out.append(text);
        return *this;
    }

    void append_value(std::string_view key, const PDF_VALUE_TEXT& value)
    {
        m_out += key;
        append_json_value(m_out, value);
    }

    void append_text(std::string_view key, const std::optional<std::string>& text)
    {
        m_out += key;
        if (text)
            append_json_text(m_out, *text);
        else
            put_text("null");
    }

    void append_shown(const CPDFField& field) { append_text(",\"shown\":", m_document.shown_text(field)); }

    void append_options(const CPDFFieldOptions& options)
    {
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
            for (const CPDFAnnotWidget* widget : m_document.widgets_of(field))
                add_widget(widget->m_ref);
            return;
        }
        if (field.m_widget && field.m_widget->m_ref.num == field.m_ref.num)
            add_widget(field.m_ref);
        for (const PDF_REF& widget : std::span(field.m_widgets, static_cast<size_t>(field.m_widget_cnt))) {
            if (widget.num != field.m_ref.num)
                add_widget(widget);
        }
    }

    void add_widget(const PDF_REF& ref) { m_widgets.push_back({ref, m_notes.page_of(ref, m_pages)}); }

    // Page, label and where the widgets stand.
    void append_notes(const CPDFField& field)
    {
        const auto first = std::find_if(m_widgets.begin(), m_widgets.end(), [](const auto& at) { return at.page > 0; });
        append_page(",\"page\":", first == m_widgets.end() ? 0 : first->page);
        append_text(",\"label\":", m_notes.label_of(field.m_ref));
        append_text(",\"mappingName\":", m_notes.mapping_name_of(field.m_ref));
        put_text(",\"widgetRects\":[");
        for (const LISTED_WIDGET& widget : m_widgets) {
            append_page(&widget == &m_widgets.front() ? "{\"page\":" : ",{\"page\":", widget.page);
            put_text(",\"rect\":");
            append_rect(m_notes.rect_of(widget.ref));
            m_out += '}';
        }
        m_out += ']';
    }

    void append_page(std::string_view key, int32_t page)
    {
        put_text(key).put_text(page ? std::to_string(page) : "null");
    }

    void append_rect(const std::optional<PDF_BOX>& rect)
    {
        if (!rect) {
            put_text("null");
            return;
        }
        char separator = '[';
        for (const double at : {rect->x0, rect->y0, rect->x1, rect->y1}) {
            m_out += separator;
            append_coordinate(at);
            separator = ',';
        }
        m_out += ']';
    }

    // Points, to a thousandth.
    void append_coordinate(double value)
    {
        constexpr double SCALE = 1000;
        const auto scaled = static_cast<int64_t>(std::llround(value * SCALE));
        const uint64_t size = static_cast<uint64_t>(scaled < 0 ? -scaled : scaled);
        put_text(scaled < 0 ? "-" : "").put_text(std::to_string(size / 1000));
        if (const uint64_t rest = size % 1000; rest > 0) {
            const std::string digits = std::to_string(1000 + rest);
            put_text(".").put_text(std::string_view(digits).substr(1, digits.find_last_not_of('0')));
        }
    }

    // Of buttons that have a state, in the order of their widgets.
    void append_states(const CPDFField& field)
    {
        const bool has_states = field.m_type == FIELD_BUTTON && field_kind(field).takes_value;
        const std::vector<PDF_BUTTON_CHOICE> choices =
            has_states ? m_document.choices_of(field) : std::vector<PDF_BUTTON_CHOICE>();
        const size_t before = m_out.size();
        append_texts(",\"states\":[", choices, [](const auto& choice) { return utf8_of_name(choice.state); });
        append_texts(",\"exportValues\":[", choices, [](const auto& choice) { return choice.export_value; });
        m_option_bytes += has_states ? m_out.size() - before : 0;
    }

    template <typename TextOf>
    void append_texts(std::string_view key, const std::vector<PDF_BUTTON_CHOICE>& choices, const TextOf& text_of)
    {
        put_text(key);
        for (const PDF_BUTTON_CHOICE& choice : choices) {
            m_out += &choice == &choices.front() ? "" : ",";
            append_json_text(m_out, text_of(choice));
        }
        m_out += ']';
    }

    CPDFDocument& m_document;  // borrowed from the caller
    CPDFNumberedNames m_names;
    const CPDFPageMap& m_pages;            // borrowed from the document
    CPDFFieldNotes& m_notes;               // borrowed from m_document
    const PDF_TEXT_SINK& m_sink;           // borrowed from the caller
    std::vector<LISTED_WIDGET> m_widgets;  // of the field being written
    size_t m_option_bytes = 0;
    std::string m_out;
    bool m_first = true;
};

}  // namespace

bool is_listed(const CPDFField& field, PDF_LISTED what)
{
    return what == PDF_LISTED::ALL || field.m_name.len > 0;
}

CPDFStatus write_list_json(CPDFDocument& document, PDF_LISTED what, const std::vector<PDF_XFA_VALUE>& data,
                           const PDF_TEXT_SINK& sink)
{
    return JsonList(document, sink).write_all(what, data);
}
