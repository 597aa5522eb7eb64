#include "engine/resources.h"
#include "tests/forms/form_fixture.h"

TEST(FormLoadTest, UnloadAndLoadAgain)
{
    FormFixture f("/Fields [2 0 R 3 0 R 4 0 R] /DR << /Font << /F 8 0 R >> >> /XFA [(datasets) 7 0 R]",
                  "/T (a); 12; /T (c) /Kids [5 0 R]; /T (d)");
    EXPECT_EQ(shape_of(f.form), "a - c(d)");
    ASSERT_NE(f.form.m_res, nullptr);
    EXPECT_NE(f.form.m_res->find("Font", "F"), nullptr);
    f.form.unload();
    EXPECT_TRUE(!f.form.m_fields && !f.form.m_field_cnt && !f.form.m_res && !f.form.m_loaded && !f.form.m_xfa_ref.num);
    EXPECT_TRUE(f.form.m_has_xfa == 1 && f.form.m_ref.num == 1 && f.form.m_root == &f.root);
    EXPECT_TRUE(!f.form.find(PDF_REF{2, 0}) && !f.form.get_field(L"a"));
    f.doc.put(1, "<< /Fields [4 0 R] >>");
    f.load();
    EXPECT_EQ(shape_of(f.form), "c(d)");
    EXPECT_EQ(f.form.m_res, nullptr);
}

TEST(FormLoadTest, FindsTopLevelFieldsByName)
{
    const std::string name(300, 'n');
    FormFixture f("/Fields [9 0 R 2 0 R 3 0 R 4 0 R 5 0 R 6 0 R 8 0 R]",
                  "/T (a) /Kids [7 0 R]; /T (" + name.substr(0, 61) + "); /T (" + name +
                      "); /X 1; /T <FEFF044F>; /T (kid); /T (a)");
    const auto n = [](size_t count) { return std::wstring(count, L'n'); };
    const struct {
        std::wstring name;
        uint32_t found, got;  // object numbers by find and by get_field
    } cases[] = {{L"a", 2, 2},  {L"kid", 0, 0}, {L"я", 6, 6},  {L"", 0, 5},    {L"A", 0, 0},   {n(60), 0, 0},
                 {n(61), 3, 3}, {n(62), 0, 0},  {n(70), 0, 0}, {n(254), 0, 4}, {n(255), 0, 0}, {n(300), 0, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name.size());
        const CPDFField* found = f.form.find(c.name.c_str());
        EXPECT_EQ(found ? found->m_ref.num : 0, c.found);
        const CPDFField* got = f.form.get_field(c.name.c_str());
        EXPECT_EQ(got ? got->m_ref.num : 0, c.got);
        PDF_String string;
        string.init(c.name.c_str(), 1);
        EXPECT_EQ(f.form.get_field(string), got);
        string.release();
    }
    // A longer name counts by its first 61 characters.
    EXPECT_NE(FormFixture("/Fields [2 0 R]", "/T (" + name + ")").form.find(n(61).c_str()), nullptr);
}

TEST(FormLoadTest, XfaEntry)
{
    const char* const cases =
        " => 0 0 R | /XFA [(preamble) 5 0 R (template) 50 0 R (datasets) 7 3 R (postamble) 5 0 R] => 7 3 R | "
        "/XFA [(template) 50 0 R (datasets)] => 0 0 R | /XFA [(datasets) (x)] => 0 0 R | "
        "/XFA [(datasets) 5 0 R (datasets) 7 0 R] => 7 0 R | /XFA 3 0 R => 7 0 R | /XFA 50 2 R => 50 2 R | "
        "/XFA (x) => 0 0 R | ";
    for (const auto& [entry, expected] : rows_of(cases)) {
        FormFixture f("/Fields [2 0 R] " + entry, "/T (a); [(datasets) 7 0 R]", "<template/>");
        CPDFObj dataset;
        dataset.set_ref(f.form.m_xfa_ref);
        EXPECT_EQ(show_object(dataset), expected) << entry;
        EXPECT_EQ(f.form.m_has_xfa, entry.empty() ? 0 : 1) << entry;
        EXPECT_EQ(shape_of(f.form), "a");
    }
}
