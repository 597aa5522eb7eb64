#include "document/name_index.h"

#include "tests/document/fill_fixture.h"

TEST(NameIndexTest, FirstInTreeOrderStoredNamesFirst)
{
    FormAtWork f(PdfBuilder()
                     .form({"<</T(a)/Kids[20 0 R 21 0 R]>>", "<</T(a)>>", "<</T(b[1])>>", "<</T(b[0])/Kids[22 0 R]>>",
                            "<</T(b)>>", "<</Kids[23 0 R]>>", "<</T(#c)>>", "<</T<FEFF00E9>>>", "<</T<FEFF>>>"})
                     .object(20, "<</T(k)/Parent 10 0 R>>")
                     .object(21, "<</T(k)/Parent 10 0 R>>")
                     .object(22, "<</T(k[2])/Parent 13 0 R>>")
                     .object(23, "<</T(under)/Parent 15 0 R>>")
                     .table()
                     .text);
    const std::pair<const char*, uint32_t> cases[] = {
        {"a", 10},         {"a.k", 20}, {"b", 14},     {"b[0]", 13}, {"b[1]", 12},
        {"b[0].k[2]", 22}, {"b.k", 22}, {"b[0].k", 0}, {"#c", 16},   {"under", 23},
        {"\xC3\xA9", 17},  {"A", 0},    {"a.", 0},     {"k", 0},     {"", 18},
    };
    CPDFNameIndex index;
    const auto num_of = [&](const char* name) {
        const CPDFField* found = index.find(f.document.form(), name);
        return found ? found->m_ref.num : 0;
    };
    for (const auto& [name, num] : cases)
        EXPECT_EQ(num_of(name), num) << name;
    // A name that changed is not found by mistake before the index is told, and found afterwards.
    f.field("under").set_name(L"below");
    EXPECT_EQ(num_of("under") + num_of("below"), 0u);
    index.clear();
    EXPECT_EQ(num_of("under"), 0u);
    EXPECT_EQ(num_of("below"), 23u);
}

TEST(NameIndexTest, EveryFieldOfALargeFormIsFound)
{
    constexpr uint32_t COUNT = 30000;
    PdfBuilder file;
    std::string kids;
    for (uint32_t num = 100; num < 100 + COUNT; ++num) {
        kids += std::to_string(num) + " 0 R ";
        file.object(num, "<</Parent 10 0 R/T(" + std::to_string(num) + "[0])>>");
    }
    FormAtWork f(file.form({"<</T(all)/Kids[" + kids + "]>>"}).table().text);
    CPDFNameIndex index;
    for (uint32_t num = 100; num < 100 + COUNT; ++num) {
        for (const char* suffix : {"[0]", ""}) {
            const CPDFField* found = index.find(f.document.form(), "all." + std::to_string(num) + suffix);
            ASSERT_TRUE(found && found->m_ref.num == num) << num << suffix;
        }
    }
}
