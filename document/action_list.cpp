#include "document/action_list.h"

#include <iterator>
#include <memory>
#include <unordered_map>
#include <unordered_set>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/compute/document_scripts.h"
#include "document/document.h"
#include "document/lookup/field_text.h"
#include "document/lookup/page_map.h"
#include "engine/action.h"
#include "engine/annot_widget.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_walk.h"

namespace {

// The keys of "AA" (ISO 32000-2, tables 197 to 200). One letter means different things to a field, a page and the
// document.
struct EVENT {
    const char* key;
    const char* name;
};

constexpr EVENT FIELD_EVENTS[] = {
    {"K", "keystroke"},  {"F", "format"},      {"V", "validate"},      {"C", "calculate"},       {"E", "mouse enter"},
    {"X", "mouse exit"}, {"D", "mouse down"},  {"U", "mouse up"},      {"Fo", "focus"},          {"Bl", "blur"},
    {"PO", "page open"}, {"PC", "page close"}, {"PV", "page visible"}, {"PI", "page invisible"},
};
constexpr EVENT PAGE_EVENTS[] = {{"O", "open"}, {"C", "close"}};
constexpr EVENT DOCUMENT_EVENTS[] = {
    {"WC", "will close"}, {"WS", "will save"}, {"DS", "did save"}, {"WP", "will print"}, {"DP", "did print"},
};

constexpr CPDFKeySet ACTION_KEYS{"A", "AA", "Subtype"};
constexpr CPDFKeySet PAGE_KEYS{"AA", "Annots"};
constexpr CPDFKeySet BOOKMARK_KEYS{"A", "Title", "First", "Next"};

class ActionLister {
public:
    ActionLister(CPDFDocument& document, const std::function<void(const PDF_LISTED_ACTION&)>& visit)
        : m_document(document), m_xref(document.xref()), m_visit(visit)
    {
        for_each_field(document.form(), [this](CPDFField& field) {
            m_fields.emplace(field.m_ref.num, &field);
            for (const CPDFAnnotWidget* widget : m_document.widgets_of(field))
                m_widgets.insert(widget->m_ref.num);
        });
    }

    void list_document()
    {
        const CPDFDictionary& root = *m_document.root().dict;
        m_at = PDF_LISTED_ACTION();
        m_at.object = m_document.root_ref().num;
        // A destination is no action.
        const CPDFObj* open = root.get_item("OpenAction");
        if (const CPDFEntryView action(&m_xref, open); action->dictionary())
            list(*open, "open");
        list_events(root.get_item("AA"), DOCUMENT_EVENTS);
        visit_document_scripts(
            m_xref, root, [this](const std::string& name, const CPDFObj& action) { list(action, "script " + name); });
    }

    // The items of "Outlines" from the top down (ISO 32000-2, 12.3.3).
    void list_bookmarks()
    {
        m_at = PDF_LISTED_ACTION();
        const CPDFEntryView outlines(&m_xref, m_document.root().dict->get_item("Outlines"));
        std::vector<PDF_REF> pending;
        const auto push = [&pending](const CPDFDictionary* dict, const char* key) {
            const CPDFObj* entry = dict ? dict->get_item(key) : nullptr;
            if (entry && entry->type == PDF_OBJ_REF)
                pending.push_back(entry->ref);
        };
        push(outlines->dictionary(), "First");
        while (!pending.empty()) {
            const PDF_REF ref = pending.back();
            pending.pop_back();
            CPDFObj item;
            if (m_seen.insert(ref.num).second)
                m_xref.get_entity(item, ref, &BOOKMARK_KEYS);
            const CPDFDictionary* dict = item.dictionary();
            push(dict, "Next");
            push(dict, "First");
            if (const CPDFObj* action = dict ? dict->get_item("A") : nullptr) {
                m_at.object = ref.num;
                PDF_String title;
                m_xref.read_obj_string(title, dict->get_item("Title"));
                list(*action, "bookmark " + utf8_of(title));
                title.release();
            }
        }
    }

    void list_pages()
    {
        CPDFPageMap pages;
        pages.load(m_xref, m_document.root());
        for (int32_t page = 1; page <= pages.page_count(); ++page) {
            const PDF_REF& ref = pages.page_ref(page);
            CPDFObj own;
            if (m_seen.insert(ref.num).second)
                m_xref.get_entity(own, ref, &PAGE_KEYS);
            m_at = PDF_LISTED_ACTION();
            m_at.page = page;
            m_at.object = ref.num;
            if (!own.dictionary())
                continue;
            list_events(own.dict->get_item("AA"), PAGE_EVENTS);
            list_annotations(own.dict->get_item("Annots"), ref.num);
        }
    }

    void list_field(CPDFField& field)
    {
        m_at = PDF_LISTED_ACTION();
        m_at.field = &field;
        list_holder(field.m_ref);
        for (const CPDFAnnotWidget* widget : m_document.widgets_of(field)) {
            if (!m_fields.count(widget->m_ref.num))
                list_holder(widget->m_ref);
        }
        if (field.m_xfa_event == XFA_EVENT_NONE)
            return;
        m_at.object = 0;
        m_at.event = "XFA event";
        m_at.type = field.m_xfa_event == XFA_EVENT_SUBMIT ? "submit" : "reset";
        m_at.target = field.m_xfa_target ? field.m_xfa_target : "";
        m_visit(m_at);
    }

private:
    // Those that show no field. A list that pages share counts for the first.
    void list_annotations(const CPDFObj* entry, uint32_t page)
    {
        if (entry && entry->type == PDF_OBJ_REF && !m_seen.insert(entry->ref.num).second)
            return;
        const CPDFEntryView annotations_entry(&m_xref, entry);
        const CPDFArray* annotations = annotations_entry->array();
        for (int32_t i = 0; annotations && i < annotations->count; ++i) {
            const CPDFObj& at = annotations->items[i];
            const uint32_t num = at.type == PDF_OBJ_REF ? at.ref.num : 0;
            if (num && !m_fields.count(num) && !m_widgets.count(num) && m_seen.insert(num).second)
                list_holder(at.ref);
            m_at.object = page;
            if (const CPDFDictionary* direct = at.dictionary())
                list_holder(*direct);
        }
    }

    // The actions of the dictionary of a field or an annotation.
    void list_holder(const PDF_REF& ref)
    {
        CPDFObj own;
        m_xref.get_entity(own, ref, &ACTION_KEYS);
        m_at.object = ref.num;
        if (own.dictionary())
            list_holder(*own.dict);
    }

    void list_holder(const CPDFDictionary& dict)
    {
        if (const CPDFObj* action = dict.get_item("A"))
            list(*action, "activate");
        list_events(dict.get_item("AA"), FIELD_EVENTS);
    }

    template <size_t N>
    void list_events(const CPDFObj* entry, const EVENT (&events)[N])
    {
        const CPDFEntryView dict_entry(&m_xref, entry);
        const CPDFDictionary* dict = dict_entry->dictionary();
        for (const EVENT& event : events) {
            const CPDFObj* action = dict ? dict->get_item(event.key) : nullptr;
            if (action)
                list(*action, event.name);
        }
    }

    void list(const CPDFObj& entry, const std::string& event)
    {
        const std::unique_ptr<CPDFAction> action(CPDFAction::parser_act(&m_xref, &entry));
        m_at.event = event;
        if (action)
            list(*action);
    }

    void list(const CPDFAction& action)
    {
        m_at.type = action.type_name();
        m_at.script = utf8_of(action.m_script);
        m_at.target = utf8_of(action.m_target);
        m_at.flags = action.m_flags;
        m_at.fields.clear();
        const CPDFArray* several = action.m_fields.array();
        for (int32_t i = 0; i < (several ? several->count : 1); ++i)
            add_target_field(several ? several->items[i] : action.m_fields);
        m_visit(m_at);
        for (const auto& next : action.m_next)
            list(*next);
    }

    void add_target_field(const CPDFObj& entry)
    {
        const auto found = entry.type == PDF_OBJ_REF ? m_fields.find(entry.ref.num) : m_fields.end();
        if (found != m_fields.end())
            m_at.fields.push_back(full_name(*found->second));
        else if (entry.type == PDF_OBJ_STRING)
            m_at.fields.push_back(utf8_of(entry.str));
    }

    CPDFDocument& m_document;
    CPDFXRefTable& m_xref;
    const std::function<void(const PDF_LISTED_ACTION&)>& m_visit;
    std::unordered_map<uint32_t, const CPDFField*> m_fields;  // borrowed, by object number
    std::unordered_set<uint32_t> m_widgets;                   // of these fields
    std::unordered_set<uint32_t> m_seen;                      // objects that were listed, and those that list them
    PDF_LISTED_ACTION m_at;                                   // the one that is being filled in
};

}  // namespace

CPDFStatus list_actions(CPDFDocument& document, CPDFField* only,
                        const std::function<void(const PDF_LISTED_ACTION&)>& visit)
{
    const CPDFReadAllowance allowance = document.reading();
    ActionLister lister(document, visit);
    const auto list_field = [&lister](CPDFField& field) { lister.list_field(field); };
    if (only) {
        for_each_field(*only, list_field);
    } else {
        lister.list_document();
        lister.list_bookmarks();
        lister.list_pages();
        for_each_field(document.form(), list_field);
    }
    if (allowance.used_up())
        return CPDFStatus::failed(PDF_CODE::LIMIT,
                                  "the actions take more work to read than the size of the file justifies");
    return {};
}

std::vector<CPDFField*> calculation_order(CPDFDocument& document)
{
    const CPDFReadAllowance allowance = document.reading();
    std::unordered_map<uint32_t, CPDFField*> fields;
    for_each_field(document.form(), [&fields](CPDFField& field) { fields.emplace(field.m_ref.num, &field); });
    CPDFXRefTable& xref = document.xref();
    const CPDFObj* entry = document.root().dict->get_item(CPDFDictionary::sm_tag_acro_form);
    const CPDFEntryView form_entry(&xref, entry);
    const CPDFDictionary* form = form_entry->dictionary();
    const CPDFEntryView order_entry(&xref, form ? form->get_item("CO") : nullptr);
    const CPDFArray* order = order_entry->array();
    std::vector<CPDFField*> found;
    for (int32_t i = 0; order && i < order->count; ++i) {
        const auto field = order->items[i].type == PDF_OBJ_REF ? fields.find(order->items[i].ref.num) : fields.end();
        if (field != fields.end())
            found.push_back(field->second);
    }
    return found;
}
