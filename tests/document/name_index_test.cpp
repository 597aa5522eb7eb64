#include "document/lookup/name_index.h"

#include "core/limits.h"
#include "tests/document/fill_fixture.h"

TEST(NameIndexTest, ManyOfOneName)
{
    PdfBuilder file;
    FormAtWork f(file.form(std::vector<std::string>(60, "<</T(a)>>")).table().text);
    CPDFAcroForm& form = f.document.form();
    CPDFNameIndex index;
    EXPECT_EQ(index.find(form, "a"), form.m_fields[0]);
    index.remove(*form.m_fields[0]);
    EXPECT_EQ(index.find(form, "a"), form.m_fields[1]);
    index.add(*form.m_fields[0]);
    EXPECT_EQ(index.find(form, "a"), form.m_fields[1]) << "what is taken in comes last";
}

TEST(NameIndexTest, FirstInTreeOrderStoredNamesFirst)
{
    PdfBuilder file;
    file.form({"<</T(a)/Kids[20 0 R 21 0 R]>>", "<</T(a)>>", "<</T(b[1])>>", "<</T(b[0])/Kids[22 0 R]>>", "<</T(b)>>",
               "<</Kids[23 0 R]>>", "<</T(#c)>>", "<</T<FEFF00E9D83DDE00>>>", "<</T<FEFF>>>"});
    put_objects(file, 20, "/T(k)/Parent 10 0 R;/T(k)/Parent 10 0 R;/T(k[2])/Parent 13 0 R;/T(under)/Parent 15 0 R");
    FormAtWork f(file.table().text);
    const char* const cases =
        "a => 10 | a.k => 20 | b => 14 | b[0] => 13 | b[1] => 12 | b[0].k[2] => 22 | b.k => 22 | "
        "b[0].k => 0 | #c => 16 | under => 23 | \xC3\xA9\xF0\x9F\x98\x80 => 17 | A => 0 | a. => 0 | "
        "k => 0 |  => 18 | ";
    const auto num_of = [&f](const std::string& name) {
        const CPDFField* found = f.document.field(name);
        return found ? found->m_ref.num : 0;
    };
    for (const auto& [name, num] : rows_of(cases))
        EXPECT_EQ(std::to_string(num_of(name)), num) << name;
    // A name that changed is not found by mistake before the index is told, and found afterwards.
    f.field("under").set_name(L"below");
    EXPECT_EQ(num_of("under") + num_of("below"), 0u);
    f.document.fields_changed();
    EXPECT_EQ(num_of("under"), 0u);
    EXPECT_EQ(num_of("below"), 23u);
}

// Thousands of fields may share a name of megabytes; no more of it is read than a full name holds, whatever it decodes to.
TEST(NameIndexTest, OnlyTheBeginningOfALongNameIsRead)
{
    const std::string letters(400000, 'a');
    std::string escapes = "FEFF00780079007A";  // of languages, which are no text
    for (size_t i = 0; i < LIMIT_FULL_NAME; ++i)
        escapes += "001B00650066001B";
    FormAtWork f(form_of({"/T(" + letters + ")/Kids[20 0 R]", "/T<" + escapes + "0062>/Kids[21 0 R]"},
                         "/T(k)/Parent 10 0 R;/T(k)/Parent 11 0 R"));
    CPDFAcroForm& form = f.document.form();
    EXPECT_EQ(full_name(*form.m_fields[0]->m_kids[0]), letters.substr(0, LIMIT_FULL_NAME));
    EXPECT_EQ(full_name(*form.m_fields[1]->m_kids[0]), "xyz.k");
}
