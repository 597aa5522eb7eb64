// Parts separated by lines of one semicolon: a password, the encryption dictionary, the first file identifier, entries of a text
// field, and the data of a stream that another field has as its value. The file is opened, filled, saved and opened again.
#include "fuzz/form_check.h"
#include "fuzz/made_file.h"
#include "fuzz/read_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::vector<std::string> parts = parts_of({reinterpret_cast<const char*>(data), size}, 5, 5);
    const std::vector<uint8_t> bytes = made_file({{1, "<</Type/Catalog/AcroForm<</Fields[3 0 R 4 0 R]/DR 6 0 R>>>>"},
                                                  {3, "<</T(f)/FT/Tx" + parts[3] + ">>"},
                                                  {4, "<</T(rich)/FT/Tx/V 6 0 R>>"},
                                                  {5, parts[1]},
                                                  {6, stream_text(parts[4])}},
                                                 "/Encrypt 5 0 R/ID[" + parts[2] + parts[2] + "]");
    CPDFDocument document;
    document.set_rescue(PDF_RESCUE::OFF);  // it forks
    const CPDFStatus status = document.open(bytes, PDF_LOAD::WHOLE_FORM, parts[0]);
    check_sentence(status);
    if (!status.ok())
        return 0;
    export_all(document);
    const char* wrong = fill_fault(document, SIZE_MAX, size);
    if (!wrong)
        wrong = save_fault(document, bytes, parts[0]);
    if (wrong)
        fault(wrong);
    return 0;
}
