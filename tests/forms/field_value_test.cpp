#include "tests/forms/form_fixture.h"

namespace {
// What get_vaue writes into `size` bytes. A write outside them or a missing terminator is a test failure.
std::string value_in(CPDFField& field, int size)
{
    constexpr char GUARD = 0x5A;
    std::vector<char> buf(static_cast<size_t>(size) + 2, GUARD);
    field.get_vaue(buf.data() + 1, size);
    EXPECT_TRUE(buf.front() == GUARD && buf.back() == GUARD) << size;
    if (size <= 0)
        return {};
    EXPECT_TRUE(std::memchr(buf.data() + 1, 0, static_cast<size_t>(size))) << size;
    return buf.data() + 1;
}
}  // namespace

TEST(FieldValueTest, ValuesAsTextFitAnyBuffer)
{
    const std::string state(300, 's');
    const std::string cases =
        "/V true => true | /V false => false | /V -2147483648 => -2147483648 | /V 1.1 => 1.100000 | "
        "/V -2.5 => -2.500000 | /V -137438953472.0 => -137438953472.000000 | /V () =>  | /V [(abc)] => abc | "
        "/V /J\xC3\xBC\xE2\x82\xAC => J\xC3\xBC\xE2\x82\xAC | /V <E9A020ACE9> => \xC3\xA9\xE2\x82\xAC \xC2\xAC\xC3\xA9 | "
        "/V <FEFF00E920ACD83DDE00004D> => \xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80M | /V [3 0 R] => far | /V [4 0 R] =>  | "
        "/V [/abc] =>  | /V [] =>  | /V [(a) (b)] =>  | /V << /A (b) >> =>  | /V 3 0 R => far | ";
    for (const auto& [entries, text] : rows_of(cases + "/V /" + state + " => " + state)) {
        SCOPED_TRACE(entries.substr(0, 40));
        FormFixture f("/Fields [2 0 R]", "/T (t) " + entries + "; (far)");
        for (int size = 0; size < 40; ++size) {
            std::string fits = text.substr(0, static_cast<size_t>(std::max(size - 1, 0)));
            while (fits.size() < text.size() && !fits.empty() && (text[fits.size()] & 0xC0) == 0x80)
                fits.pop_back();
            EXPECT_EQ(value_in(f.field(2), size), fits) << size;
        }
        EXPECT_EQ(value_in(f.field(2), 512), text);
        f.field(2).get_vaue(nullptr, 512);
    }
}

TEST(FieldValueTest, OnlyTextFieldsTakeTexts)
{
    const std::string bytes = "new";
    const PDF_String text = string_of(bytes);
    for (const char* kind : {"/FT /Btn ", "/FT /Ch ", "/FT /Sig ", "", "/FT /Tx "}) {
        SCOPED_TRACE(kind);
        FormFixture f("/Fields [2 0 R]", kind + std::string("/V (v) /DA (d)"));
        CPDFField& field = f.field(2);
        const bool is_text = field.m_type == FIELD_TEXT;
        const bool has_appearance = is_text || field.m_type == FIELD_CHOICE;
        EXPECT_EQ(field.get_edit_value(), is_text ? &field.m_value.str : nullptr);
        EXPECT_EQ(field.get_edit_apperance(), has_appearance ? &field.m_da.str : nullptr);
        field.set_edit_value(&text);
        field.set_edit_appearnce(&text);
        EXPECT_EQ(show_object(field.m_value) + show_object(field.m_da), is_text ? "(new)(new)" : "(v)(d)");
        EXPECT_EQ(f.doc.show(2),
                  is_text ? "<< /DA (new) /FT /Tx /V (new) >>" : "<< /DA (d) " + std::string(kind) + "/V (v) >>");
        EXPECT_EQ(f.doc.xref.changed_count(), is_text ? 1 : 0);
    }
}

TEST(FieldValueTest, TextsOfEveryShape)
{
    FormFixture f("/Fields [2 0 R]", "/FT /Tx /MaxLen 2 /Ff 1 /RV (r) /V (v)");
    CPDFField& field = f.field(2);
    const std::string bytes("a\0(b)", 5);
    const PDF_String text = string_of(bytes);
    field.set_edit_value(&text);
    EXPECT_EQ(f.doc.show(2), "<< /FT /Tx /Ff 1 /MaxLen 2 /RV (r) /V <6100286229> >>");
    field.set_edit_value(field.get_edit_value());  // its own text
    EXPECT_EQ(show_object(field.m_value), "<6100286229>");
    for (const PDF_String none : {PDF_String{5, nullptr}, PDF_String{-1, text.buf}}) {
        field.set_edit_value(&none);
        EXPECT_TRUE(field.m_value.type == PDF_OBJ_STRING && field.m_value.str.len == 0 && !field.m_value.str.buf);
        EXPECT_EQ(f.doc.show(2), "<< /FT /Tx /Ff 1 /MaxLen 2 /RV (r) /V () >>");
    }
    // Without its dictionary the field still takes the value.
    f.doc.xref.discard_changes();
    f.doc.put_free(2);
    field.set_edit_value(&text);
    field.set_edit_appearnce(&text);
    EXPECT_EQ(show_object(field.m_value) + show_object(field.m_da), "<6100286229><6100286229>");
    EXPECT_EQ(f.doc.xref.changed_count(), 0);
}

TEST(FieldValueTest, TextOfTheNearestTextField)
{
    const struct {
        const char *top, *middle, *leaf, *expected;
    } cases[] = {
        {"/FT /Tx /V (t)", "/V (m)", "/V (l)", "l"},
        {"/FT /Tx /V (t)", "/V (m)", "/V /name", "m"},
        {"/FT /Tx /V (t)", "", "", "t"},
        {"/FT /Tx /V (t)", "/FT /Ch /V (m)", "/FT /Tx", "none"},
        {"/V (t)", "/FT /Tx", "", "none"},
        {"/FT /Tx", "", "", "none"},
    };
    for (const auto& c : cases) {
        FormFixture f("/Fields [2 0 R]",
                      "/Kids [3 0 R] " + std::string(c.top) + "; /Kids [4 0 R] " + c.middle + ";/T (l)" + c.leaf);
        const PDF_String* text = f.field(4).get_edit_value();
        EXPECT_EQ(text ? text_of(*text) : "none", c.expected) << c.top << c.middle << c.leaf;
    }
    FormFixture f("/Fields [2 0 R]", "/FT /Tx /DA (t) /Kids [3 0 R]; /T (l)");
    EXPECT_EQ(f.field(3).get_edit_apperance(), nullptr);
}

TEST(FieldValueTest, ReadOnlyWritesTheInheritedFlagsToo)
{
    FormFixture f("/Fields [2 0 R]", "/FT /Btn /Ff 32768 /Kids [3 0 R]; /T (k)");
    CPDFField& field = f.field(3);
    const std::pair<int, const char*> steps[] = {
        {1, "<< /Ff 32769 /T (k) >>"}, {-1, "<< /Ff 32769 /T (k) >>"}, {0, "<< /Ff 32768 /T (k) >>"}};
    for (const auto& [on, expected] : steps) {
        field.set_read_only(on);
        EXPECT_EQ(f.doc.show(3), expected);
    }
    EXPECT_EQ(field.m_flags, 0x8000u);
    f.doc.xref.discard_changes();
    f.doc.put_free(3);
    field.set_read_only(1);
    EXPECT_EQ(field.m_flags, 0x8000u);
    EXPECT_EQ(f.doc.xref.changed_count(), 0);
}
