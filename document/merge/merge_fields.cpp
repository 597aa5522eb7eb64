#include <cstring>
#include <unordered_map>
#include <unordered_set>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/edit/field_tree.h"
#include "document/edit/inheritance.h"
#include "document/lookup/field_text.h"
#include "document/lookup/value_text.h"
#include "document/merge/merge_internal.h"
#include "forms/acro_form.h"
#include "forms/field.h"

namespace {

constexpr const char* KIDS = "Kids";
constexpr const char* ACTIONS = "AA";

// What a dictionary that is field and widget at once says of the field (ISO 32000-2, 12.7.4), and the events of its actions.
constexpr const char* FIELD_KEYS[] = {"FT", "T", "TU",  "TM", "Ff",     "V",  "DV",  "RV",
                                      "DS", "I", "Opt", "TI", "MaxLen", "SV", "Lock"};
constexpr const char* FIELD_EVENTS[] = {"K", "F", "V", "C"};

// The values of one list, as one that is put into a field.
CPDFValue value_of(const CPDFField& field)
{
    const PDF_VALUE_TEXT text = value_text(*field.m_xref, field.m_value);
    if (text.is_list)
        return text.items;
    return text.text;
}

bool is_empty(const CPDFField& field)
{
    const PDF_VALUE_TEXT text = value_text(*field.m_xref, field.m_value);
    return text.joined().empty() || (field.m_type == FIELD_BUTTON && text.text == "Off");
}

class FormMerge {
public:
    FormMerge(MERGE& merge, CPDFDictionary& form, const CPDFDictionary& other)
        : m_merge(merge), m_xref(merge.into.xref), m_form(form), m_other(other)
    {
    }

    CPDFStatus run(const FIELD_PLAN& plan)
    {
        const VXFailureCheck memory;
        for (const FIELD_PAIR& pair : plan.groups)
            m_merge.copier.place(pair.field->m_ref.num, pair.other->m_ref);
        for (const FIELD_PAIR& pair : plan.joined)
            join(pair);
        for (const FIELD_PLACEMENT& placement : plan.placements)
            place(placement);
        for (auto& [parent, kids] : m_kids)
            add_kids(parent, kids);
        // Fields that became widgets have another in their place, under groups and at the top.
        for (auto& [parent, fields] : m_replaced)
            replace_kids(parent, fields);
        merge_order();
        return memory.failed() ? no_memory_to_edit() : CPDFStatus();
    }

private:
    using Replaced = std::unordered_map<uint32_t, PDF_REF>;

    // What a field of the source needs of its own, since nothing above it hands it down any more.
    void keep_inherited(const CPDFField& field, const CPDFField* parent, CPDFDictionary& entries)
    {
        INHERITANCE inherited;
        collect_inherited(field, parent, inherited);
        for (const PDF_ENTRY_CHANGE& change : inherited.changes) {
            CPDFObj value;
            value.copy_from(change.value);
            adapt(change.key, value);
            entries.set_item(change.key, &value);
        }
        keep_form_default(field, "DA", entries);
        keep_form_default(field, "Q", entries);
    }

    void adapt(const char* key, CPDFObj& value)
    {
        CPDFObj holder;
        if (CPDFDictionary* dict = holder.set_dict()) {
            dict->set_item(key, &value);
            m_merge.copier.renumber(holder);
            value.free();
            if (CPDFObj* renumbered = holder.dict->get_item(key))
                value.take(*renumbered);
        }
    }

    // The form's own default, where neither the field nor one above it has one and the other form's would come in its place.
    void keep_form_default(const CPDFField& field, const char* key, CPDFDictionary& entries)
    {
        CPDFObj unused;
        const CPDFObj* entry = m_other.get_item(key);
        if (entries.get_item(key) || inherited_entry(&field, key, unused) || (!entry && !m_form.get_item(key)))
            return;
        CPDFObj value;
        CPDFObj above;
        resolve_obj(&m_merge.from.xref, entry, value);
        if (!entry && std::strcmp(key, "Q") == 0)
            value.set_int(0);
        if (value.type == PDF_OBJ_NULL)
            return;
        adapt(key, value);
        entries.set_item(key, &value);
    }

    void place(const FIELD_PLACEMENT& placement)
    {
        const uint32_t num = placement.field->m_ref.num;
        CPDFDictionary& entries = m_merge.copier.entries_of(num);
        keep_inherited(*placement.field, placement.parent, entries);
        if (!placement.name.empty()) {
            PDF_String name = pdf_string_of(placement.name);
            entries.set_item_str("T", name.buf, name.len);
            name.release();
        }
        set_parent(entries, placement.parent ? placement.parent->m_ref : PDF_REF{0, 0});
        m_kids[placement.parent ? placement.parent->m_ref.num : 0].push_back(m_merge.copier.copied(num));
    }

    static void set_parent(CPDFDictionary& entries, const PDF_REF& parent)
    {
        CPDFObj* slot = entries.value_slot(CPDFDictionary::sm_tag_parent);
        if (slot && parent.num)
            slot->set_ref(parent);
    }

    // The widgets of `pair.field` become widgets of the other field.
    void join(const FIELD_PAIR& pair)
    {
        const PDF_REF field = with_kids(*pair.other);
        std::vector<PDF_REF>& kids = m_kids[field.num];
        CPDFObj dict;
        m_merge.from.xref.get_entity(dict, pair.field->m_ref);
        if (!dict.dictionary())
            return;
        const CPDFEntryView list(&m_merge.from.xref, dict.dict->get_item(KIDS));
        if (!list->array()) {
            if (dict.dict->get_item("Rect"))
                kids.push_back(as_widget(*pair.field, *dict.dict, field));
        } else {
            m_merge.copier.place(pair.field->m_ref.num, field);
            for (int32_t i = 0; i < list->arr->count; ++i) {
                if (list->arr->items[i].type == PDF_OBJ_REF)
                    kids.push_back(kid_of(*pair.field, list->arr->items[i].ref.num, field));
            }
        }
        extend_options(*pair.field, field);
        if (is_empty(*pair.field) == is_empty(*pair.other))
            return;
        m_merge.result.values.push_back({field, value_of(is_empty(*pair.other) ? *pair.field : *pair.other)});
        if (pair.field->m_type == FIELD_BUTTON)
            m_merge.result.notes.push_back("field " + in_quotes(full_name(*pair.other)) +
                                           " is off in one of the documents: it shows the other one's state in both");
    }

    // How its texts look a widget takes from its own field.
    void keep_look(const CPDFField& field, const CPDFDictionary* own, CPDFDictionary& entries)
    {
        for (const char* key : {"DA", "Q"}) {
            CPDFObj value;
            if (own && own->get_item(key))
                continue;
            if (inherited_entry(&field, key, value)) {
                adapt(key, value);
                entries.set_item(key, &value);
            }
            keep_form_default(field, key, entries);
        }
    }

    PDF_REF kid_of(const CPDFField& field, uint32_t num, const PDF_REF& parent)
    {
        CPDFObj own;
        m_merge.from.xref.get_entity(own, {num, 0});
        CPDFDictionary& entries = m_merge.copier.entries_of(num);
        keep_look(field, own.dictionary(), entries);
        set_parent(entries, parent);
        return m_merge.copier.copied(num);
    }

    PDF_REF as_widget(const CPDFField& field, const CPDFDictionary& own, const PDF_REF& parent)
    {
        m_joined_widgets.insert(field.m_ref.num);
        CPDFDictionary& entries = m_merge.copier.entries_of(field.m_ref.num);
        for (const char* key : FIELD_KEYS)
            entries.value_slot(key);
        CPDFObj actions;
        if (CPDFDictionary* dict = copy_dictionary(m_merge.from.xref, own, ACTIONS, actions)) {
            for (const char* event : FIELD_EVENTS)
                dict->remove_item(event);
            adapt(ACTIONS, actions);
            if (CPDFObj* slot = entries.value_slot(ACTIONS); slot && actions.dictionary() && actions.dict->count)
                slot->take(actions);
        }
        keep_look(field, &own, entries);
        set_parent(entries, parent);
        return m_merge.copier.copied(field.m_ref.num);
    }

    // The export values of buttons go by the place of the widget.
    void extend_options(const CPDFField& field, const PDF_REF& joined)
    {
        CPDFObj other;
        CPDFObj all;
        m_xref.get_entity(all, joined);
        m_merge.from.xref.get_entity(other, field.m_ref);
        if (field.m_type != FIELD_BUTTON || !all.dictionary() || !other.dictionary() || !other.dict->get_item("Opt"))
            return;
        CPDFObj added;
        CPDFObj options;
        CPDFArray* list = copy_array(m_xref, *all.dict, "Opt", options);
        const CPDFArray* more = copy_array(m_merge.from.xref, *other.dict, "Opt", added);
        for (int32_t i = 0; list && more && i < more->count; ++i) {
            m_merge.copier.renumber(more->items[i]);
            if (CPDFObj* slot = list->append())
                slot->take(more->items[i]);
        }
        all.dict->set_item("Opt", &options);
        m_xref.take_changed(joined, all);
    }

    // The field as one that has its widgets as kids. One that is its own widget stays the widget, as pages and structure know
    // it; what it says of the field moves to a new dictionary, which takes its place among the fields.
    PDF_REF with_kids(const CPDFField& field)
    {
        if (const auto done = m_new_fields.find(field.m_ref.num); done != m_new_fields.end())
            return done->second;
        CPDFObj widget;
        m_xref.get_entity(widget, field.m_ref);
        if (!widget.dictionary() || widget.dict->get_item(KIDS) || !widget.dict->get_item("Rect"))
            return field.m_ref;
        const PDF_REF ref = {m_xref.new_obj_num(), 0};
        CPDFObj own;
        CPDFDictionary* dict = own.set_dict();
        if (!dict)
            return field.m_ref;
        for (const char* key : {"Parent", "DA", "Q"})
            dict->set_item(key, widget.dict->get_item(key));
        for (const char* key : FIELD_KEYS) {
            dict->set_item(key, widget.dict->get_item(key));
            widget.dict->remove_item(key);
        }
        split_actions(*widget.dict, *dict);
        if (CPDFObj* slot = dict->value_slot(KIDS)) {
            if (CPDFArray* kids = slot->set_array())
                kids->append_ref(field.m_ref);
        }
        widget.dict->set_item_ref(CPDFDictionary::sm_tag_parent, ref);
        m_replaced[field.m_parent ? field.m_parent->m_ref.num : 0].emplace(field.m_ref.num, ref);
        m_new_fields.emplace(field.m_ref.num, ref);
        m_xref.take_changed(ref, own);
        m_xref.take_changed(field.m_ref, widget);
        return ref;
    }

    void split_actions(CPDFDictionary& widget, CPDFDictionary& field)
    {
        CPDFObj actions;
        CPDFObj events;
        CPDFDictionary* rest = copy_dictionary(m_xref, widget, ACTIONS, actions);
        CPDFDictionary* moved = events.set_dict();
        if (!rest || !moved || rest->count == 0)
            return;
        for (const char* event : FIELD_EVENTS) {
            moved->set_item(event, rest->get_item(event));
            rest->remove_item(event);
        }
        if (moved->count)
            field.set_item(ACTIONS, &events);
        if (rest->count)
            widget.set_item(ACTIONS, &actions);
        else
            widget.remove_item(ACTIONS);
    }

    // Calls `change(CPDFArray&)` for the list of the fields under `parent`, or of those at the top for 0.
    template <typename Change>
    void change_list(uint32_t parent, const Change& change)
    {
        CPDFObj group;
        if (parent)
            m_xref.get_entity(group, {parent, 0});
        CPDFDictionary* owner = parent ? group.dictionary() : &m_form;
        const char* key = parent ? KIDS : "Fields";
        CPDFObj list;
        CPDFArray* array = owner ? copy_array(m_xref, *owner, key, list) : nullptr;
        if (!array)
            return;
        change(*array);
        owner->set_item(key, &list);
        if (parent)
            m_xref.take_changed({parent, 0}, group);
    }

    void add_kids(uint32_t parent, const std::vector<PDF_REF>& kids)
    {
        change_list(parent, [&kids](CPDFArray& list) {
            for (const PDF_REF& kid : kids)
                list.append_ref(kid);
        });
    }

    void replace_kids(uint32_t parent, const Replaced& fields)
    {
        change_list(parent, [&fields](CPDFArray& list) { replace(list, fields); });
    }

    static void replace(CPDFArray& list, const Replaced& fields)
    {
        for (int32_t i = 0; i < list.count; ++i) {
            const auto found = list.items[i].type == PDF_OBJ_REF ? fields.find(list.items[i].ref.num) : fields.end();
            if (found != fields.end())
                list.items[i].set_ref(found->second);
        }
    }

    // The calculation order. What both list is calculated where the first does.
    void merge_order()
    {
        CPDFObj order;
        CPDFObj added;
        CPDFArray* list = copy_array(m_xref, m_form, "CO", order);
        const CPDFArray* more = copy_array(m_merge.from.xref, m_other, "CO", added);
        if (!list || !more || (list->count == 0 && more->count == 0))
            return;
        replace(*list, m_new_fields);
        std::unordered_set<uint32_t> listed;
        for (int32_t i = 0; i < list->count; ++i)
            listed.insert(list->items[i].ref.num);
        for (int32_t i = 0; i < more->count; ++i) {
            CPDFObj& entry = more->items[i];
            const bool joined = entry.type == PDF_OBJ_REF && m_joined_widgets.count(entry.ref.num) > 0;
            if (entry.type != PDF_OBJ_REF || joined)
                continue;
            m_merge.copier.renumber(entry);
            if (entry.type == PDF_OBJ_REF && listed.insert(entry.ref.num).second)
                list->append_ref(entry.ref);
        }
        m_form.set_item("CO", &order);
    }

    MERGE& m_merge;  // borrowed from the caller, as the following
    CPDFXRefTable& m_xref;
    CPDFDictionary& m_form;
    const CPDFDictionary& m_other;
    std::unordered_map<uint32_t, std::vector<PDF_REF>> m_kids;  // by the field they come under, 0 for the top
    std::unordered_map<uint32_t, Replaced> m_replaced;          // the same for fields that others stand for
    Replaced m_new_fields;                                      // all of them
    std::unordered_set<uint32_t> m_joined_widgets;              // fields of the source that are only widgets now
};

void drop_xfa(MERGE& merge, CPDFDictionary& form, const CPDFDictionary& other)
{
    if (form.get_item("XFA"))
        merge.result.notes.emplace_back("the form it is appended to loses its XFA data, which describe other pages");
    if (other.get_item("XFA"))
        merge.result.notes.emplace_back("its XFA data are dropped");
    form.remove_item("XFA");
    merge.catalog.remove_item("NeedsRendering");
}

}  // namespace

CPDFStatus merge_form(MERGE& merge, const FIELD_PLAN& plan)
{
    CPDFXRefTable& xref = merge.into.xref;
    CPDFObj form;
    xref.get_entity(form, merge.into.form.m_ref);
    if (!form.dictionary())
        return no_memory_to_edit();
    CPDFObj other;
    const CPDFDictionary* theirs =
        copy_dictionary(merge.from.xref, merge.other, CPDFDictionary::sm_tag_acro_form, other);
    if (!theirs)
        return no_memory_to_edit();
    drop_xfa(merge, *form.dict, *theirs);
    merge_resources(merge, *form.dict, *theirs);
    if (CPDFStatus status = FormMerge(merge, *form.dict, *theirs).run(plan); !status.ok())
        return status;
    const int32_t flags = resolve_integer(&xref, form.dict->get_item("SigFlags")) |
                          resolve_integer(&merge.from.xref, theirs->get_item("SigFlags"));
    if (flags)
        form.dict->set_item_int("SigFlags", flags);
    return xref.take_changed(merge.into.form.m_ref, form) ? CPDFStatus() : no_memory_to_edit();
}
