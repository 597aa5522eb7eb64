#include "tests/forms/form_fixture.h"

namespace {
// Objects 2 to 14: a[0](b(c #1(leaf) (under[2])) x](y))  #top(k)  (()), with object 13 a widget of a[0].
constexpr const char* FIELDS = "/Fields [2 0 R 9 0 R 11 0 R]";
constexpr const char* TREE =
    "/T (a[0]) /Kids [3 0 R 8 0 R 13 0 R]; /T (b) /Kids [4 0 R 5 0 R 6 0 R]; /T (c); /T (#1) /Kids [14 0 R]; /Kids [7 0 R];"
    "/T (under[2]); /T (x]) /Kids [15 0 R]; /T (#top) /Kids [10 0 R]; /T <FEFF006B0026044FD83DDE00>; /Kids [12 0 R]; /X 1;"
    "/Subtype /Widget; /T (leaf); /T (y)";
}  // namespace

TEST(FieldLookupTest, ByPath)
{
    FormFixture f(FIELDS, TREE);
    const std::pair<const char*, uint32_t> cases[] = {
        {"a", 2},          {"a.b", 3},  {"a.b.c", 4},  {"b.c", 4},     {"a.c", 4},    {"c", 4},     {"a.b.x", 0},
        {"ab", 0},         {"a[0]", 0}, {"a.bc", 0},   {"a.leaf", 14}, {"a.b.#1", 0}, {"under", 7}, {"a.b.under", 7},
        {"a.under[2]", 0}, {"a.y", 15}, {"a.x].y", 0}, {"", 0},        {"a.", 0},     {"a..b", 0},  {".a", 0},
    };
    for (const auto& [path, expected] : cases) {
        const CPDFField* found = f.form.m_fields[0]->get(path);
        EXPECT_EQ(found ? found->m_ref.num : 0, expected) << path;
    }
    EXPECT_EQ(f.form.m_fields[1]->get("k&amp;я\U0001F600"), &f.field(10));
    EXPECT_EQ(f.form.m_fields[1]->get("#top"), nullptr);
    EXPECT_EQ(f.form.m_fields[0]->get(PDF_REF{7, 99}), &f.field(7));
    EXPECT_EQ(f.form.m_fields[0]->get(PDF_REF{13, 1}), f.form.m_fields[0]);
    EXPECT_EQ(f.form.m_fields[0]->get(PDF_REF{9, 0}), nullptr);
    // Long names match by their first 127 characters.
    const std::string name(127, 'n');
    FormFixture g("/Fields [2 0 R]", "/T (" + name + "more) /Kids [3 0 R]; /T (k)");
    EXPECT_EQ(g.field(2).get(name.c_str()), &g.field(2));
    EXPECT_EQ(g.field(2).get((name + ".k").c_str()), &g.field(3));
    EXPECT_EQ(g.field(2).get((name + "more").c_str()), nullptr);
    EXPECT_EQ(g.field(2).get(name.substr(1).c_str()), nullptr);
}

TEST(FieldNameTest, FourForms)
{
    FormFixture f(FIELDS, TREE);
    const struct {
        uint32_t num;
        const wchar_t *name, *with_number, *full, *stored;
    } cases[] = {
        {2, L"a[0]", L"a[0]", L"a", L"a[0]"},
        {4, L"c", L"c", L"a.b.c", L"a[0].b.c"},
        {6, L"b", L"b#2", L"a.b#2", L"a[0].b#2"},
        {7, L"under[2]", L"under[2]", L"a.b#2.under", L"a[0].b#2.under[2]"},
        {15, L"y", L"y", L"a.y", L"a[0].x].y"},
        {9, L"#top", L"#top", L"#top", L"#top"},
        {10, L"k&я\U0001F600", L"k&я\U0001F600", L"#top.k&я\U0001F600", L"#top.k&я\U0001F600"},
        {12, L"", L"#0", L"", L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.num);
        CPDFField& field = f.field(c.num);
        EXPECT_EQ(name_of(field, &CPDFField::get_name), c.name);
        EXPECT_EQ(name_of(field, &CPDFField::get_name_with_no), c.with_number);
        EXPECT_EQ(name_of(field, &CPDFField::get_full_name), c.full);
        EXPECT_EQ(name_of(field, &CPDFField::get_full_name2), c.stored);
    }
}

// A cut name is the beginning of the whole one; nothing is written outside the buffer.
TEST(FieldNameTest, SmallBuffers)
{
    FormFixture f("/Fields [2 0 R]", "/T <FEFF0061D83DDE00> /Kids [3 0 R]; /Kids [4 0 R]; /T (b) /Kids [5 0 R]; /X 1");
    f.field(3).m_index = 1234567890;
    for (const uint32_t num : {2u, 3u, 4u, 5u}) {
        for (const NameReader reader : {&CPDFField::get_name, &CPDFField::get_name_with_no, &CPDFField::get_full_name,
                                        &CPDFField::get_full_name2}) {
            const std::wstring whole = name_of(f.field(num), reader);
            const int enough = static_cast<int>(whole.size()) + 1;
            for (int size = -1; size <= enough; ++size) {
                const std::wstring cut = name_of(f.field(num), reader, size);
                EXPECT_EQ(cut, whole.substr(0, cut.size())) << num << " in " << size;
                EXPECT_TRUE(size < enough || cut == whole);
            }
        }
    }
}

TEST(FieldNameTest, SetName)
{
    FormFixture f("/Fields [2 0 R]", "/FT /Tx /T (old) /TU (t)");
    CPDFField& field = f.field(2);
    const std::pair<const wchar_t*, const char*> cases[] = {
        {L"Ab", "<FEFF00410062>"}, {L"\U0001F600]", "<FEFFD83DDE00005D>"}, {nullptr, "<FEFF>"}};
    for (const auto& [name, stored] : cases) {
        field.set_name(name);
        EXPECT_EQ(f.doc.show(2), "<< /FT /Tx /T " + std::string(stored) + " /TU (t) >>");
        EXPECT_EQ(name_of(field, &CPDFField::get_name), name ? name : L"");
    }
    f.doc.put_free(2);
    field.set_name(L"x");
    EXPECT_EQ(name_of(field), L"x");
    EXPECT_EQ(f.doc.xref.changed_count(), 1);
}
