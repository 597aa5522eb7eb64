#include "document/edit/add_field.h"

#include <algorithm>

#include "core/alloc.h"
#include "core/limits.h"
#include "document/edit/field_appearance.h"
#include "document/edit/field_tree.h"
#include "document/edit/form_home.h"
#include "document/edit/new_object.h"
#include "document/edit/page_annots.h"
#include "document/edit/remove_field.h"
#include "document/lookup/field_text.h"
#include "document/lookup/page_box.h"
#include "document/lookup/page_map.h"
#include "document/lookup/widget_binder.h"
#include "forms/acro_form.h"
#include "forms/field.h"

namespace {

// What the kinds that can be added need.
struct NEW_KIND {
    PDF_FIELD_KIND_ID id;
    uint32_t flags;  // besides those of the kind
    PDF_LOOK off;
    PDF_LOOK on;
    const char* appearance;  // "DA"
    const char* font;        // that "DA" names, null for none
    const char* base_font;
    const char* caption;  // "CA", which viewers that draw anew take for the mark
};

constexpr NEW_KIND NEW_KINDS[] = {
    {KIND_TEXT, 0, PDF_LOOK::BOX, PDF_LOOK::BOX, "/Helv 0 Tf 0 g", "Helv", "Helvetica", ""},
    {KIND_COMBO, 0, PDF_LOOK::BOX, PDF_LOOK::BOX, "/Helv 0 Tf 0 g", "Helv", "Helvetica", ""},
    {KIND_LIST, 0, PDF_LOOK::BOX, PDF_LOOK::BOX, "/Helv 10 Tf 0 g", "Helv", "Helvetica", ""},
    {KIND_CHECK, 0, PDF_LOOK::CHECK_OFF, PDF_LOOK::CHECK_ON, "/ZaDb 0 Tf 0 g", "ZaDb", "ZapfDingbats", "/CA(4)"},
    {KIND_RADIO, FIELD_NO_TOGGLE_TO_OFF, PDF_LOOK::RADIO_OFF, PDF_LOOK::RADIO_ON, "/ZaDb 0 Tf 0 g", "ZaDb",
     "ZapfDingbats", "/CA(l)"},
    {KIND_SIGNATURE, 0, PDF_LOOK::BOX, PDF_LOOK::BOX, "", nullptr, nullptr, ""},
};

const NEW_KIND* new_kind(PDF_FIELD_KIND_ID id)
{
    const auto* found =
        std::find_if(std::begin(NEW_KINDS), std::end(NEW_KINDS), [id](const NEW_KIND& at) { return at.id == id; });
    return found == std::end(NEW_KINDS) ? nullptr : found;
}

bool holds(const PDF_BOX& box, const PDF_RECT& rect)
{
    constexpr double SLACK = PDF_RECT::SMALLEST;
    return rect.x >= box.x0 - SLACK && rect.y >= box.y0 - SLACK && rect.x + rect.width <= box.x1 + SLACK &&
           rect.y + rect.height <= box.y1 + SLACK;
}

// The parts of a full name.
std::vector<std::string> parts_of(const std::string& name)
{
    std::vector<std::string> parts;
    for (size_t begin = 0; begin <= name.size();) {
        const size_t end = std::min(name.find('.', begin), name.size());
        parts.push_back(name.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

class FieldMaker {
public:
    FieldMaker(EDIT_TARGET& target, const PDF_NEW_FIELD& field) : m_target(target), m_field(field) {}

    CPDFStatus check()
    {
        m_kind = new_kind(m_field.kind);
        if (!m_kind)
            return CPDFStatus::failed(
                PDF_CODE::BAD_EDIT,
                "fields of this kind can't be added: only text, check, radio, combo, list and signature");
        m_shape.kind = &field_kind(m_kind->id);
        m_shape.flags = m_shape.kind->set | m_kind->flags;
        m_states = m_field.states;
        check_name();
        check_states();
        for (const std::string& state : m_states)
            m_shape.buttons.push_back({nullptr, state, state});
        check_place();
        check_group();
        change_shape(m_field.entries, m_field.name, m_shape, m_refusals);
        return m_refusals.status();
    }

    CPDFStatus make(CPDFField*& added)
    {
        const VXFailureCheck memory;
        if (CPDFStatus status = settle_form(m_target); !status.ok())
            return status;
        if (m_kind->font) {
            if (CPDFStatus status = need_font(m_target, m_kind->font, m_kind->base_font); !status.ok())
                return status;
        }
        if (own_annotations(m_target.xref, m_target.pages, m_field.page) != PDF_CHANGE_RESULT::STORED)
            return no_memory_to_edit();
        CPDFField* parent = make_parents();
        const PDF_REF ref = m_field.kind == KIND_RADIO ? make_group(parent) : make_merged(parent);
        added = memory.failed() ? nullptr : attach_field(m_target, parent, ref);
        if (added)
            m_target.widgets.bind_added(m_target.xref, *added, m_target.pages);
        if (m_kind->id == KIND_SIGNATURE)
            m_target.form.set_sign_flag(1);
        return added && !memory.failed() ? CPDFStatus() : no_memory_to_edit();
    }

    // The default is also the value.
    CPDFStatus set_default(CPDFField& field) const
    {
        const std::optional<CPDFValue>& value = m_field.entries.default_value;
        if (!value)
            return {};
        PDF_FIELD_CHANGE change;
        change.default_value = value;
        CPDFStatus status = change_field(field, change, m_target.widgets);
        PDF_FILL_PLAN plan;
        if (status.ok())
            status = plan_fill(field, *value, PDF_FILL::FORCE, PDF_WORDS::STATES_FIRST, m_target.widgets, plan);
        std::vector<CPDFField*> changed;
        return status.ok() ? apply_fill(m_target.xref, plan, m_target.widgets, changed) : status;
    }

private:
    void check_name()
    {
        const std::vector<std::string> parts = parts_of(m_field.name);
        if (std::any_of(parts.begin(), parts.end(), [](const std::string& part) { return part.empty(); })) {
            m_refusals.add(in_quotes(m_field.name) + " is no name for a field: every part between dots needs a letter");
            return;
        }
        if (parts.size() + (m_kind->id == KIND_RADIO ? 1 : 0) > LIMIT_FIELD_DEPTH)
            m_refusals.add("the fields would be too deep inside one another");
        if (!is_readable_name(m_field.name)) {
            m_refusals.add("the full name would be longer than " + std::to_string(LIMIT_FULL_NAME) + " bytes");
            return;
        }
        if (field_named(m_target, m_field.name))
            m_refusals.add("there is a field " + in_quotes(m_field.name) + " already");
        std::string above;
        for (size_t i = 0; i + 1 < parts.size(); ++i) {
            above += (i ? "." : "") + parts[i];
            const CPDFField* group = field_named(m_target, above);
            if (group && !can_hold_fields(m_target, *group))
                m_refusals.add("field " + in_quotes(above) + " has a value of its own and can't hold other fields");
        }
    }

    void check_states()
    {
        const bool check = m_kind->id == KIND_CHECK;
        const bool radio = m_kind->id == KIND_RADIO;
        std::vector<std::string>& states = m_states;
        const std::string field = "field " + in_quotes(m_field.name);
        if (check && states.empty())
            states.emplace_back("Yes");
        if (!check && !radio && !states.empty())
            m_refusals.add(field + " is a " + m_shape.kind->title + ", which has no states");
        if (check && states.size() > 1)
            m_refusals.add(field + " is a check box, which has one state");
        if (radio && states.empty())
            m_refusals.add(field + " is a radio group, which needs a state for each button");
        for (size_t i = 0; i < states.size(); ++i) {
            if (states[i].empty() || states[i] == PDF_STATE_OFF)
                m_refusals.add(in_quotes(states[i]) + " can't be the state of a button that is on");
            if (std::find(states.begin(), states.begin() + static_cast<std::ptrdiff_t>(i), states[i]) !=
                states.begin() + static_cast<std::ptrdiff_t>(i))
                m_refusals.add(field + " would have the state " + in_quotes(states[i]) + " twice");
        }
    }

    void check_place()
    {
        const int32_t pages = m_target.pages.page_count();
        const bool there = m_field.page >= 1 && m_field.page <= pages && m_target.pages.page_ref(m_field.page).num;
        if (!there)
            m_refusals.add("there is no page " + std::to_string(m_field.page) + ": the document has " +
                           std::to_string(pages));
        const PDF_BOX box = there ? read_page_box(m_target.xref, page_ref()).crop : PDF_BOX();
        for (const PDF_RECT& rect : m_field.rects) {
            const std::string shown = "the rectangle " + number_syntax(rect.x) + "," + number_syntax(rect.y) + "," +
                                      number_syntax(rect.width) + "," + number_syntax(rect.height);
            if (rect.width < PDF_RECT::SMALLEST || rect.height < PDF_RECT::SMALLEST)
                m_refusals.add(shown + " is empty");
            else if (there && !holds(box, rect))
                m_refusals.add(shown + " is not on page " + std::to_string(m_field.page) + ", which goes from " +
                               number_syntax(box.x0) + "," + number_syntax(box.y0) + " to " + number_syntax(box.x1) +
                               "," + number_syntax(box.y1));
        }
        const size_t rects = m_field.rects.size();
        if (rects != 1 && (m_kind->id != KIND_RADIO || rects != m_states.size()))
            m_refusals.add("field " + in_quotes(m_field.name) + " needs one rectangle" +
                           (m_kind->id == KIND_RADIO ? ", or one for each button" : ""));
    }

    // What the nearest group that is there makes of the field.
    void check_group()
    {
        if (m_kind->id != KIND_TEXT)
            return;
        const CPDFField* group = nullptr;
        for (size_t dot = m_field.name.rfind('.'); dot != std::string::npos && dot > 0 && !group;
             dot = m_field.name.rfind('.', dot - 1))
            group = field_named(m_target, m_field.name.substr(0, dot));
        m_shape.max_length = inherited_max_length(group);
        if (m_shape.max_length && m_field.entries.max_length == 0)
            m_refusals.add("field " + in_quotes(m_field.name) +
                           " has the maximum length of its group, which can't be taken away");
    }

    const PDF_REF& page_ref() const { return m_target.pages.page_ref(m_field.page); }

    // The group above the field; missing ones are made from the top down. Null for a top-level field.
    CPDFField* make_parents()
    {
        const std::vector<std::string> parts = parts_of(m_field.name);
        CPDFField* parent = nullptr;
        std::string above;
        for (size_t i = 0; i + 1 < parts.size(); ++i) {
            above += (i ? "." : "") + parts[i];
            CPDFField* group = field_named(m_target, above);
            if (!group) {
                const std::string entries = "/T " + string_syntax(parts[i]) + parent_entry(parent) + "/Kids[]";
                group = attach_field(m_target, parent, new_object(m_target.xref, "<<" + entries + ">>"));
            }
            parent = group;
        }
        return parent;
    }

    static std::string parent_entry(const CPDFField* parent)
    {
        return parent ? "/Parent " + ref_syntax(parent->m_ref) : "";
    }

    // The entries that make a dictionary the field.
    std::string field_entries(const CPDFField* parent) const
    {
        std::string out =
            std::string("/FT/") + m_shape.kind->type_key + "/T " + string_syntax(parts_of(m_field.name).back());
        out += parent_entry(parent);
        CPDFObj above;
        if (m_shape.flags || inherited_entry(parent, "Ff", above))
            out += "/Ff " + std::to_string(m_shape.flags);
        if (m_kind->font)
            out += "/DA " + string_syntax(m_shape.flags & FIELD_MULTILINE ? "/Helv 10 Tf 0 g" : m_kind->appearance);
        if (m_shape.max_length)
            out += "/MaxLen " + std::to_string(m_shape.max_length);
        if (m_field.entries.options)
            out += options_entry();
        const bool button = m_shape.kind->type == FIELD_BUTTON;
        for (const char* key : {"V", "DV"}) {
            CPDFObj value;
            if (button ? key == std::string("V") || inherited_entry(parent, key, value)
                       : m_kind->id != KIND_SIGNATURE && inherited_entry(parent, key, value))
                out += std::string("/") + key + (button ? "/Off" : "()");
        }
        CPDFObj scripts;
        return inherited_entry(parent, "AA", scripts) ? out + "/AA<<>>" : out;
    }

    std::string options_entry() const
    {
        std::string out = "/Opt[";
        for (const PDF_OPTION& option : *m_field.entries.options) {
            const std::string value = string_syntax(option.value);
            out += option.text.empty() ? value : "[" + value + string_syntax(option.text) + "]";
        }
        return out + "]";
    }

    PDF_REF make_look(PDF_LOOK look, const PDF_RECT& rect) const
    {
        return new_stream(m_target.xref, look_entries(rect.width, rect.height),
                          look_content(look, rect.width, rect.height));
    }

    // The entries that make a dictionary a widget, on when `state` is that of the button; an empty state is for other
    // kinds.
    std::string widget_entries(const PDF_RECT& rect, const std::string& state) const
    {
        std::string out = "/Type/Annot/Subtype/Widget/F 4/P " + ref_syntax(page_ref()) + "/Rect[" +
                          number_syntax(rect.x) + " " + number_syntax(rect.y) + " " +
                          number_syntax(rect.x + rect.width) + " " + number_syntax(rect.y + rect.height) +
                          "]/BS<</W 1/S/S>>/MK<</BC[0.6]/BG[1]" + m_kind->caption + ">>";
        // An appearance without the text would be taken for the value: where there is none, viewers draw border and text.
        if (m_kind->font && state.empty())
            return out;
        const std::string off = ref_syntax(make_look(m_kind->off, rect));
        if (state.empty())
            return out + "/AP<</N " + off + ">>";
        const std::string on = ref_syntax(make_look(m_kind->on, rect));
        return out + "/AS/Off/AP<</N<<" + name_syntax(state) + " " + on + "/Off " + off + ">>>>";
    }

    void list_on_page(const PDF_REF& widget)
    {
        if (add_annotation(m_target.xref, page_ref(), widget) == PDF_CHANGE_RESULT::STORED)
            m_target.pages.add_annotation(widget.num, m_field.page);
    }

    PDF_REF make_merged(const CPDFField* parent)
    {
        const std::string state = m_kind->id == KIND_CHECK ? m_states[0] : "";
        const std::string entries = field_entries(parent) + widget_entries(m_field.rects[0], state);
        const PDF_REF ref = new_object(m_target.xref, "<<" + entries + ">>");
        if (ref.num)
            list_on_page(ref);
        return ref;
    }

    // Where the button `index` of a group stands: its own rectangle, or a square in its share of the common one.
    PDF_RECT button_rect(size_t index) const
    {
        if (m_field.rects.size() > 1)
            return m_field.rects[index];
        PDF_RECT rect = m_field.rects[0];
        const auto count = static_cast<double>(m_states.size());
        const auto place = static_cast<double>(index);
        if (rect.width >= rect.height) {
            rect.width /= count;
            rect.x += rect.width * place;
        } else {
            rect.height /= count;
            rect.y += rect.height * (count - 1 - place);
        }
        const double side = std::min(rect.width, rect.height);
        return {rect.x + (rect.width - side) / 2, rect.y + (rect.height - side) / 2, side, side};
    }

    // The group comes before its buttons, which name it.
    PDF_REF make_group(const CPDFField* parent)
    {
        const PDF_REF group = new_object(m_target.xref, "null");
        std::string kids;
        for (size_t i = 0; i < m_states.size(); ++i) {
            const std::string entries = "/Parent " + ref_syntax(group) + widget_entries(button_rect(i), m_states[i]);
            const PDF_REF button = new_object(m_target.xref, "<<" + entries + ">>");
            if (button.num)
                list_on_page(button);
            kids += " " + ref_syntax(button);
        }
        CPDFObj dict;
        parse_syntax("<<" + field_entries(parent) + "/Kids[" + kids + "]>>", dict);
        m_target.xref.take_changed(group, dict);
        return group;
    }

    EDIT_TARGET& m_target;
    const PDF_NEW_FIELD& m_field;
    const NEW_KIND* m_kind = nullptr;
    std::vector<std::string> m_states;  // on states of a button
    PDF_FIELD_SHAPE m_shape = {};
    CPDFRefusals m_refusals;
};

}  // namespace

CPDFStatus insert_field(EDIT_TARGET& target, const PDF_NEW_FIELD& field, CPDFField*& added)
{
    added = nullptr;
    FieldMaker maker(target, field);
    CPDFStatus status = maker.check();
    if (status.ok())
        status = maker.make(added);
    if (added && status.ok())
        status = maker.set_default(*added);
    if (!added || status.ok())
        return status;
    (void)erase_field(target, *added);  // the first failure is the one to tell
    added = nullptr;
    return status;
}
