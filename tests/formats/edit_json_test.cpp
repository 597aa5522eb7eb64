#include "formats/design/edit_json.h"

#include <gtest/gtest.h>

#include "document/document.h"
#include "document/lookup/field_notes.h"
#include "forms/field.h"
#include "tests/support/pdf_builder.h"

namespace {

CPDFStatus open_page(CPDFDocument& document)
{
    const std::string text = PdfBuilder()
                                 .object(1, "<</Type/Catalog/Pages 2 0 R>>")
                                 .object(2, "<</Type/Pages/Count 1/Kids[3 0 R]>>")
                                 .object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 300 300]>>")
                                 .table()
                                 .text;
    return document.open(std::vector<uint8_t>(text.begin(), text.end()));
}

// What the JSON asks for is what the document then has.
TEST(EditJsonTest, FieldsAreMadeAndChanged)
{
    CPDFDocument document;
    ASSERT_TRUE(open_page(document).ok());
    PDF_NEW_FIELD field;
    PDF_FIELD_DESIGN design;
    CPDFStatus status = read_new_field(R"({"kind": "list", "name": "a.b", "multiSelect": true, "required": false,
        "places": [{"rect": [10, 20.5, 100, 60]}], "options": ["x=1", {"value": "y", "text": "Why"}],
        "default": ["x=1", "y"], "label": "Choose", "fontSize": 9.5, "borderColor": "#FF0000", "align": "right"})",
                                       field, design);
    ASSERT_TRUE(status.ok()) << status.text;
    EXPECT_EQ(design.style.size, 9.5);
    EXPECT_EQ(design.style.border_color, (PDF_FIELD_COLOR{1, 0, 0}));
    EXPECT_EQ(design.style.alignment, PDF_ALIGNMENT::RIGHT);
    CPDFField* added = nullptr;
    status = document.add_field(field, PDF_EDIT::RESPECT_SIGNATURES, &added);
    ASSERT_TRUE(status.ok()) << status.text;
    EXPECT_TRUE(document.design_fields({&added, 1}, design).ok());
    EXPECT_EQ(added->m_flags, static_cast<uint32_t>(FIELD_MULTI_SELECT));
    EXPECT_EQ(added->m_opt_cnt, 2);
    EXPECT_EQ(added->m_sel_cnt, 2);
    EXPECT_EQ(document.field_notes().label_of(added->m_ref), "Choose");

    PDF_FIELD_CHANGE change;
    std::optional<PDF_MOVE> move;
    status = read_field_change(R"({"multiSelect": false, "readOnly": true, "options": ["z"], "default": "z",
        "places": [{"rect": [0, 0, 10, 10], "page": 1}, {"rect": [1, 2, 3, 4]}]})",
                               change, design, move);
    ASSERT_TRUE(status.ok()) << status.text;
    EXPECT_EQ(change.set_flags, static_cast<uint32_t>(FIELD_READ_ONLY));
    EXPECT_EQ(change.clear_flags, static_cast<uint32_t>(FIELD_MULTI_SELECT));
    EXPECT_EQ(change.default_value, CPDFValue("z"));
    EXPECT_FALSE(design.sets_any());
    ASSERT_TRUE(move && move->places.size() == 2);
    EXPECT_EQ(move->places[0].page, 1);
    EXPECT_EQ(move->places[1].page, 0);
    EXPECT_EQ(move->places[1].rect.height, 4);
    ASSERT_TRUE(read_field_change(R"({"maxLength": null, "page": 2})", change, design, move).ok());
    EXPECT_EQ(change.max_length, 0);
    EXPECT_TRUE(move && move->page == 2 && move->places.empty());
    ASSERT_TRUE(read_field_change("{}", change, design, move).ok());
    EXPECT_FALSE(move || change.max_length);
}

TEST(EditJsonTest, RefusalsNameTheKey)
{
    const struct {
        const char *json, *refusal;
    } changes[] = {
        {R"({"label": "a", "colour": "red"})", R"(there is no key "colour" for a field)"},
        {R"({"name": "a"})", R"(there is no key "name" for a field)"},
        {R"({"required": 1})", R"("required" is not true or false)"},
        {R"({"maxLength": 2.5})", R"("maxLength" is not a number of characters or null)"},
        {R"({"maxLength": 99999999999999999999})", R"("maxLength" is not a number of characters or null)"},
        {R"({"label": 5})", R"("label" is not a text)"},
        {R"({"fontSize": true})", R"("fontSize" is not a number of points or auto)"},
        {R"({"fontSize": -1})", R"("fontSize": "-1" is not a number of points or auto)"},
        {R"({"color": "none"})", R"("color": "none" is not a colour: #RRGGBB, a name such as red or gray, or none)"},
        {R"({"options": [{"text": "a"}]})",
         R"("options" is not a list of texts or of objects with "value" and "text")"},
        {R"({"default": [1]})", R"("default" is not a text, true, false or a list of texts)"},
        {R"({"page": 0})", R"("page" is not a page number, counted from 1)"},
        {R"({"places": [{"rect": [1, 2, 3]}]})",
         R"("places" has one that is not {"page": NUMBER, "rect": [X, Y, WIDTH, HEIGHT]})"},
        {R"({"places": {}})", R"("places" is not a list of places)"},
        {"[]", "the JSON is not one object"},
        {"{\n1}", "line 2, column 1: syntax error"},
    };
    PDF_FIELD_CHANGE change;
    PDF_FIELD_DESIGN design;
    std::optional<PDF_MOVE> move;
    for (const auto& c : changes) {
        const CPDFStatus status = read_field_change(c.json, change, design, move);
        EXPECT_EQ(status.text.substr(0, std::string(c.refusal).size()), c.refusal) << status.text;
    }
    PDF_NEW_FIELD field;
    EXPECT_EQ(read_new_field(R"({"kind": "text", "name": "a"})", field, design).text, R"(the key "places" is missing)");
    EXPECT_EQ(read_new_field(R"({"kind": "box", "name": "a", "places": []})", field, design).text,
              R"("kind" is not text, check, radio, combo, list, push or signature)");
}

}  // namespace
