#include "appearance/form_fonts.h"

#include <new>

#include "appearance/font/read_font.h"
#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/xref_table.h"

namespace {

STANDARD_FONT standard_of(const FONT_STYLE& style)
{
    constexpr STANDARD_FONT FAMILIES[] = {STANDARD_FONT::HELVETICA, STANDARD_FONT::TIMES, STANDARD_FONT::COURIER};
    const int family = style.mono ? 2 : style.serif ? 1 : 0;
    const int face = (style.bold ? 1 : 0) + (style.italic ? 2 : 0);
    return static_cast<STANDARD_FONT>(static_cast<int>(FAMILIES[family]) + face);
}

// The dictionary of a standard font, in the encoding of Windows unless it is one of symbols.
void describe_standard(STANDARD_FONT font, CPDFObj& out)
{
    CPDFDictionary* dict = out.set_dict();
    if (!dict)
        return;
    dict->set_item_name("Type", "Font");
    dict->set_item_name("Subtype", "Type1");
    dict->set_item_name("BaseFont", standard_font_name(font));
    if (!is_symbolic(font))
        dict->set_item_name("Encoding", "WinAnsiEncoding");
}

// The font `name` of a resource dictionary; null when it has none.
const CPDFObj* font_entry(CPDFXRefTable& xref, const CPDFDictionary* resources, const std::string& name, CPDFObj& fonts)
{
    const CPDFObj* list = resources ? resources->get_item(CPDFDictionary::sm_tag_font) : nullptr;
    fonts.free();
    resolve_obj(&xref, list, fonts);
    return fonts.dictionary() ? fonts.dict->get_item(name.c_str()) : nullptr;
}

FONT_STYLE style_of(CPDFXRefTable& xref, const CPDFObj& entry)
{
    const CPDFEntryView font(&xref, &entry);
    if (!font->dictionary())
        return {};
    const CPDFEntryView name(&xref, font->dict->get_item("BaseFont"));
    const CPDFEntryView descriptor(&xref, font->dict->get_item("FontDescriptor"));
    const CPDFDictionary* described = descriptor->dictionary();
    const int32_t flags = described ? resolve_integer(&xref, described->get_item("Flags")) : 0;
    return font_style(name->name_text() ? name->name_text() : "", static_cast<uint32_t>(flags));
}

}  // namespace

// A font with the object that it is in the document.
struct CPDFFormFonts::FONT {
    std::unique_ptr<CPDFTextFont> font;
    std::string name;  // of the resource
    FONT_STYLE style;
    PDF_REF ref = {0, 0};  // number 0 until the document has it as an object
    bool is_made = false;  // `ref` is an object that was made here
    CPDFObj dictionary;    // what the object is made of
};

class CPDFFormFonts::Choice : public CPDFFontChoice {
public:
    Choice(CPDFFormFonts& fonts, std::unique_ptr<FONT> own) : m_fonts(fonts), m_own(std::move(own)) {}

    CPDFTextFont& own() override { return *m_own->font; }

    CPDFTextFont* font_for(char32_t c) override
    {
        if (m_own->font->has(c))
            return m_own->font.get();
        CPDFTextFont& standard = *m_fonts.standard(standard_of(m_own->style)).font;
        return standard.has(c) ? &standard : m_fonts.machine_font(c, m_own->style);
    }

    std::string resource_name(const CPDFTextFont& font) override
    {
        if (&font == m_own->font.get())
            return m_own->name;
        const auto known = m_fonts.m_fonts.find(&font);
        return known != m_fonts.m_fonts.end() ? known->second->name
                                              : "Fw" + std::to_string(m_fonts.object_of(font).num);
    }

private:
    CPDFFormFonts& m_fonts;  // borrowed from the owner
    std::unique_ptr<FONT> m_own;
};

CPDFFormFonts::CPDFFormFonts(CPDFXRefTable& xref) : m_xref(xref) {}

CPDFFormFonts::~CPDFFormFonts() = default;

CPDFFontChoice& CPDFFormFonts::choice(const std::string& name, const CPDFDictionary* defaults,
                                      const CPDFDictionary* shown)
{
    std::unique_ptr<Choice>& known = m_choices[name];
    if (!known) {
        std::unique_ptr<FONT> font = load(name, defaults, shown);
        FONT* own = font.get();
        known = std::make_unique<Choice>(*this, std::move(font));
        m_fonts.emplace(own->font.get(), own);
    }
    return *known;
}

std::unique_ptr<CPDFFormFonts::FONT> CPDFFormFonts::load(const std::string& name, const CPDFDictionary* defaults,
                                                         const CPDFDictionary* shown)
{
    auto font = std::make_unique<FONT>();
    font->name = name;
    for (const CPDFDictionary* resources : {defaults, shown}) {
        CPDFObj fonts;
        const CPDFObj* entry = font_entry(m_xref, resources, name, fonts);
        font->font = entry ? read_font(m_xref, *entry) : nullptr;
        if (!font->font)
            continue;
        font->style = style_of(m_xref, *entry);
        if (entry->type == PDF_OBJ_REF)
            font->ref = entry->ref;
        else
            font->dictionary.copy_from(entry);
        return font;
    }
    const STANDARD_FONT standard = find_standard_font(name).value_or(STANDARD_FONT::HELVETICA);
    if (font->name.empty())
        font->name = "Helv";
    font->style = font_style(standard_font_name(standard), 0);
    describe_standard(standard, font->dictionary);
    font->font = read_font(m_xref, font->dictionary);
    if (!font->font)
        throw std::bad_alloc();
    return font;
}

CPDFFormFonts::FONT& CPDFFormFonts::standard(STANDARD_FONT which)
{
    std::unique_ptr<FONT>& font = m_standard[static_cast<size_t>(which)];
    if (!font) {
        auto made = std::make_unique<FONT>();
        made->name = std::string("Fw") + standard_font_name(which);
        describe_standard(which, made->dictionary);
        made->font = read_font(m_xref, made->dictionary);
        if (!made->font)
            throw std::bad_alloc();
        font = std::move(made);
        m_fonts.emplace(font->font.get(), font.get());
    }
    return *font;
}

CPDFTextFont* CPDFFormFonts::machine_font(char32_t c, const FONT_STYLE& style)
{
    if (!m_machine)
        m_machine = std::make_unique<CPDFFallbackFonts>();
    return m_machine->font_for(c, style);
}

PDF_REF CPDFFormFonts::object_of(const CPDFTextFont& font)
{
    const auto found = m_fonts.find(&font);
    if (found == m_fonts.end())
        return m_machine ? m_machine->object_of(font, m_xref) : PDF_REF{0, 0};
    FONT& known = *found->second;
    if (known.ref.num)
        return known.ref;
    const VXFailureCheck memory;
    const PDF_REF ref = {m_xref.new_obj_num(), 0};
    m_xref.store_changed(ref, known.dictionary);
    if (memory.failed())
        return {0, 0};
    known.is_made = true;
    return known.ref = ref;
}

bool CPDFFormFonts::embed()
{
    return !m_machine || m_machine->embed(m_xref);
}

void CPDFFormFonts::changes_dropped()
{
    m_machine.reset();
    for (const auto& [font, known] : m_fonts) {
        if (known->is_made)
            known->ref = {0, 0};
    }
}

std::string CPDFFormFonts::problem()
{
    return CPDFFallbackFonts::problem();
}
