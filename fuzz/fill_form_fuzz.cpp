// Any bytes: open, fill every field by its kind, save, open again. What follows the last end mark picks the values.
#include "fuzz/form_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    constexpr size_t MOST_FIELDS = 64;
    const std::vector<uint8_t> bytes(data, data + size);
    CPDFDocument document;
    document.set_rescue(PDF_RESCUE::OFF);  // it forks
    if (!document.open(bytes).ok())
        return 0;
    const char* wrong = fill_fault(document, MOST_FIELDS, size ? bytes.back() : 0);
    if (!wrong)
        wrong = save_fault(document, bytes);
    if (wrong)
        fault(wrong);
    return 0;
}
