// Stands in for FreeType where a program does without it: no embedded font program can be read, which is taken as one that has
// all that its dictionary says.
#include "appearance/font/font_program.h"

void FREE_TYPE_END::operator()(FT_LibraryRec_* /*library*/) const {}

void CPDFFontProgram::load() {}

FT_FaceRec_* CPDFFontProgram::face()
{
    return nullptr;
}

bool CPDFFontProgram::is_truetype()
{
    return false;
}

void CPDFFontProgram::name_own_glyphs(GLYPH_NAMES& names)
{
    name_latin_glyphs(LATIN_STANDARD, names);
}

uint32_t CPDFFontProgram::glyph_of_name(const std::string& /*name*/)
{
    return 0;
}

uint32_t CPDFFontProgram::glyph_in(uint32_t /*encoding*/, uint32_t /*code*/)
{
    return 0;
}

uint32_t CPDFFontProgram::glyph_of_character(char32_t /*c*/)
{
    return 0;
}

uint32_t CPDFFontProgram::glyph_of_mac_code(uint8_t /*code*/)
{
    return 0;
}

uint32_t CPDFFontProgram::glyph_of_code(uint8_t /*code*/)
{
    return 0;
}

uint32_t CPDFFontProgram::glyph_of_cid(uint32_t cid)
{
    return cid;
}

uint32_t CPDFFontProgram::cid_of_glyph(uint32_t glyph)
{
    return glyph;
}

bool CPDFFontProgram::has_glyph(uint32_t /*glyph*/)
{
    return false;
}

bool CPDFFontProgram::draws_glyph(uint32_t /*glyph*/)
{
    return false;
}
