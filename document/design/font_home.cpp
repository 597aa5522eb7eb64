#include "document/design/font_home.h"

#include "appearance/font/standard/standard_font.h"
#include "document/design/font_file.h"
#include "document/edit/form_home.h"
#include "document/lookup/field_text.h"
#include "engine/resources.h"
#include "forms/acro_form.h"

namespace {

bool has_font(const EDIT_TARGET& target, const std::string& name)
{
    return target.form.m_res && target.form.m_res->find("Font", name.c_str());
}

}  // namespace

std::string wrong_font(const EDIT_TARGET& target, const std::string& name)
{
    if (has_font(target, name) || find_standard_font(name))
        return "";
    if (is_font_path(name)) {
        const std::string problem = wrong_font_file(name);
        return problem.empty() ? "" : "the file " + in_quotes(name) + " " + problem;
    }
    return "there is no font " + in_quotes(name) +
           ": give one that the form has, Helvetica, Times or Courier, each with -Bold, -Italic or -BoldItalic, Symbol, "
           "ZapfDingbats, or the path of a font file";
}

CPDFStatus find_font(EDIT_TARGET& target, const std::string& name, std::string& resource)
{
    resource = name;
    const std::optional<STANDARD_FONT> font = find_standard_font(name);
    if (has_font(target, name))
        return {};
    if (!font)
        return embed_font(target, name, resource);
    resource = standard_font_resource(*font);
    return need_font(target, resource.c_str(), standard_font_name(*font));
}
