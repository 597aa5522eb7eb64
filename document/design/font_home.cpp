#include "document/design/font_home.h"

#include "appearance/font/standard/standard_font.h"
#include "document/edit/form_home.h"
#include "engine/resources.h"
#include "forms/acro_form.h"

namespace {

bool has_font(const EDIT_TARGET& target, const std::string& name)
{
    return target.form.m_res && target.form.m_res->find("Font", name.c_str());
}

}  // namespace

bool is_font(const EDIT_TARGET& target, const std::string& name)
{
    return has_font(target, name) || find_standard_font(name);
}

CPDFStatus find_font(EDIT_TARGET& target, const std::string& name, std::string& resource)
{
    resource = name;
    const std::optional<STANDARD_FONT> font = find_standard_font(name);
    if (has_font(target, name) || !font)
        return {};
    resource = standard_font_resource(*font);
    return need_font(target, resource.c_str(), standard_font_name(*font));
}
