#include "document/tags/structure.h"

#include <algorithm>
#include <limits>
#include <set>
#include <unordered_set>

#include "document/edit/edit_array.h"
#include "document/edit/new_object.h"
#include "document/lookup/field_text.h"
#include "document/lookup/page_map.h"
#include "document/tags/number_tree.h"
#include "engine/annot_widget.h"

namespace {

constexpr const char* ROOT = "StructTreeRoot";
constexpr const char* PARENT_TREE = "ParentTree";
constexpr const char* NEXT_KEY = "ParentTreeNextKey";
constexpr const char* NUMBER = "StructParent";
constexpr CPDFKeySet ELEMENT_KEYS{"ID", "K", "P", "Pg", "S"};
constexpr int DEEPEST = 200;

PDF_REF root_of(const EDIT_TARGET& target)
{
    const CPDFObj* entry = target.root.dict->get_item(ROOT);
    return entry && entry->type == PDF_OBJ_REF ? entry->ref : PDF_REF{0, 0};
}

// Reads the dictionary that an entry of "K" is or refers to.
const CPDFDictionary* read_kid(CPDFXRefTable& xref, const CPDFObj* entry, CPDFObj& out)
{
    out.free();
    if (entry && entry->type == PDF_OBJ_REF)
        xref.get_entity(out, entry->ref, &ELEMENT_KEYS);
    else
        out.copy_from(entry);
    return out.dictionary();
}

PDF_CHANGE_RESULT change_entry(EDIT_TARGET& target, const PDF_REF& owner, const char* key, const CPDFObj* value)
{
    const PDF_ENTRY_CHANGE change[] = {{key, value}};
    return target.xref.change_entries(owner, change);
}

// Calls `edit(CPDFArray&)` for the kids of an element, of which "K" may be a single one.
template <typename Edit>
PDF_CHANGE_RESULT edit_kids(EDIT_TARGET& target, const PDF_REF& element, const Edit& edit)
{
    constexpr CPDFKeySet KEYS{"K"};
    CPDFObj own;
    target.xref.get_entity(own, element, &KEYS);
    const CPDFObj* entry = own.dictionary() ? own.dict->get_item("K") : nullptr;
    const CPDFEntryView kids(&target.xref, entry);
    if (entry && kids->type != PDF_OBJ_ARRAY) {
        CPDFObj list;
        CPDFArray* array = list.set_array();
        CPDFObj* slot = array ? array->append() : nullptr;
        if (!slot)
            return PDF_CHANGE_RESULT::NO_MEMORY;
        slot->copy_from(entry);
        const PDF_CHANGE_RESULT result = change_entry(target, element, "K", &list);
        if (result != PDF_CHANGE_RESULT::STORED)
            return result;
    }
    return edit_array(target.xref, element, "K", edit);
}

// The page of the element `entry`, its own or that of the first element in it that has one; 0 for none.
int32_t page_of_element(EDIT_TARGET& target, const CPDFObj* entry)
{
    constexpr int DEEP = 12;
    CPDFObj at;
    at.copy_from(entry);
    for (int i = 0; i < DEEP; ++i) {
        CPDFObj element;
        const CPDFDictionary* dict = read_kid(target.xref, &at, element);
        const CPDFObj* page = dict ? dict->get_item("Pg") : nullptr;
        if (page && page->type == PDF_OBJ_REF)
            return target.pages.page_of(page->ref.num);
        const CPDFEntryView kids(&target.xref, dict ? dict->get_item("K") : nullptr);
        at.free();
        at.copy_from(kids->array() ? kids->arr->at(0) : &*kids);
    }
    return 0;
}

// The element that holds the document: the only one of the root, else the root.
PDF_REF top_element(EDIT_TARGET& target)
{
    CPDFObj own;
    const PDF_REF root = root_of(target);
    target.xref.get_entity(own, root, &ELEMENT_KEYS);
    const CPDFObj* entry = own.dictionary() ? own.dict->get_item("K") : nullptr;
    const CPDFEntryView kids(&target.xref, entry);
    if (kids->array())
        entry = kids->arr->count == 1 ? kids->arr->at(0) : nullptr;
    CPDFObj only;
    const bool is_element = entry && entry->type == PDF_OBJ_REF && read_kid(target.xref, entry, only);
    return is_element ? entry->ref : root;
}

// An element that is made for a widget.
struct NEW_ELEMENT {
    PDF_REF widget;
    int32_t page;
    PDF_REF ref;
};

// Before how many of the kids an element on each of these pages belongs: behind the last one that is on its page or before.
// The pages rise.
std::vector<int32_t> places_by_page(EDIT_TARGET& target, const CPDFArray& kids,
                                    const std::vector<NEW_ELEMENT>& elements)
{
    std::vector<int32_t> places(elements.size(), kids.count);
    int32_t end = kids.count;  // those from here on are on later pages, or on none
    int32_t page = end > 0 ? page_of_element(target, kids.at(end - 1)) : 0;
    bool later = false;
    for (size_t i = elements.size(); i > 0; --i) {
        while (end > 0 && !(page && page <= elements[i - 1].page)) {
            later = later || page != 0;
            page = --end > 0 ? page_of_element(target, kids.at(end - 1)) : 0;
        }
        places[i - 1] = later ? end : kids.count;
    }
    return places;
}

// Puts them, sorted by page, among the kids.
void insert_by_page(EDIT_TARGET& target, CPDFArray& kids, const std::vector<NEW_ELEMENT>& elements)
{
    const std::vector<int32_t> places = places_by_page(target, kids, elements);
    int32_t from = kids.count;
    for (const NEW_ELEMENT& element : elements)
        kids.append_ref(element.ref);
    if (kids.count != from + static_cast<int32_t>(elements.size()))
        return;  // memory ran out, which the caller sees
    int32_t to = kids.count;
    for (size_t i = elements.size(); i > 0; --i) {
        while (from > places[i - 1])
            kids.items[--to].take(kids.items[--from]);
        kids.items[--to].set_ref(elements[i - 1].ref);
    }
}

// The number that leads from the parent tree to the next element.
int32_t next_number(EDIT_TARGET& target, CPDFNumberTree& tree)
{
    constexpr CPDFKeySet KEYS{NEXT_KEY};
    CPDFObj own;
    target.xref.get_entity(own, root_of(target), &KEYS);
    const int32_t said = own.dictionary() ? resolve_integer(&target.xref, own.dict->get_item(NEXT_KEY)) : 0;
    return std::max({said, tree.last() + 1, 0});
}

// Untagged pages say nothing about the order of their annotations.
PDF_CHANGE_RESULT walk_by_structure(EDIT_TARGET& target, const PDF_REF& page)
{
    constexpr CPDFKeySet KEYS{"Tabs"};
    CPDFObj own;
    target.xref.get_entity(own, page, &KEYS);
    CPDFObj structure;
    structure.set_name("S");
    return own.dictionary() && own.dict->get_item("Tabs") ? PDF_CHANGE_RESULT::STORED
                                                          : change_entry(target, page, "Tabs", &structure);
}

// The object that a kid refers to; 0 where it is no object reference.
uint32_t object_of(CPDFXRefTable& xref, const CPDFObj& kid)
{
    const CPDFEntryView view(&xref, &kid);
    const CPDFObj* object = view->dictionary() ? view->dict->get_item("Obj") : nullptr;
    return object && object->type == PDF_OBJ_REF ? object->ref.num : 0;
}

using ELEMENTS = std::unordered_map<uint32_t, PDF_REF>;

// The element above one in which nothing is left; object number 0 for one that stays: with something in it, or a name that
// others may know.
PDF_REF left_by(EDIT_TARGET& target, const PDF_REF& element)
{
    CPDFObj own;
    target.xref.get_entity(own, element, &ELEMENT_KEYS);
    const CPDFObj* above = own.dictionary() ? own.dict->get_item("P") : nullptr;
    const CPDFEntryView kids(&target.xref, own.dictionary() ? own.dict->get_item("K") : nullptr);
    const bool empty = kids->type == PDF_OBJ_NULL || (kids->array() && kids->arr->count == 0);
    const bool goes = empty && above && above->type == PDF_OBJ_REF && !own.dict->get_item("ID");
    return goes ? above->ref : PDF_REF{0, 0};
}

// Takes those of `elements` in which nothing is left out of the ones above them, and these likewise. The topmost stays.
PDF_CHANGE_RESULT drop_empty(EDIT_TARGET& target, ELEMENTS elements)
{
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    const PDF_REF root = root_of(target);
    const PDF_REF top = top_element(target);
    for (int depth = 0; depth < DEEPEST && !elements.empty(); ++depth) {
        ELEMENTS above;
        std::unordered_map<uint32_t, std::unordered_set<uint32_t>> gone;
        for (const auto& [num, element] : elements) {
            const PDF_REF parent = num != root.num && num != top.num ? left_by(target, element) : PDF_REF{0, 0};
            if (!parent.num)
                continue;
            above.emplace(parent.num, parent);
            gone[parent.num].insert(num);
        }
        for (const auto& [num, parent] : above) {
            const std::unordered_set<uint32_t>& leaving = gone[num];
            result = both(result, edit_kids(target, parent, [&leaving](CPDFArray& list) {
                              return remove_references(list, [&](uint32_t kid) { return leaving.contains(kid); });
                          }));
        }
        elements = std::move(above);
    }
    return result;
}

// An element, and the numbers that lead to it from the widgets under which they stand here.
struct OWNER {
    PDF_REF element;
    std::unordered_map<uint32_t, int32_t> numbers;
};

// The elements to which the parent tree leads from these widgets, by object number.
std::unordered_map<uint32_t, OWNER> owners_of(CPDFNumberTree& tree, const std::vector<PDF_TAGGED_WIDGET>& widgets)
{
    std::set<int32_t> numbers;
    for (const PDF_TAGGED_WIDGET& at : widgets)
        numbers.insert(at.number);
    const std::unordered_map<int32_t, PDF_REF> elements = tree.find(numbers);
    std::unordered_map<uint32_t, OWNER> owners;
    for (const PDF_TAGGED_WIDGET& at : widgets) {
        if (const auto element = elements.find(at.number); element != elements.end()) {
            OWNER& owner = owners[element->second.num];
            owner.element = element->second;
            owner.numbers.emplace(at.widget.num, at.number);
        }
    }
    return owners;
}

PDF_REF new_element(EDIT_TARGET& target, const PDF_REF& above, const NEW_ELEMENT& element, const std::string& label)
{
    const std::string on_page = "/Pg " + ref_syntax(target.pages.page_ref(element.page));
    return new_object(target.xref, "<</Type/StructElem/S/Form/P " + ref_syntax(above) + on_page +
                                       (label.empty() ? "" : "/Alt" + string_syntax(label)) + "/K[<</Type/OBJR" +
                                       on_page + "/Obj " + ref_syntax(element.widget) + ">>]>>");
}

// Leads from the widgets to their elements, by way of the parent tree.
PDF_CHANGE_RESULT number_widgets(EDIT_TARGET& target, const std::vector<NEW_ELEMENT>& elements)
{
    const PDF_REF root = root_of(target);
    CPDFNumberTree tree(target.xref, root, PARENT_TREE);
    const int32_t first = next_number(target, tree);
    if (static_cast<size_t>(std::numeric_limits<int32_t>::max() - first) < elements.size())
        return PDF_CHANGE_RESULT::NO_DICTIONARY;
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    std::vector<PDF_REF> refs;
    CPDFObj number;
    for (const NEW_ELEMENT& element : elements) {
        number.set_int(first + static_cast<int32_t>(refs.size()));
        result = both(result, change_entry(target, element.widget, NUMBER, &number));
        refs.push_back(element.ref);
    }
    number.set_int(first + static_cast<int32_t>(refs.size()));
    result = both(result, tree.append(first, refs));
    return both(result, change_entry(target, root, NEXT_KEY, &number));
}

// Tells the object references to these widgets, and the element where it holds nothing else, on which pages they are.
PDF_CHANGE_RESULT repage_element(EDIT_TARGET& target, const OWNER& owner)
{
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    CPDFObj page;
    bool on_one_page = true;
    result = both(result, edit_kids(target, owner.element, [&](CPDFArray& kids) {
                      bool changed = false;
                      for (int32_t i = 0; i < kids.count; ++i) {
                          CPDFObj& kid = kids.items[i];
                          const uint32_t widget = object_of(target.xref, kid);
                          const int32_t at =
                              owner.numbers.contains(widget) ? target.pages.page_of_annotation(widget) : 0;
                          on_one_page = on_one_page && at && (i == 0 || target.pages.page_ref(at).num == page.ref.num);
                          if (!at)
                              continue;
                          page.set_ref(target.pages.page_ref(at));
                          if (kid.type == PDF_OBJ_REF)
                              result = both(result, change_entry(target, kid.ref, "Pg", &page));
                          else if (kid.dictionary())
                              kid.dict->set_item("Pg", &page);
                          changed = changed || kid.type != PDF_OBJ_REF;
                      }
                      return changed;
                  }));
    return on_one_page && page.type == PDF_OBJ_REF ? both(result, change_entry(target, owner.element, "Pg", &page))
                                                   : result;
}

}  // namespace

bool is_tagged(const EDIT_TARGET& target)
{
    CPDFObj own;
    const PDF_REF root = root_of(target);
    if (root.num)
        target.xref.get_entity(own, root, &ELEMENT_KEYS);
    return own.dictionary() != nullptr;
}

PDF_CHANGE_RESULT tag_widgets(EDIT_TARGET& target, std::span<CPDFAnnotWidget* const> widgets, const std::string& label)
{
    std::vector<NEW_ELEMENT> elements;
    for (const CPDFAnnotWidget* widget : is_tagged(target) ? widgets : std::span<CPDFAnnotWidget* const>()) {
        if (const int32_t page = target.pages.page_of_annotation(widget->m_ref.num))
            elements.push_back({widget->m_ref, page, {0, 0}});
    }
    if (elements.empty())
        return PDF_CHANGE_RESULT::STORED;
    const auto before = [](const NEW_ELEMENT& a, const NEW_ELEMENT& b) { return a.page < b.page; };
    std::stable_sort(elements.begin(), elements.end(), before);
    const PDF_REF top = top_element(target);
    for (NEW_ELEMENT& element : elements) {
        element.ref = new_element(target, top, element, label);
        if (!element.ref.num)
            return PDF_CHANGE_RESULT::NO_MEMORY;
    }
    PDF_CHANGE_RESULT result = edit_kids(target, top, [&](CPDFArray& kids) {
        insert_by_page(target, kids, elements);
        return true;
    });
    result = both(result, number_widgets(target, elements));
    for (size_t i = 0; i < elements.size(); ++i) {
        if (i == 0 || elements[i].page != elements[i - 1].page)
            result = both(result, walk_by_structure(target, target.pages.page_ref(elements[i].page)));
    }
    return result;
}

std::vector<PDF_TAGGED_WIDGET> tagged_widgets(EDIT_TARGET& target, const std::vector<PDF_REF>& widgets)
{
    constexpr CPDFKeySet KEYS{NUMBER};
    std::vector<PDF_TAGGED_WIDGET> tagged;
    if (!is_tagged(target))
        return tagged;
    for (const PDF_REF& widget : widgets) {
        CPDFObj own;
        target.xref.get_entity(own, widget, &KEYS);
        if (const CPDFObj* number = own.dictionary() ? own.dict->get_item(NUMBER) : nullptr)
            tagged.push_back({widget, resolve_integer(&target.xref, number)});
    }
    return tagged;
}

PDF_CHANGE_RESULT untag_widgets(EDIT_TARGET& target, const std::vector<PDF_TAGGED_WIDGET>& widgets)
{
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    CPDFNumberTree tree(target.xref, root_of(target), PARENT_TREE);
    ELEMENTS changed;
    std::set<int32_t> numbers;  // the others lead to what is another's
    for (const auto& at : owners_of(tree, widgets)) {
        const OWNER& owner = at.second;
        const size_t before = numbers.size();
        result = both(result, edit_kids(target, owner.element, [&](CPDFArray& kids) {
                          for (int32_t i = kids.count - 1; i >= 0; --i) {
                              const auto known = owner.numbers.find(object_of(target.xref, kids.items[i]));
                              if (known == owner.numbers.end())
                                  continue;
                              numbers.insert(known->second);
                              kids.remove_obj(i);
                          }
                          return numbers.size() != before;
                      }));
        if (numbers.size() != before)
            changed.emplace(at.first, owner.element);
    }
    result = both(result, drop_empty(target, std::move(changed)));
    return both(result, tree.remove(numbers));
}

PDF_CHANGE_RESULT repage_widgets(EDIT_TARGET& target, const std::vector<PDF_TAGGED_WIDGET>& widgets)
{
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    CPDFNumberTree tree(target.xref, root_of(target), PARENT_TREE);
    std::set<int32_t> pages;
    for (const auto& [num, owner] : owners_of(tree, widgets))
        result = both(result, repage_element(target, owner));
    for (const PDF_TAGGED_WIDGET& at : widgets)
        pages.insert(target.pages.page_of_annotation(at.widget.num));
    pages.erase(0);
    for (const int32_t page : pages)
        result = both(result, walk_by_structure(target, target.pages.page_ref(page)));
    return result;
}

PDF_CHANGE_RESULT label_widgets(EDIT_TARGET& target, const std::vector<PDF_TAGGED_WIDGET>& widgets,
                                const std::string& label)
{
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    CPDFNumberTree tree(target.xref, root_of(target), PARENT_TREE);
    CPDFObj text;
    text.type = PDF_OBJ_STRING;
    text.str = pdf_string_of(label);
    for (const auto& [num, owner] : owners_of(tree, widgets)) {
        CPDFObj own;
        target.xref.get_entity(own, owner.element, &ELEMENT_KEYS);
        const CPDFObj* role = own.dictionary() ? own.dict->get_item("S") : nullptr;
        if (role && role->is_name("Form"))
            result = both(result, change_entry(target, owner.element, "Alt", label.empty() ? nullptr : &text));
    }
    return result;
}

std::unordered_map<uint32_t, int32_t> structure_order(EDIT_TARGET& target)
{
    std::unordered_map<uint32_t, int32_t> order;
    std::unordered_set<uint32_t> seen;
    const auto visit = [&](const auto& self, const CPDFObj* entry, int depth) -> void {
        if (!entry || depth > DEEPEST || (entry->type == PDF_OBJ_REF && !seen.insert(entry->ref.num).second))
            return;
        CPDFObj element;
        constexpr CPDFKeySet KEYS{"K", "Obj"};
        if (entry->type == PDF_OBJ_REF)
            target.xref.get_entity(element, entry->ref, &KEYS);
        const CPDFObj& at = entry->type == PDF_OBJ_REF ? element : *entry;
        if (at.array()) {
            for (int32_t i = 0; i < at.arr->count; ++i)
                self(self, at.arr->at(i), depth + 1);
        }
        if (!at.dictionary())
            return;
        const CPDFObj* object = at.dict->get_item("Obj");
        if (object && object->type == PDF_OBJ_REF)
            order.emplace(object->ref.num, static_cast<int32_t>(order.size()));
        self(self, at.dict->get_item("K"), depth + 1);
    };
    CPDFObj root;
    root.set_ref(root_of(target));
    visit(visit, &root, 0);
    return order;
}
