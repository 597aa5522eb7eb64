// Stands in for the fonts of the machine where a program does without them.
#include "appearance/font/fallback/fallback_fonts.h"
#include "appearance/font/fallback/form_font.h"

namespace {

constexpr const char* PROBLEM = "this program does without the fonts of the machine";

}  // namespace

struct CPDFFallbackFonts::FONT {};

class CPDFMachineFonts {};

CPDFFallbackFonts::CPDFFallbackFonts(CPDFMachineFonts& machine) : m_machine(machine) {}

CPDFFallbackFonts::CPDFFallbackFonts()
    : CPDFFallbackFonts([]() -> CPDFMachineFonts& {
          static CPDFMachineFonts none;
          return none;
      }())
{
}

CPDFFallbackFonts::~CPDFFallbackFonts() = default;

CPDFTextFont* CPDFFallbackFonts::font_for(char32_t /*c*/, const FONT_STYLE& /*style*/)
{
    return nullptr;
}

PDF_REF CPDFFallbackFonts::object_of(const CPDFTextFont& /*font*/, CPDFXRefTable& /*xref*/)
{
    return {0, 0};
}

bool CPDFFallbackFonts::embed(CPDFXRefTable& /*xref*/)
{
    return true;
}

std::string CPDFFallbackFonts::problem()
{
    return PROBLEM;
}

bool read_form_font(const std::string& /*path*/, FORM_FONT& /*out*/, std::string& problem)
{
    problem = PROBLEM;
    return false;
}
