// Any bytes as the XFA template of a form with a few fields: its events are bound while the form loads.
#include <cstdint>
#include <string>
#include <vector>

#include "document/document.h"
#include "forms/acro_form.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string objects[] = {
        "<</Type/Catalog/AcroForm 2 0 R>>",
        "<</Fields[3 0 R]/XFA[(template)6 0 R]>>",
        "<</T(form1[0])/Kids[4 0 R 5 0 R]>>",
        "<</T(a[0])/FT/Btn/Ff 65536/Parent 3 0 R>>",
        "<</T(b[0])/FT/Tx/Parent 3 0 R>>",
        "<</Length " + std::to_string(size) + ">>stream\n" + std::string(reinterpret_cast<const char*>(data), size) +
            "\nendstream",
    };
    std::string file = "%PDF-1.7\n";
    std::string table = "xref\n0 7\n0000000000 65535 f \n";
    for (const std::string& object : objects) {
        const std::string at = std::to_string(file.size());
        table += std::string(10 - at.size(), '0') + at + " 00000 n \n";
        file += std::to_string(&object - objects + 1) + " 0 obj\n" + object + "\nendobj\n";
    }
    const std::string table_at = std::to_string(file.size());
    file += table + "trailer<</Size 7/Root 1 0 R>>\nstartxref\n" + table_at + "\n%%EOF";
    CPDFDocument document;
    if (!document.open(std::vector<uint8_t>(file.begin(), file.end())).ok() || document.form().m_field_cnt != 1)
        __builtin_trap();
    return 0;
}
