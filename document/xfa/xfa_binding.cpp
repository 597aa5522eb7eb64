#include "document/xfa/xfa_binding.h"

#include <algorithm>
#include <charconv>
#include <unordered_map>
#include <unordered_set>

#include "core/limits.h"
#include "document/lookup/export_value.h"
#include "document/lookup/field_text.h"
#include "document/lookup/xml_fit.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_walk.h"

namespace {

constexpr int32_t NONE = CPDFXfaData::NONE;
// Elements of a template are more work than what the limit counts otherwise, and long tags more than short ones.
constexpr int64_t ELEMENT_VISITS = 8;
constexpr uint32_t TAG_PART = 32;

constexpr int32_t LOST = -2;  // a place in the data that is not known

// The fields under one that the template names, by name and place. Levels without a name of their own ("#subform[0]") have no part
// in the places.
class FieldScope {
public:
    void add(CPDFField& field)
    {
        std::string name = utf8_of(field.m_name);
        if (name.empty())
            return;
        if (name[0] == '#')
            add_kids(field);
        else
            m_fields.emplace(name.back() == ']' ? std::move(name) : name + "[0]", &field);
    }

    void add_kids(CPDFField& field)
    {
        for (int32_t i = 0; i < field.m_kid_cnt; ++i) {
            if (field.m_kids[i])
                add(*field.m_kids[i]);
        }
    }

    // The next field of this name, null when the form does not have it; `pass` goes on to the one behind it.
    CPDFField* next(const std::string& name)
    {
        const auto found = m_fields.find(name + "[" + std::to_string(m_places[name]) + "]");
        return found == m_fields.end() ? nullptr : found->second;
    }
    void pass(const std::string& name) { ++m_places[name]; }

private:
    std::unordered_map<std::string, CPDFField*> m_fields;
    std::unordered_map<std::string, int32_t> m_places;
};

// Moves `path` behind the word that it begins with, and the dot behind that.
bool cut_word(std::string_view& path, std::string_view word)
{
    if (path.substr(0, word.size()) != word || (path.size() > word.size() && path[word.size()] != '.'))
        return false;
    path.remove_prefix(std::min(path.size(), word.size() + 1));
    return true;
}

class Binder {
public:
    Binder(CPDFXfaData& data, const CPDFXmlTree& tree, std::vector<XFA_BINDING>& bound)
        : m_data(data), m_tree(tree), m_bound(bound)
    {
    }

    void run(CPDFAcroForm& form, int32_t top)
    {
        FieldScope scope;
        for (int32_t i = 0; i < form.m_field_cnt; ++i) {
            if (form.m_fields[i])
                scope.add(*form.m_fields[i]);
        }
        m_top = top;
        walk(top, scope, m_data.data());
    }

    bool is_exhausted() const { return m_visits > LIMIT_XFA_VISITS || m_data.is_exhausted(); }

    // The fields that the template says are bound to nothing, as well.
    bool has_met(const CPDFField& field) const { return m_met.count(&field) != 0; }

private:
    void walk(int32_t element, FieldScope& scope, int32_t context)
    {
        for (int32_t at = m_tree.at(element).first; at >= 0 && !is_exhausted(); at = m_tree.at(at).next) {
            const std::string_view kind = m_tree.name(at);
            const std::string name = m_tree.attribute(at, "name");
            m_visits += ELEMENT_VISITS + (m_tree.at(at).inner - m_tree.at(at).begin) / TAG_PART;
            if (kind == "field" || (kind == "exclGroup" && !name.empty()))
                bind_field(at, name, scope, context);
            else if (kind == "subform" || kind == "area" || kind == "subformSet" || kind == "pageSet" ||
                     kind == "pageArea" || kind == "exclGroup")
                walk_container(at, kind, name, scope, context);
        }
    }

    void walk_container(int32_t element, std::string_view kind, const std::string& name, FieldScope& scope,
                        int32_t context)
    {
        if (name.empty()) {
            walk(element, scope, context);
            return;
        }
        const std::string match = kind == "subform" ? match_of(element) : "none";
        const int32_t most = kind == "pageArea" ? INT32_MAX : most_of(element);
        for (int32_t i = 0; i < most && !is_exhausted(); ++i) {
            CPDFField* const field = scope.next(name);
            if (i > 0 && !field && match != "once")
                return;
            const int32_t inside = match == "none" ? context : group_of(element, name, match, field, context, i);
            if (i > 0 && !field && inside < 0)
                return;
            if (m_tree.at(element).parent == m_top)
                m_record = inside;
            scope.pass(name);
            FieldScope under;
            if (field)
                under.add_kids(*field);
            walk(element, under, inside);
        }
    }

    // How often the element may stand there.
    int32_t most_of(int32_t element) const
    {
        const int32_t occur = m_tree.child(element, "occur");
        const std::string text = occur < 0 ? std::string() : m_tree.attribute(occur, "max");
        int32_t most = 1;
        std::from_chars(text.data(), text.data() + text.size(), most);
        return most < 0 ? INT32_MAX : most;
    }

    // "once" unless the template says something else; "use" where it says so in another place.
    std::string match_of(int32_t element) const
    {
        const int32_t bind = m_tree.child(element, "bind");
        const int32_t said = bind < 0 ? element : bind;
        if (!m_tree.attribute(said, "use").empty() || !m_tree.attribute(said, "usehref").empty())
            return "use";
        const std::string match = bind < 0 ? std::string() : m_tree.attribute(bind, "match");
        return match.empty() ? "once" : match;
    }

    int32_t group_of(int32_t element, const std::string& name, const std::string& match, const CPDFField* field,
                     int32_t context, int32_t place)
    {
        if (match == "use")
            return LOST;
        if (match == "dataRef")
            return follow(element, context, place, field != nullptr);
        if (context < 0)
            return context;
        int32_t group = m_data.claim(context, name, CPDFXfaData::GROUP);
        // The record is the form's data whatever its name.
        if (group == NONE && m_record == NONE && m_data.is_there(context) && m_data.tree().at(context).first >= 0)
            group = m_data.claim(context, m_data.tree().name(m_data.tree().at(context).first), CPDFXfaData::GROUP);
        return group == NONE && field ? m_data.claim_or_add(context, name, CPDFXfaData::GROUP) : group;
    }

    void bind_field(int32_t element, const std::string& name, FieldScope& scope, int32_t context)
    {
        if (name.empty())
            return;
        CPDFField* const field = scope.next(name);
        scope.pass(name);
        const int32_t ui = m_tree.child(element, "ui");
        const bool is_pressed = ui >= 0 && (m_tree.child(ui, "button") >= 0 || m_tree.child(ui, "signature") >= 0);
        const std::string match = match_of(element);
        if (field && (is_pressed || match == "none"))
            m_met.insert(field);
        if (is_pressed || match == "none")
            return;
        const int32_t node = value_of(element, name, match, field != nullptr, context);
        if (!field || node < 0)
            return;
        m_met.insert(field);
        m_bound.push_back({field, node, element});
    }

    int32_t value_of(int32_t element, const std::string& name, const std::string& match, bool make, int32_t context)
    {
        if (match == "use")
            return LOST;
        if (match == "dataRef")
            return follow(element, context, 0, make);
        if (match == "global")
            return global(name, make);
        if (context < 0)
            return context;
        return make ? m_data.claim_or_add(context, name, CPDFXfaData::VALUE)
                    : m_data.claim(context, name, CPDFXfaData::VALUE);
    }

    int32_t global(const std::string& name, bool make)
    {
        const auto [found, is_new] = m_globals.try_emplace(name, NONE);
        if (is_new)
            found->second = m_data.claim_anywhere(m_data.data(), name);
        if (found->second == NONE && make && m_record >= 0)
            found->second = m_data.claim_or_add(m_record, name, CPDFXfaData::VALUE);
        return found->second;
    }

    // The node that the element's reference leads to.
    int32_t follow(int32_t element, int32_t context, int32_t place, bool make)
    {
        const std::string text = m_tree.attribute(m_tree.child(element, "bind"), "ref");
        std::string_view path = text;
        int32_t node = context;
        if (cut_word(path, "$record") || cut_word(path, "xfa.record"))
            node = m_record;
        else if (cut_word(path, "$data") || cut_word(path, "xfa.datasets.data") || cut_word(path, "xfa.data"))
            node = m_data.data();
        else if (cut_word(path, "xfa.datasets") || cut_word(path, "!"))
            node = m_data.data_sets();
        else if (path.substr(0, 1) == "!")
            node = (path.remove_prefix(1), m_data.data_sets());
        else if (!cut_word(path, "$") && path.empty())
            return LOST;
        XFA_STEP step;
        while (node >= 0 && !path.empty()) {
            if (!cut_xfa_step(path, step) || (step.is_all && !path.empty()))
                return LOST;
            if (step.is_all)
                step.index = place;
            node = make ? m_data.child(node, step) : m_data.find_child(node, step);
            ++m_visits;
        }
        return node;
    }

    CPDFXfaData& m_data;  // borrowed from the caller, as the following
    const CPDFXmlTree& m_tree;
    std::vector<XFA_BINDING>& m_bound;
    std::unordered_set<const CPDFField*> m_met;
    std::unordered_map<std::string, int32_t> m_globals;  // nodes by name
    int32_t m_top = 0;
    int32_t m_record = NONE;
    int64_t m_visits = 0;
};

// Binds the fields under `fields` by their own names.
void bind_by_names(CPDFField* const* fields, int32_t count, int32_t node, CPDFXfaData& data,
                   std::vector<XFA_BINDING>& bound)
{
    for (int32_t i = 0; i < count; ++i) {
        CPDFField* const field = fields[i];
        if (!field || field->m_name.len == 0 || !has_xml_name(*field))
            continue;
        const std::string name = utf8_of(field->m_name);
        std::string_view path = name;
        XFA_STEP step;
        const bool is_level = name[0] == '#';
        if (!is_level && (!cut_xfa_step(path, step) || !path.empty()))
            continue;
        const int32_t under = is_level ? node : data.child(node, step);
        if (under >= 0 && CPDFExportValues::is_exported(*field))
            bound.push_back({field, under, NONE});
        else if (under >= 0)
            bind_by_names(field->m_kids, field->m_kid_cnt, under, data, bound);
    }
}

}  // namespace

CPDFStatus bind_xfa(CPDFAcroForm& form, CPDFXfaData& data, const CPDFXmlTree* tree, int32_t top,
                    std::vector<XFA_BINDING>& bound, std::vector<const CPDFField*>& lost)
{
    std::unordered_set<const CPDFField*> met;
    if (tree) {
        Binder binder(data, *tree, bound);
        binder.run(form, top);
        if (binder.is_exhausted())
            return CPDFStatus::failed(PDF_CODE::LIMIT, "the XFA template takes more work than what is supported");
        for_each_field(form, [&](const CPDFField& field) {
            if (binder.has_met(field))
                met.insert(&field);
        });
    } else {
        bind_by_names(form.m_fields, form.m_field_cnt, data.data(), data, bound);
        for (const XFA_BINDING& at : bound)
            met.insert(at.field);
    }
    for_each_field(form, [&](const CPDFField& field) {
        const bool is_part = field.m_parent && CPDFExportValues::is_exported(*field.m_parent);
        if (CPDFExportValues::is_exported(field) && !is_part && met.count(&field) == 0)
            lost.push_back(&field);
    });
    return {};
}
