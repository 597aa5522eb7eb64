#include "document/lookup/branch_finder.h"

#include "document/lookup/name_index.h"
#include "tests/document/fill_fixture.h"

namespace {
std::string describe(const CPDFField& field)
{
    return std::to_string(field.m_ref.num) + " " + full_name(field) + " " + std::to_string(field.m_type) + " " +
           std::to_string(field.m_flags) + " " + std::to_string(field.m_inherited) + " " + show_object(field.m_value);
}

// Finds the names through the branch finder and through the whole form. What the finder has must be the same; returns how
// many names it leaves to the whole form although that has them.
int compare(const std::string& file, const std::vector<std::string>& more_names)
{
    FormAtWork whole(file);
    std::vector<std::string> names = more_names;
    for_each_field(whole.document.form(), [&names](const CPDFField& field) {
        if (field.m_name.len > 0)
            names.push_back(full_name(field));
    });
    FormAtWork single(file, PDF_LOAD::NAMED_FIELDS);
    CPDFBranchFinder finder;
    CPDFNameIndex index;
    int left = 0;
    const size_t step = names.size() / 40 + 1;
    for (size_t i = 0; i < names.size(); i += step) {
        SCOPED_TRACE(names[i]);
        const CPDFObj* form = single.document.root().dict->get_item("AcroForm");
        CPDFField* branch = finder.find(single.document.xref(), form, names[i]);
        CPDFField* expected = index.find(whole.document.form(), names[i]);
        if (!branch) {
            left += expected != nullptr;
            continue;
        }
        EXPECT_EQ(describe(*branch), expected ? describe(*expected) : "no such field");
        EXPECT_EQ(finder.find(single.document.xref(), form, names[i]), branch) << "the same object again";
        const size_t same = index.count(whole.document.form(), names[i]);
        const int count = finder.count(single.document.xref(), form, names[i]);
        EXPECT_TRUE(count == 2 || static_cast<size_t>(count) == same) << count;
    }
    return left;
}
}  // namespace

TEST(BranchFinderTest, FindsWhatTheWholeFormHas)
{
    for (const std::string& file : pdf_files(FORMWORK_SAMPLES_DIR))
        EXPECT_EQ(compare(read_text_file(file), {"none", "", ".", "address", "address.", "address.city.x"}), 0) << file;
    for (const std::string& file : corpus_files()) {
        SCOPED_TRACE(file);
        if (CPDFDocument().open(file).ok())
            compare(read_text_file(file), {"none"});
    }
}

// Only the first of several is found; that there are others is known without the form.
TEST(BranchFinderTest, FieldsOfOneNameAreCounted)
{
    FormAtWork f(form_of({"/T(a)/FT/Tx", "/T(g)/Kids[20 0 R 21 0 R]", "/T(a)/FT/Tx", "/T(g)/Kids[22 0 R]"},
                         "/Parent 11 0 R/T(x)/FT/Tx;/Parent 11 0 R/T(y)/FT/Tx;/Parent 13 0 R/T(x)/FT/Tx"),
                 PDF_LOAD::NAMED_FIELDS);
    CPDFBranchFinder finder;
    const CPDFObj* form = f.document.root().dict->get_item("AcroForm");
    for (const auto& [name, count] : {std::pair("a", 2), std::pair("g", 2), std::pair("g.x", 2), std::pair("g.y", 1),
                                      std::pair("g.z", 0), std::pair("", 0)}) {
        EXPECT_EQ(finder.count(f.document.xref(), form, name), count) << name;
        EXPECT_EQ(f.document.fields_named(name), static_cast<size_t>(count)) << name;
    }
}

// What was found before the form is loaded is in the form then, with all that the form knows of it.
TEST(BranchFinderTest, BranchesAreGraftedIntoTheForm)
{
    for (const std::string& path : pdf_files(FORMWORK_SAMPLES_DIR)) {
        SCOPED_TRACE(path);
        const std::string file = read_text_file(path);
        FormAtWork whole(file);
        FormAtWork named(file, PDF_LOAD::NAMED_FIELDS);
        std::vector<std::pair<std::string, CPDFField*>> found;
        for_each_field(whole.document.form(), [&](const CPDFField& field) {
            if (field.m_name.len > 0)
                found.emplace_back(full_name(field), &named.field(full_name(field)));
        });
        for (const auto& [name, field] : found) {
            if (field->m_type != FIELD_TEXT)
                continue;
            EXPECT_EQ(whole.set(name, "new", PDF_FILL::FORCE).ok(), named.set(name, "new", PDF_FILL::FORCE).ok());
        }
        EXPECT_EQ(named.memory(), whole.memory());
        for (const auto& [name, field] : found) {
            EXPECT_EQ(named.document.form().find(field->m_ref), &named.field(name));
            EXPECT_EQ(describe(*field), describe(whole.field(name)));
        }
        EXPECT_EQ(named.saved(), whole.saved());
    }
}

TEST(BranchFinderTest, AFieldFoundStaysThatField)
{
    PdfBuilder file;
    put_objects(file.form({"<</T(a)/FT/Tx/Kids[20 0 R 21 0 R]>>", "<</T(t)/FT/Tx>>"}), 20,
                "/T(b)/Parent 10 0 R/Kids[22 0 R];/T(c)/Parent 10 0 R;/Parent 20 0 R/V(own)/Subtype/Widget");
    FormAtWork f(file.table().text, PDF_LOAD::NAMED_FIELDS);
    CPDFField* const b = &f.field("a.b");
    CPDFField* const c = &f.field("a.c");
    CPDFField* const kid = b->m_kids[0];
    ASSERT_TRUE(f.document.set_value(*c, "one").ok());
    CPDFField& a = *f.document.form().m_fields[0];
    EXPECT_EQ(a.m_kids[0], b);
    EXPECT_EQ(a.m_kids[1], c);
    EXPECT_EQ(b->m_kids[0], kid);
    EXPECT_EQ(b->m_parent, &a);
    EXPECT_EQ(kid->m_parent, b);
    EXPECT_EQ(f.document.field("a.b"), b);
    ASSERT_TRUE(f.document.reset().ok());
    EXPECT_EQ(show_object(c->m_value) + show_object(kid->m_value), "nullnull");
    f.document.revert();
    EXPECT_EQ(show_object(c->m_value) + show_object(kid->m_value), "null(own)");
    ASSERT_TRUE(f.document.rename_field(*b, "x").ok());
    EXPECT_EQ(f.document.field("a.x"), b);
}

TEST(BranchFinderTest, OddTrees)
{
    const struct {
        const char* label;
        const char* fields;   // objects 10, 11, ...
        const char* objects;  // 20, 21, ...
        const char* names;
        int left;  // names left to the whole form
    } cases[] = {
        {"dots in a name, behind", "/T(a.b);/T(a)/Kids[20 0 R]", "/T(b)/Parent 11 0 R", "", 0},
        {"names that begin alike", "/T(ab);/T(a)/Kids[20 0 R];/T(abc)", "/T(b)/Parent 11 0 R", "a.bc,abcd,a.b.,b", 0},
        {"equal names", "/T(a)/V(1);/T(a)/V(2)", "", "", 0},
        {"no name at the top", "/Kids[20 0 R];/T(b)", "/T(x)/Parent 10 0 R", "a,", 0},
        {"no name between", "/T(a)/FT/Tx/Ff 1/Kids[20 0 R]", "/Parent 10 0 R/Kids[21 0 R];/T(k)/Parent 20 0 R", "a.",
         0},
        {"text in two bytes", "/T<FEFF00E400E4>/Kids[20 0 R]", "/T(\xE4)/Parent 10 0 R", "\xC3\xA4", 0},
        {"cycle", "/T(a)/Kids[20 0 R]", "/T(b)/Parent 10 0 R/Kids[10 0 R 20 0 R 21 0 R];/T(c)/Parent 20 0 R",
         "a.b.a,a.b.b", 0},
        {"kid of two", "/T(a)/Kids[20 0 R];/T(b)/Kids[20 0 R 21 0 R]", "/T(k)/Parent 10 0 R;/T(k)/Parent 11 0 R", "",
         1},
        {"kid without a parent", "/T(a)/Kids[20 0 R 21 0 R]", "/T(k)/Subtype/Widget;/T(l)", "a.k", 1},
        {"no fields", "/T(a)/Kids[20 0 R null 12 0 R 99 0 R];/T(b)/Kids 20 0 R", "[1]", "a.k", 0},
        {"name of marks only", "/T(a)/Kids[20 0 R]", "/T<FEFF>/Parent 10 0 R/Kids[21 0 R];/T(k)/Parent 20 0 R",
         "a.k,a.", 3},
        {"numbers in brackets", "/T(f[0])/Kids[20 0 R]", "/T(k[1])/Parent 10 0 R", "f.k", 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        PdfBuilder file;
        put_objects(file.form({split(c.fields, ';').size(), "null"}), 10, c.fields);
        put_objects(file, 20, c.objects);
        EXPECT_EQ(compare(file.table().text, split(c.names, ',')), c.left);
        // The document finds them all, whoever does.
        FormAtWork whole(file.text);
        FormAtWork named(file.text, PDF_LOAD::NAMED_FIELDS);
        for_each_field(whole.document.form(), [&](const CPDFField& field) {
            if (field.m_name.len <= 0)
                return;
            EXPECT_EQ(describe(named.field(full_name(field))), describe(whole.field(full_name(field))));
        });
    }
}
