#include "document/look/redraw.h"

#include <algorithm>

#include "appearance/appearance_stream.h"
#include "appearance/draw/widget_picture.h"
#include "appearance/form_fonts.h"
#include "appearance/widget_reader.h"
#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/text.h"
#include "core/xref_table.h"
#include "document/look/shown_value.h"
#include "document/lookup/field_options.h"
#include "document/lookup/field_text.h"
#include "engine/annot_widget.h"
#include "forms/field.h"

namespace {

bool has_states(WIDGET_KIND kind)
{
    return kind == WIDGET_KIND::CHECK_BOX || kind == WIDGET_KIND::RADIO_BUTTON;
}

bool is_same(const WIDGET_PICTURE& a, const WIDGET_PICTURE& b)
{
    const auto same_font = [](const PICTURE_FONT& x, const PICTURE_FONT& y) { return x.font == y.font; };
    return a.width == b.width && a.height == b.height && a.content == b.content &&
           std::equal(std::begin(a.matrix), std::end(a.matrix), std::begin(b.matrix)) &&
           std::equal(a.fonts.begin(), a.fonts.end(), b.fonts.begin(), b.fonts.end(), same_font);
}

// Icons are other programs' drawings, which a button made of its caption alone would lose.
bool shows_icon(CPDFXRefTable& xref, const WIDGET_DESCRIPTION& widget)
{
    const CPDFDictionary& dict = *widget.dictionary.dict;
    const CPDFEntryView marks(&xref, widget.look.kind == WIDGET_KIND::PUSH_BUTTON ? dict.get_item("MK") : nullptr);
    return dict.get_item("AP") && marks->dictionary() && marks->dict->get_item("I") &&
           resolve_integer(&xref, marks->dict->get_item("TP")) != 0;
}

// What push buttons and signatures show is their own unless they are to look anew; a signature shows what was signed.
bool may_draw(const CPDFField& field, const WIDGET_DESCRIPTION& widget, bool anew)
{
    if (field.m_type == FIELD_SIGNATURE)
        return anew && field.m_value.type == PDF_OBJ_NULL;
    return widget.look.kind != WIDGET_KIND::PUSH_BUTTON || !widget.dictionary.dict->get_item("AP");
}

}  // namespace

struct CPDFRedraw::SHARED_PICTURE {
    WIDGET_PICTURE picture;
    PDF_REF ref;
};

CPDFRedraw::CPDFRedraw(CPDFXRefTable& xref, const CPDFDictionary* form)
    : m_xref(xref),
      m_fonts(std::make_unique<CPDFFormFonts>(xref)),
      m_reader(std::make_unique<CPDFWidgetReader>(xref, *m_fonts, form)),
      m_options(std::make_unique<CPDFOptionIndex>())
{
}

CPDFRedraw::~CPDFRedraw() = default;

size_t CPDFRedraw::draw(const CPDFField& field, const std::vector<PDF_DRAWN_WIDGET>& widgets)
{
    return draw(field, widgets, WIDGETS::ALL);
}

size_t CPDFRedraw::draw_missing(const CPDFField& field, const std::vector<PDF_DRAWN_WIDGET>& widgets)
{
    return draw(field, widgets, WIDGETS::WITHOUT_APPEARANCE);
}

size_t CPDFRedraw::draw_anew(const CPDFField& field, const std::vector<PDF_DRAWN_WIDGET>& widgets)
{
    return draw(field, widgets, WIDGETS::ANEW);
}

size_t CPDFRedraw::draw(const CPDFField& field, const std::vector<PDF_DRAWN_WIDGET>& widgets, WIDGETS which)
{
    const VXFailureCheck memory;
    m_pictures.clear();
    size_t drawn = 0;
    for (const PDF_DRAWN_WIDGET& at : widgets) {
        WIDGET_DESCRIPTION widget;
        if (!m_reader->read(field, at.ref, widget))
            continue;
        ++drawn;
        if (which == WIDGETS::WITHOUT_APPEARANCE && widget.dictionary.dict->get_item("AP"))
            continue;
        if (which == WIDGETS::ANEW && shows_icon(m_xref, widget)) {
            m_notes.push_back("field " + in_quotes(full_name(field)) + " shows an icon: its picture stays as it is");
            continue;
        }
        if (which == WIDGETS::ANEW)
            widget.dictionary.dict->remove_item("AP");
        if (has_states(widget.look.kind))
            draw_states(field, at, widget);
        else if (may_draw(field, widget, which == WIDGETS::ANEW))
            draw_one(field, at.ref, widget);
    }
    m_pictures.clear();
    m_failed = m_failed || memory.failed();
    return drawn;
}

// What the appearance had for the pressed and the touched widget showed the value before.
void CPDFRedraw::draw_one(const CPDFField& field, const PDF_REF& ref, WIDGET_DESCRIPTION& widget)
{
    if (field.m_type == FIELD_UNKNOWN || left_some())
        return;
    set_shown_value(field, *m_options, m_compute, widget);
    if (!spend_characters(widget))
        return;
    WIDGET_PICTURE picture = draw_widget(widget.look, WIDGET_STATE::OFF);
    note_missing(field, picture.missing);
    const PDF_REF stream = stored(std::move(picture));
    CPDFObj appearances;
    if (CPDFDictionary* dict = appearances.set_dict())
        dict->set_item_ref("N", stream);
    store("AP", ref, appearances);
}

// False for what would be too much, and for all after it.
bool CPDFRedraw::spend_characters(const WIDGET_DESCRIPTION& widget)
{
    m_characters += widget.look.text.size();
    for (const std::u32string& row : widget.look.rows)
        m_characters += row.size() + 1;
    if (left_some())
        m_notes.emplace_back("some fields are left for viewers to draw: the texts of all together are too long");
    return !left_some();
}

// Adds the states that the widget lacks to the ones it has.
void CPDFRedraw::draw_states(const CPDFField& field, const PDF_DRAWN_WIDGET& at, WIDGET_DESCRIPTION& widget)
{
    CPDFObj appearances;
    resolve_obj(&m_xref, widget.dictionary.dict->get_item("AP"), appearances);
    if (!appearances.dictionary())
        appearances.set_dict();
    CPDFObj* slot = appearances.dictionary() ? appearances.dict->value_slot("N") : nullptr;
    CPDFObj normal;
    resolve_obj(&m_xref, slot, normal);
    if (!slot || normal.type == PDF_OBJ_STREAM)
        return;
    if (!normal.dictionary())
        normal.set_dict();
    bool added = false;
    const std::pair<const char*, WIDGET_STATE> states[] = {{at.on_state.c_str(), WIDGET_STATE::ON},
                                                           {PDF_STATE_OFF, WIDGET_STATE::OFF}};
    const bool has_any = normal.dictionary() && normal.dict->count > 0;
    for (const auto& [name, state] : states) {
        const CPDFObj* known = normal.dictionary() ? normal.dict->get_item(name) : nullptr;
        // Without a picture for "Off" a widget shows nothing, which may be what its maker wants.
        if (!*name || !normal.dictionary() || (known && known->type == PDF_OBJ_REF) ||
            (has_any && state == WIDGET_STATE::OFF))
            continue;
        normal.dict->set_item_ref(name, stored(draw_widget(widget.look, state)));
        added = true;
    }
    slot->take(normal);
    if (!added)
        return;
    store("AP", at.ref, appearances);
    if (widget.dictionary.dict->get_item("AS"))
        return;
    CPDFObj state;
    state.set_name(field.m_value.is_name(at.on_state.c_str()) ? at.on_state.c_str() : PDF_STATE_OFF);
    store("AS", at.ref, state);
}

PDF_REF CPDFRedraw::stored(WIDGET_PICTURE picture)
{
    for (const SHARED_PICTURE& known : m_pictures) {
        if (is_same(known.picture, picture))
            return known.ref;
    }
    const PDF_REF ref = store_picture(m_xref, *m_fonts, picture);
    m_failed = m_failed || !ref.num;
    constexpr size_t MOST = 64;  // every picture is compared with them
    if (m_pictures.size() < MOST)
        m_pictures.push_back({std::move(picture), ref});
    return ref;
}

void CPDFRedraw::store(const char* key, const PDF_REF& ref, const CPDFObj& value)
{
    const PDF_ENTRY_CHANGE change[] = {{key, &value}};
    if (!m_failed && m_xref.change_entries(ref, change) == PDF_CHANGE_RESULT::NO_MEMORY)
        m_failed = true;
}

void CPDFRedraw::note_missing(const CPDFField& field, const std::u32string& missing)
{
    if (missing.empty())
        return;
    std::string characters;
    for (const char32_t c : missing) {
        char bytes[4];
        characters.append(bytes, static_cast<size_t>(utf8_from_ucs(static_cast<uint32_t>(c), bytes)));
    }
    const std::string why = CPDFFormFonts::problem();
    m_notes.push_back("field " + in_quotes(full_name(field)) + " can't be shown whole: no font here has " +
                      in_quotes(characters) + (why.empty() ? "" : " (" + why + ")"));
}

CPDFStatus CPDFRedraw::finish(std::vector<std::string>& notes)
{
    const VXFailureCheck memory;
    const bool embedded = m_fonts->embed();
    const bool failed = m_failed || memory.failed();
    m_failed = false;
    m_characters = 0;
    if (failed)
        return CPDFStatus::failed(PDF_CODE::NO_MEMORY, "there is not enough memory to draw the fields");
    if (!embedded)
        m_notes.emplace_back("a font of this machine could not be embedded");
    notes.insert(notes.end(), m_notes.begin(), m_notes.end());
    m_notes.clear();
    return {};
}

void CPDFRedraw::options_changed()
{
    *m_options = CPDFOptionIndex();
}

void CPDFRedraw::changes_dropped()
{
    options_changed();
    m_fonts->changes_dropped();
    m_pictures.clear();
    m_notes.clear();
    m_characters = 0;
    m_failed = false;
}
