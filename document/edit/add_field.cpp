#include "document/edit/add_field.h"

#include <algorithm>

#include "core/alloc.h"
#include "core/xref_table.h"
#include "document/edit/field_tree.h"
#include "document/edit/form_home.h"
#include "document/edit/new_name.h"
#include "document/edit/new_object.h"
#include "document/edit/remove_field.h"
#include "document/lookup/field_text.h"
#include "document/lookup/page_map.h"
#include "document/lookup/widget_binder.h"
#include "forms/acro_form.h"
#include "forms/field.h"

namespace {

// What the kinds that can be added need.
struct NEW_KIND {
    PDF_FIELD_KIND_ID id;
    uint32_t flags;          // besides those of the kind
    const char* appearance;  // "DA"
    const char* font;        // that "DA" names, null for none
    const char* base_font;
    const char* marks = "/BC[0.6]/BG[1]";  // "MK"; "CA" there is the mark
    const char* border = "S";              // "S" of "BS"
};

constexpr const char* FITTED = "/Helv 0 Tf 0 g";
constexpr const char* MARKED = "/ZaDb 0 Tf 0 g";

constexpr NEW_KIND NEW_KINDS[] = {
    {KIND_TEXT, 0, FITTED, "Helv", "Helvetica"},
    {KIND_COMBO, 0, FITTED, "Helv", "Helvetica"},
    {KIND_LIST, 0, "/Helv 10 Tf 0 g", "Helv", "Helvetica"},
    {KIND_CHECK, 0, MARKED, "ZaDb", "ZapfDingbats", "/BC[0.6]/BG[1]/CA(4)"},
    {KIND_RADIO, FIELD_NO_TOGGLE_TO_OFF, MARKED, "ZaDb", "ZapfDingbats", "/BC[0.6]/BG[1]/CA(l)"},
    {KIND_PUSH, 0, FITTED, "Helv", "Helvetica", "/BC[0.4]/BG[0.85]", "B"},
    {KIND_SIGNATURE, 0, "", nullptr, nullptr},
};

const NEW_KIND* new_kind(PDF_FIELD_KIND_ID id)
{
    const auto* found =
        std::find_if(std::begin(NEW_KINDS), std::end(NEW_KINDS), [id](const NEW_KIND& at) { return at.id == id; });
    return found == std::end(NEW_KINDS) ? nullptr : found;
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
                "fields of this kind can't be added: only text, check, radio, combo, list, push and signature");
        m_shape.kind = &field_kind(m_kind->id);
        m_shape.flags = m_shape.kind->set | m_kind->flags;
        m_states = m_field.states;
        check_new_name(m_target, m_field.name, m_kind->id == KIND_RADIO ? 1 : 0, m_refusals);
        check_states();
        for (const std::string& state : m_states)
            m_shape.buttons.push_back({nullptr, state, state});
        check_places();
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
        CPDFField* parent = make_groups(m_target, m_field.name);
        const bool several = m_kind->id == KIND_RADIO || m_field.places.size() > 1;
        const PDF_REF ref = several ? make_group(parent) : make_merged(parent);
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

    void check_places()
    {
        for (const PDF_PLACE& place : m_field.places)
            check_place(m_target, place, m_refusals);
        const size_t count = m_field.places.size();
        const std::string field = "field " + in_quotes(m_field.name);
        if (count == 0 || (count > 1 && m_kind->id == KIND_SIGNATURE))
            m_refusals.add(field + " needs one rectangle");
        else if (count > 1 && m_kind->id == KIND_RADIO && count != m_states.size())
            m_refusals.add(field + " needs one rectangle, or one for each button");
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

    static std::string parent_entry(const CPDFField* parent)
    {
        return parent ? "/Parent " + ref_syntax(parent->m_ref) : "";
    }

    // The entries that make a dictionary the field.
    std::string field_entries(const CPDFField* parent) const
    {
        std::string out = std::string("/FT/") + m_shape.kind->type_key + "/T " + string_syntax(last_part(m_field.name));
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
        if (m_kind->id == KIND_PUSH)
            return out + neutral_scripts(parent);
        for (const char* key : {"V", "DV"}) {
            CPDFObj value;
            if (button ? key == std::string("V") || inherited_entry(parent, key, value)
                       : m_kind->id != KIND_SIGNATURE && inherited_entry(parent, key, value))
                out += std::string("/") + key + (button ? "/Off" : "()");
        }
        return out + neutral_scripts(parent);
    }

    static std::string neutral_scripts(const CPDFField* parent)
    {
        CPDFObj scripts;
        return inherited_entry(parent, "AA", scripts) ? "/AA<<>>" : "";
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

    // The entries that make a dictionary a widget; `state` is what a button has when it is on, empty for other kinds.
    std::string widget_entries(const PDF_PLACE& place, const std::string& state) const
    {
        std::string marks = m_kind->marks;
        if (const int32_t turn = upright_turn(m_target, place.page))
            marks += "/R " + std::to_string(turn);
        const std::string out = "/Type/Annot/Subtype/Widget/F 4/P " + ref_syntax(m_target.pages.page_ref(place.page)) +
                                "/Rect" + rect_syntax(place.rect) + "/BS<</W 1/S/" + m_kind->border + ">>/MK<<" +
                                marks + ">>";
        return state.empty() ? out : out + "/AS/Off/AP<</N<<" + name_syntax(state) + "<<>>/Off<<>>>>>>";
    }

    // The state of the widget of that index.
    std::string state_of(size_t index) const
    {
        return m_kind->id == KIND_RADIO ? m_states[index] : m_kind->id == KIND_CHECK ? m_states[0] : "";
    }

    PDF_REF make_merged(const CPDFField* parent)
    {
        const PDF_PLACE& place = m_field.places[0];
        const std::string entries = field_entries(parent) + widget_entries(place, state_of(0));
        const PDF_REF ref = new_object(m_target.xref, "<<" + entries + ">>");
        if (ref.num)
            (void)list_on_pages(m_target, {{place.page, {ref}}});
        return ref;
    }

    // Where the widget of that index stands: at its own place, or in a square in its share of the common one, as the page is
    // read when it is shown.
    PDF_PLACE place_of(size_t index) const
    {
        if (m_field.places.size() > 1)
            return m_field.places[index];
        PDF_RECT rect = m_field.places[0].rect;
        const auto count = static_cast<double>(m_states.size());
        const auto place = static_cast<double>(index);
        const int32_t turn = upright_turn(m_target, m_field.places[0].page);
        if (rect.width >= rect.height) {
            rect.width /= count;
            rect.x += rect.width * (turn < 180 ? place : count - 1 - place);
        } else {
            rect.height /= count;
            rect.y += rect.height * (turn == 90 || turn == 180 ? place : count - 1 - place);
        }
        const double side = std::min(rect.width, rect.height);
        return {{rect.x + (rect.width - side) / 2, rect.y + (rect.height - side) / 2, side, side},
                m_field.places[0].page};
    }

    // The field comes before its widgets, which name it.
    PDF_REF make_group(const CPDFField* parent)
    {
        const PDF_REF group = new_object(m_target.xref, "null");
        std::string kids;
        PDF_PAGE_WIDGETS listed;
        const size_t count = m_kind->id == KIND_RADIO ? m_states.size() : m_field.places.size();
        for (size_t i = 0; i < count; ++i) {
            const PDF_PLACE place = place_of(i);
            const std::string entries = "/Parent " + ref_syntax(group) + widget_entries(place, state_of(i));
            const PDF_REF widget = new_object(m_target.xref, "<<" + entries + ">>");
            if (widget.num)
                listed[place.page].push_back(widget);
            kids += " " + ref_syntax(widget);
        }
        (void)list_on_pages(m_target, listed);
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
