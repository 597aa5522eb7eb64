#include "document/design/font_file.h"

#include "appearance/font/fallback/form_font.h"
#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/edit/new_object.h"
#include "document/lookup/field_text.h"
#include "engine/resources.h"
#include "forms/acro_form.h"

namespace {

// The part of a font that is always the same needs no other tag to tell it apart.
constexpr const char* TAG = "WINANS+";

bool is_embedded(EDIT_TARGET& target, const CPDFObj* font, const std::string& base_font)
{
    const CPDFEntryView view(&target.xref, font);
    const CPDFObj* name = view->dictionary() ? view->dict->get_item("BaseFont") : nullptr;
    return name && name->is_name(base_font.c_str());
}

PDF_REF make_program(EDIT_TARGET& target, const FORM_FONT& font)
{
    const std::string& program = font.program;
    int length = 0;
    const VXBlock<unsigned char> packed(
        target.xref.compress_data(program.data(), static_cast<int>(program.size()), length));
    if (!packed)
        return {0, 0};
    const std::string kind = font.is_cff ? "/Subtype/Type1C" : "/Length1 " + std::to_string(program.size());
    return new_stream(target.xref, "/Filter/FlateDecode" + kind,
                      {reinterpret_cast<const char*>(packed.get()), static_cast<size_t>(length)});
}

PDF_REF make_font(EDIT_TARGET& target, const FORM_FONT& font, const std::string& base_font)
{
    constexpr int NONSYMBOLIC = 1 << 5;
    constexpr int ITALIC = 1 << 6;
    const FONT_METRICS& metrics = font.metrics;
    const std::string name = name_syntax(base_font);
    const PDF_REF program = make_program(target, font);
    std::string box;
    for (const int side : metrics.bbox)
        box += std::to_string(side) + " ";
    const PDF_REF descriptor = new_object(
        target.xref, "<</Type/FontDescriptor/FontName" + name + "/Flags " +
                         std::to_string(NONSYMBOLIC | (metrics.italic ? ITALIC : 0)) + "/FontBBox[" + box +
                         "]/ItalicAngle " + (metrics.italic ? "-12" : "0") + "/Ascent " +
                         std::to_string(metrics.ascent) + "/Descent " + std::to_string(metrics.descent) +
                         "/CapHeight " + std::to_string(metrics.ascent) + "/StemV " + (metrics.bold ? "140" : "80") +
                         (font.is_cff ? "/FontFile3 " : "/FontFile2 ") + ref_syntax(program) + ">>");
    std::string widths;
    for (const int width : font.widths)
        widths += std::to_string(width) + " ";
    if (!program.num || !descriptor.num)
        return {0, 0};
    return new_object(target.xref, std::string("<</Type/Font/Subtype/") + (font.is_cff ? "Type1" : "TrueType") +
                                       "/BaseFont" + name + "/FirstChar " + std::to_string(FORM_FONT_FIRST) +
                                       "/LastChar " + std::to_string(FORM_FONT_LAST) + "/Widths[" + widths +
                                       "]/Encoding/WinAnsiEncoding/FontDescriptor " + ref_syntax(descriptor) + ">>");
}

}  // namespace

bool is_font_path(const std::string& name)
{
    const auto ends = [&name](const char* ending) { return name.ends_with(ending); };
    return name.find('/') != std::string::npos || ends(".ttf") || ends(".otf") || ends(".TTF") || ends(".OTF");
}

std::string wrong_font_file(const std::string& path)
{
    FORM_FONT font;
    std::string problem;
    return read_form_font(path, font, problem) ? "" : "can't be a font of the form: " + problem;
}

CPDFStatus embed_font(EDIT_TARGET& target, const std::string& path, std::string& resource)
{
    FORM_FONT font;
    std::string problem;
    if (!read_form_font(path, font, problem))
        return CPDFStatus::failed(PDF_CODE::BAD_EDIT, "the file " + in_quotes(path) + " can't be a font: " + problem);
    CPDFAcroForm& form = target.form;
    const std::string base_font = TAG + font.name;
    resource = font.name;
    for (const CPDFObj* known = nullptr; form.m_res && (known = form.m_res->find("Font", resource.c_str()));
         resource += '_') {
        if (is_embedded(target, known, base_font))
            return {};
    }
    const PDF_REF made = make_font(target, font, base_font);
    const bool done = made.num && (form.m_res || form.new_resource(&target.xref)) &&
                      form.append_font(&target.xref, resource.c_str(), made);
    return done ? CPDFStatus() : no_memory_to_edit();
}
