// Any bytes as the XFA template of a form with a few fields: its events are bound while the form loads.
#include "document/document.h"
#include "forms/acro_form.h"
#include "fuzz/fuzz_bytes.h"
#include "fuzz/made_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CPDFDocument document;
    document.set_rescue(PDF_RESCUE::OFF);  // it forks
    const CPDFStatus status = document.open(made_file({{1, "<</Type/Catalog/AcroForm 2 0 R>>"},
                                                       {2, "<</Fields[3 0 R]/XFA[(template)6 0 R]>>"},
                                                       {3, "<</T(form1[0])/Kids[4 0 R 5 0 R]>>"},
                                                       {4, "<</T(a[0])/FT/Btn/Ff 65536/Parent 3 0 R>>"},
                                                       {5, "<</T(b[0])/FT/Tx/Parent 3 0 R>>"},
                                                       {6, stream_text({reinterpret_cast<const char*>(data), size})}}));
    check(status.ok() && document.form().m_field_cnt == 1, "the form does not load");
    return 0;
}
