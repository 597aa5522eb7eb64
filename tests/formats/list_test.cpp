#include "formats/list/list_json.h"

#include <gmock/gmock.h>

#include "document/document.h"
#include "document/xfa/data_value.h"
#include "tests/support/pdf_builder.h"

namespace {

using testing::HasSubstr;

std::string list_of(CPDFDocument& document)
{
    std::string out;
    const CPDFStatus status =
        write_list_json(document, PDF_LISTED::NAMED, {}, [&out](std::string_view piece) { out += piece; });
    EXPECT_TRUE(status.ok()) << status.text;
    return out;
}

// A program that holds a document lists it more than once, and changes it in between.
TEST(ListJsonTest, ListingAndGoingOn)
{
    for (const PDF_LOAD load : {PDF_LOAD::WHOLE_FORM, PDF_LOAD::FORM_AND_NOTES, PDF_LOAD::NAMED_FIELDS}) {
        const std::string text = PdfBuilder()
                                     .form({"<</FT/Btn/Ff 49152/T(box)/TU(Old)/Kids[11 0 R 12 0 R]>>",
                                            "<</Subtype/Widget/Parent 10 0 R/AP<</N<</a 1 0 R>>>>>>",
                                            "<</Subtype/Widget/Parent 10 0 R/AP<</N<</b 1 0 R>>>>>>"})
                                     .table()
                                     .text;
        CPDFDocument document;
        ASSERT_TRUE(document.open(std::vector<uint8_t>(text.begin(), text.end()), load).ok());
        const std::string before = list_of(document);
        EXPECT_THAT(before, HasSubstr(R"("value":null)"));
        EXPECT_THAT(before, HasSubstr(R"("widgets":[11,12])"));
        EXPECT_EQ(list_of(document), before);
        CPDFField* const box = document.field("box");
        ASSERT_TRUE(document.set_value(*box, "b").ok());
        PDF_FIELD_DESIGN design;
        design.label = "New";
        EXPECT_TRUE(document.design_fields({&box, 1}, design).ok());
        const std::string after = list_of(document);
        EXPECT_THAT(after, HasSubstr(R"("value":"b")"));
        EXPECT_THAT(after, HasSubstr(R"("label":"New")"));
        document.revert();
        EXPECT_EQ(list_of(document), before);
    }
}

}  // namespace
