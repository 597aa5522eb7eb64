#include "tests/forms/form_fixture.h"

namespace {
// Kind, flags, whether they are the field's own, and what else was loaded.
std::string describe(const CPDFField& field)
{
    static const std::string KINDS[] = {"-", "Btn", "Tx", "Ch", "Sig"};
    std::string text = KINDS[field.m_type] + " " + std::to_string(field.m_flags);
    text += field.m_inherited ? " inherited" : " own";
    if (field.m_max_len)
        text += " max " + std::to_string(field.m_max_len);
    const std::pair<const char*, const CPDFObj&> objects[] = {
        {" V ", field.m_value}, {" DV ", field.m_def_value}, {" DA ", field.m_da}};
    for (const auto& [key, obj] : objects)
        text += obj.type ? key + show_object(obj) : "";
    for (const PDF_FIELD_OPT* opt = field.m_opts; opt < field.m_opts + field.m_opt_cnt; ++opt)
        text += " " + text_of(opt->val) + (opt->text.buf ? "|" + text_of(opt->text) : "");
    for (int32_t i = 0; i < field.m_sel_cnt; ++i)
        text += " #" + std::to_string(field.m_sels[i]);
    return text;
}
}  // namespace

TEST(FieldLoadTest, Entries)
{
    const char* const cases =
        "/T (a) => - 0 inherited | /FT /Tx /MaxLen 10 => Tx 0 own max 10 | /FT /Tx /MaxLen 3 0 R => Tx 0 own max 4 | "
        "/FT 4 0 R /Ff 5 0 R => Btn 49152 own | /FT /Tx /Ff 3.6 => Tx 4 own | "
        "/FT /Tx /V (v) /DV 6 0 R /DA (/F 0 Tf) => Tx 0 own V (v) DV (far) DA (/F 0 Tf) | "
        "/V () /DV (d) => - 0 inherited V () DV (d) | /V 99 0 R /DV (d) => - 0 inherited V (d) DV (d) | "
        "/FT /Ch /Opt [(a) [(b) (B)] [/c /C] [(d)] [] 5 [7 (e)]] => Ch 0 own a b|B c|C d   |e | "
        "/FT /Ch /Opt [6 0 R [6 0 R 6 0 R] 7 0 R] => Ch 0 own far far|far p|P | /FT /Ch /Opt (a) /I 3 => Ch 0 own | "
        "/FT /Ch /I [1 2.4 (x) 3 0 R -1] => Ch 0 own #1 #2 #0 #4 #-1 | ";
    for (const auto& [entries, expected] : rows_of(cases)) {
        FormFixture f("/Fields [2 0 R]", entries + "; 3.6; /Btn; 49152; (far); [(p) (P)]");
        EXPECT_EQ(describe(f.field(2)), expected) << entries;
    }
}

TEST(FieldLoadTest, OnlyKindAndFlagsAreInherited)
{
    const struct {
        const char *parent, *kid, *expected;
    } cases[] = {
        {"/FT /Btn /Ff 49152", "", "Btn 49152 inherited"},
        {"/FT /Btn /Ff 49152", "/Ff 0", "Btn 0 own"},
        {"/FT /Btn /Ff 3", "/FT /Tx", "Tx 3 own"},
        {"/FT /Btn", "/FT /Foo", "Btn 0 own"},
        {"/FT /Tx /MaxLen 5 /V (v) /DV (d) /DA (da) /Opt [(a)] /I [0]", "", "Tx 0 inherited"},
        {"/FT /Tx", "/MaxLen 5", "Tx 0 inherited max 5"},
    };
    for (const auto& c : cases) {
        FormFixture f("/Fields [2 0 R]", "/Kids [3 0 R] " + std::string(c.parent) + "; /Kids [4 0 R] " + c.kid + "; 1");
        EXPECT_EQ(describe(f.field(3)), c.expected) << c.parent << c.kid;
    }
}

// Every tree loads in the end, and keeps the fields that are sound.
TEST(FieldLoadTest, BadTrees)
{
    const struct {
        const char *label, *fields;
        const char* objects;  // 2, 3, ...
        const char* expected;
    } cases[] = {
        {"field, widget, merged", "[2 0 R]",
         "/T (a) /Kids [3 0 R 4 0 R 5 0 R]; /T (b); /Subtype /x; /Subtype /x /Parent 2 0 R", "a*(b )"},
        {"self-kid is a widget", "[2 0 R]", "/T (a) /Kids [2 0 R 2 5 R 3 0 R]; /T (b)", "a**(b)"},
        {"kid of two", "[2 0 R 3 0 R]", "/T (a) /Kids [4 0 R]; /T (b) /Kids [4 0 R 5 0 R]; /T (c); /T (d)",
         "a(c) b(d)"},
        {"at the top, then below", "[3 0 R 2 0 R]", "/T (a) /Kids [3 0 R]; /T (b)", "b a"},
        {"a widget that is a field, too", "[3 0 R 2 0 R 4 0 R]",
         "/FT /Btn /T (a) /Kids [3 0 R 4 0 R]; /Subtype /x; /Subtype /x /FT /Btn", " a** "},
        {"the same the other way round", "[2 0 R 3 0 R 4 0 R]",
         "/FT /Btn /T (a) /Kids [3 0 R 4 0 R]; /Subtype /x; /Subtype /x", "a**  "},
        {"a field of another kind, or with a name, is no widget", "[3 0 R 4 0 R 2 0 R]",
         "/FT /Btn /T (a) /Kids [3 0 R 4 0 R]; /Subtype /x /FT /Tx; /Subtype /x /T (b)", " b a"},
        {"no fields", "[2 0 R]", "/T (a) /Kids [null 9 0 R 4 0 R 5 0 R (x) << /T (d) >> 3 0 R]; /T (b); 12; null",
         "a(b)"},
        {"kid behind a reference", "[2 0 R]", "/T (a) /Kids [3 0 R]; 4 0 R; /T (b)", "a(b)"},
        {"kids of the wrong kind", "[2 0 R 3 0 R]", "/T (a) /Kids << >>; /T (b) /Kids []", "a b"},
        {"fields that are none", "[<< /T (x) >> null 3 0 R 9 0 R 2 0 R]", "/T (a); 12", "- - - - a"},
        {"name of the wrong kind", "[2 0 R]", "/T /a /Kids [3 0 R]; /T 3 0 R", "()"},
        {"fields behind a reference", "3 0 R", "/T (a); [2 0 R]", "a"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(shape_of(FormFixture(std::string("/Fields ") + c.fields, c.objects).form), c.expected) << c.label;
}

TEST(FieldLoadTest, DeepTreesEndAtTheLimit)
{
    std::string objects = "/T (after)";
    for (uint32_t num = 3; num < 20000; ++num)
        objects += ";/T (d) /Kids [" + std::to_string(num + 1) + " 0 R]";
    FormFixture f("/Fields [3 0 R 2 0 R]", objects);
    int levels = 0;
    for (const CPDFField* field = f.form.m_fields[0]; field; field = field->m_kid_cnt ? field->m_kids[0] : nullptr)
        ++levels;
    EXPECT_EQ(levels, LIMIT_FIELD_DEPTH);
    EXPECT_NE(f.form.m_fields[1], nullptr);
    // A field loaded on its own knows how deep its parent stands, and what stands above it.
    CPDFField& deepest = f.field(3 + LIMIT_FIELD_DEPTH - 1);
    CPDFField below;
    EXPECT_EQ(below.load(&deepest, &f.doc.xref, {3 + LIMIT_FIELD_DEPTH, 0}), 1);
    EXPECT_EQ(below.m_kid_cnt, 0);
    EXPECT_EQ(CPDFField().load(&deepest, &f.doc.xref, {3, 0}), 0);
}

TEST(FieldLoadTest, EveryObjectOfAWideTreeIsReadOnce)
{
    constexpr uint32_t WIDTH = 100000;
    std::string kids, objects;
    for (uint32_t num = 3; num < 3 + WIDTH; ++num) {
        kids += " " + std::to_string(num) + " 0 R";
        objects += num % 2 ? "; /Subtype /Widget" : "; /T (k) /Parent 2 0 R";
    }
    FormFixture f("/Fields [2 0 R]", "/T (a) /Kids [" + kids + " ]" + objects);
    EXPECT_TRUE(f.field(2).m_kid_cnt == WIDTH / 2 && f.field(2).m_widget_cnt == WIDTH / 2);
    for (uint32_t num = 2; num < 3 + WIDTH; ++num)
        ASSERT_EQ(f.doc.reads[num], 1) << num;
}
