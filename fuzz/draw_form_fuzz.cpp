// Parts separated by lines of one semicolon: a value, entries of a field that is its own widget, entries of the form, and
// objects from number 10 on, fonts among them; one that begins with "stream " is a stream behind its dictionary's line. The
// field gets the value, is drawn, saved and made a part of its page.
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "document/document.h"
#include "fuzz/made_file.h"

namespace {

std::string object_text(const std::string& part)
{
    constexpr std::string_view MARK = "stream ";
    if (!part.starts_with(MARK))
        return part;
    const size_t end = std::min(part.find('\n'), part.size());
    return stream_text(std::string_view(part).substr(std::min(end + 1, part.size())),
                       part.substr(MARK.size(), end - MARK.size()));
}

std::vector<uint8_t> file_of(const std::vector<std::string>& parts)
{
    std::vector<std::pair<int, std::string>> objects = {
        {1, "<</Type/Catalog/Pages 2 0 R/AcroForm 3 0 R>>"},
        {2, "<</Type/Pages/Count 1/Kids[4 0 R]>>"},
        {3, "<</Fields[5 0 R]" + parts[2] + ">>"},
        {4, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 600 800]/Annots[5 0 R]>>"},
        {5, "<</Type/Annot/Subtype/Widget/T(f)/Rect[10 10 200 60]" + parts[1] + ">>"}};
    for (size_t i = 3; i < parts.size(); ++i)
        objects.emplace_back(static_cast<int>(i) + 7, object_text(parts[i]));
    return made_file(objects);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::vector<std::string> parts = parts_of({reinterpret_cast<const char*>(data), size}, 3, 40);
    CPDFDocument document;
    document.set_rescue(PDF_RESCUE::OFF);  // it forks
    if (!document.open(file_of(parts)).ok())
        return 0;
    CPDFField* field = document.field("f");
    if (!field || !document.set_value(*field, parts[0], PDF_FILL::FORCE).ok())
        return 0;
    std::vector<uint8_t> out;
    if (!document.save(out).ok())
        return 0;
    CPDFDocument again;
    again.set_rescue(PDF_RESCUE::OFF);  // it forks
    if (!again.open(out).ok())
        std::abort();
    if (again.flatten(PDF_EDIT::FORCE).ok() && (!again.save(out).ok() || again.has_form()))
        std::abort();
    return 0;
}
