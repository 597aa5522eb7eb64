// Any bytes: open, walk, export, list, fill, save, open again.
#include "fuzz/open_form_check.h"
#include "fuzz/read_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    constexpr size_t MOST_FIELDS = 64;
    const std::vector<uint8_t> bytes(data, data + size);
    if (const char* wrong = open_form_fault(bytes, MOST_FIELDS))
        fault(wrong);
    CPDFDocument document;
    document.set_rescue(PDF_RESCUE::OFF);  // it forks
    if (!document.open(bytes).ok())
        return 0;
    export_all(document);
    list_all(document);
    return 0;
}
