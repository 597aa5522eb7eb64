// The XFA data of a form, read and filled by path, and brought in step with its fields. The first byte tells whether the rest is
// the data set or the one stream with all packets; after writing, writing again changes nothing more.
#include "core/stream.h"
#include "core/xref_table.h"
#include "document/document.h"
#include "document/xfa/data_value.h"
#include "forms/acro_form.h"
#include "fuzz/fuzz_bytes.h"
#include "fuzz/made_file.h"

namespace {

std::string xfa_of(CPDFDocument& document)
{
    CPDFObj object;
    document.xref().get_entity(object, document.form().m_xfa_ref);
    check(object.type == PDF_OBJ_STREAM, "the XFA data are no stream");
    const std::unique_ptr<CPDFStream> stream(document.xref().make_stream(object.stream));
    check(stream != nullptr, "the XFA data can't be read");
    std::string text;
    char buf[4096];
    while (const int got = stream->read_data(buf, sizeof buf))
        text.append(buf, static_cast<size_t>(got));
    return text;
}

std::vector<uint8_t> written(CPDFDocument& document)
{
    std::vector<uint8_t> out;
    check(document.save(out).ok(), "the form can't be saved");
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzBytes bytes(data, size);
    const char* const entry = bytes.byte() % 2 ? " 6 0 R" : "[(preamble)7 0 R(datasets)6 0 R(postamble)7 0 R]";
    CPDFDocument document;
    document.set_rescue(PDF_RESCUE::OFF);  // it forks
    check(document
              .open(made_file({{1, "<</Type/Catalog/AcroForm 2 0 R>>"},
                               {2, "<</Fields[3 0 R]/XFA" + std::string(entry) + ">>"},
                               {3, "<</T(form1[0])/Kids[4 0 R 5 0 R]>>"},
                               {4, "<</T(a[0])/FT/Tx/V(<&\xFE>)/Parent 3 0 R>>"},
                               {5, "<</T(b[0])/FT/Ch/Ff 131072/V(x)/Opt[(x)]/Parent 3 0 R>>"},
                               {6, stream_text(bytes.rest())},
                               {7, stream_text("<x/>")}}))
              .ok(),
          "the form does not open");
    std::vector<PDF_XFA_VALUE> values;
    if (document.xfa_values(values).ok() && !values.empty()) {
        const PDF_XFA_VALUE last = {values.back().path, "<\n>"};
        check(document.set_xfa_values({last}).ok(), "a value that was listed is not there");
        check(document.xfa_values(values).ok() && values.back().value == last.value,
              "a value that was set is not there");
        document.revert();
    }
    const CPDFStatus status = document.write_xfa();
    check(status.ok() || !status.text.empty(), "the refusal has no sentence");
    if (!status.ok())
        return 0;
    CPDFDocument again;
    again.set_rescue(PDF_RESCUE::OFF);  // it forks
    check(again.open(written(document)).ok(), "the output can't be opened");
    const std::string text = xfa_of(again);
    check(again.write_xfa().ok() && xfa_of(again) == text, "writing the data set again changes it");
    return 0;
}
