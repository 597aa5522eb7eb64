#include "document/edit/new_name.h"

#include <algorithm>
#include <vector>

#include "core/limits.h"
#include "document/edit/field_tree.h"
#include "document/edit/new_object.h"
#include "document/lookup/field_text.h"
#include "forms/field.h"

namespace {

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

}  // namespace

void check_new_name(EDIT_TARGET& target, const std::string& name, size_t height, CPDFRefusals& refusals)
{
    const std::vector<std::string> parts = parts_of(name);
    if (std::any_of(parts.begin(), parts.end(), [](const std::string& part) { return part.empty(); })) {
        refusals.add(in_quotes(name) + " is no name for a field: every part between dots needs a letter");
        return;
    }
    if (parts.size() + height > LIMIT_FIELD_DEPTH)
        refusals.add("the fields would be too deep inside one another");
    if (!is_readable_name(name)) {
        refusals.add("the full name would be longer than " + std::to_string(LIMIT_FULL_NAME) + " bytes");
        return;
    }
    if (field_named(target, name))
        refusals.add("there is a field " + in_quotes(name) + " already");
    std::string above;
    for (size_t i = 0; i + 1 < parts.size(); ++i) {
        above += (i ? "." : "") + parts[i];
        const CPDFField* group = field_named(target, above);
        if (group && !can_hold_fields(target, *group))
            refusals.add("field " + in_quotes(above) + " has a value of its own and can't hold other fields");
    }
}

CPDFField* make_groups(EDIT_TARGET& target, const std::string& name)
{
    const std::vector<std::string> parts = parts_of(name);
    CPDFField* parent = nullptr;
    std::string above;
    for (size_t i = 0; i + 1 < parts.size(); ++i) {
        above += (i ? "." : "") + parts[i];
        CPDFField* group = field_named(target, above);
        if (!group) {
            const std::string entries =
                "/T " + string_syntax(parts[i]) + (parent ? "/Parent " + ref_syntax(parent->m_ref) : "") + "/Kids[]";
            group = attach_field(target, parent, new_object(target.xref, "<<" + entries + ">>"));
        }
        parent = group;
    }
    return parent;
}

std::string last_part(const std::string& name)
{
    return name.substr(name.rfind('.') + 1);
}
