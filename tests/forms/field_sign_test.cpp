#include "engine/sign.h"
#include "tests/forms/form_fixture.h"

TEST(FieldSignTest, SignedFieldsAndTheirAncestors)
{
    for (const auto& [entries, is_signed] : {std::pair("/FT /Sig /V << /Contents <01> >>", true),
                                             {"/FT /Sig /V << /Contents <> >>", false},
                                             {"/FT /Sig /V (x)", false},
                                             {"/FT /Tx /V << /Contents <01> >>", false}}) {
        SCOPED_TRACE(entries);
        FormFixture f("/Fields [2 0 R]",
                      "/T (top) /Kids [3 0 R 4 0 R]; /T (a); /T (b) /Kids [5 0 R]; /T (leaf) " + std::string(entries));
        EXPECT_EQ(f.field(5).is_signed(), is_signed);
        EXPECT_EQ(f.field(5).has_sign(), is_signed);
        EXPECT_EQ(f.field(2).has_sign(), is_signed);
        EXPECT_EQ(f.field(2).is_signed() + f.field(3).has_sign(), 0);
        // A slot may be empty, and a signature gone.
        delete f.field(2).m_kids[0];
        f.field(2).m_kids[0] = nullptr;
        EXPECT_EQ(f.field(2).has_sign(), is_signed);
        CPDFField& leaf = f.field(5);
        if (leaf.m_sign)
            leaf.m_sign->m_data_cnt = 0;
        EXPECT_EQ(f.field(2).has_sign(), 0);
    }
}
