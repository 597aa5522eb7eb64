#include "document/edit/adoption.h"

#include "core/dictionary.h"
#include "tests/document/fill_fixture.h"

namespace {
// A document with these entries in its catalog, one page with these annotations, and objects from 20 on; "w" in them are the
// entries of a widget.
std::string with_annotations(const std::string& catalog, const std::string& annotations, const std::string& objects)
{
    PdfBuilder file;
    file.object(1, "<</Type/Catalog/Pages 2 0 R" + catalog + ">>").object(2, "<</Type/Pages/Kids[5 0 R]>>");
    file.object(3, "<</Fields[20 0 R]>>").object(5, "<</Type/Page/Parent 2 0 R/Annots[" + annotations + "]>>");
    std::string text;
    for (const std::string& object : split(objects, ';'))
        text += (object[0] == 'w' ? "/Subtype/Widget/Rect[0 0 99 20]" + object.substr(1) : object) + ";";
    return put_objects(file, 20, text).table().text;
}

std::string names_of(CPDFDocument& document)
{
    std::string names;
    CPDFNumberedNames numbered(document.form());
    for_each_field(document.form(), [&](const CPDFField& field) { names += numbered.name_of(field) + " "; });
    return names;
}

// "Fields" of a saved file, or the entry of another object.
std::string listed_in(const std::string& file, uint32_t num = 0, const char* key = "Fields")
{
    FormAtWork f(file);
    const CPDFObj* form = f.document.root().dict->get_item("AcroForm");
    return f.entry(num ? num : form && form->type == PDF_OBJ_REF ? form->ref.num : 0, key);
}
}  // namespace

TEST(AdoptionTest, FieldsOfPagesAreFilledAndThenListed)
{
    const char* const plain = "w/FT/Tx/T(a);w/FT/Tx/T(b)/Parent 23 0 R;w/FT/Tx;/T(g)/Kids[21 0 R]";
    const struct {
        const char* label;
        const char* catalog;
        const char* annotations;
        const char* objects;
        const char* names;
        size_t adopted;
        const char* filled;  // this field
        const char* listed;  // in "Fields" then
    } cases[] = {
        {"an empty list", "/AcroForm<</Fields[]>>", "20 0 R 21 0 R 22 0 R", plain, "a g g.b #2 ", 3, "g.b", "[23 0 R]"},
        {"no list", "/AcroForm 4 0 R", "21 0 R 20 0 R", plain, "a g g.b ", 2, "a", "[20 0 R]"},
        {"no form", "", "20 0 R 21 0 R", plain, "a g g.b ", 2, "a", "[20 0 R]"},
        {"beside others", "/AcroForm 3 0 R", "20 0 R 21 0 R", plain, "a g g.b ", 1, "g.b", "[20 0 R 23 0 R]"},
        {"the others stay alone", "/AcroForm 3 0 R", "20 0 R 21 0 R", plain, "a g g.b ", 1, "a", "[20 0 R]"},
        {"a circle", "/AcroForm 3 0 R", "20 0 R 21 0 R",
         "w/FT/Tx/T(a);w/FT/Tx/T(b)/Parent 22 0 R;/T(c)/Parent 23 0 R/Kids[21 0 R];/T(d)/Parent 22 0 R/Kids[22 0 R]",
         "a d d.c d.c.b ", 1, "d.c.b", "[20 0 R 23 0 R]"},
        {"a page above", "/AcroForm 3 0 R", "20 0 R 21 0 R", "w/FT/Tx/T(a);w/FT/Tx/T(b)/Parent 5 0 R", "a b ", 1, "b",
         "[20 0 R 21 0 R]"},
        {"a group whose part is listed alone", "/AcroForm 3 0 R", "20 0 R 21 0 R",
         "w/FT/Tx/T(a)/Parent 22 0 R;w/FT/Tx/T(b)/Parent 22 0 R;/T(g)/Kids[20 0 R 21 0 R]", "a b ", 1, "b",
         "[20 0 R 21 0 R]"},
        {"no fields", "/AcroForm 3 0 R", "20 0 R 21 0 R 22 0 R", "w/FT/Tx/T(a);w;/Subtype/Link/FT/Tx/T(b)", "a ", 0,
         "a", "[20 0 R]"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const std::string file = with_annotations(c.catalog, c.annotations, c.objects);
        FormAtWork f(file);
        EXPECT_EQ(names_of(f.document), c.names);
        EXPECT_EQ(f.document.adopted_fields(), c.adopted);
        EXPECT_EQ(f.saved(), file) << "nothing changed";
        for (const PDF_LOAD load : {PDF_LOAD::WHOLE_FORM, PDF_LOAD::NAMED_FIELDS}) {
            FormAtWork g(file, load);
            EXPECT_TRUE(g.set(c.filled, "value").ok());
            const std::string saved = g.saved();
            EXPECT_EQ(listed_in(saved), c.listed);
            FormAtWork again(saved);
            EXPECT_EQ(show_object(again.field(c.filled).m_value), "(value)");
            g.document.revert();
            EXPECT_EQ(g.saved(), file);
            EXPECT_TRUE(g.set(c.filled, "value").ok());
            EXPECT_EQ(g.saved(), saved) << "as if it were the first time";
        }
    }
}

// What lies below a field of the form is its part, listed by it when it changes; a widget without a name is bound anyhow.
TEST(AdoptionTest, StrayPartsOfListedFields)
{
    const std::string states = widget_states("on");
    const std::string file = with_annotations("/AcroForm 3 0 R", "21 0 R 22 0 R 24 0 R",
                                              "/T(g)/FT/Btn;w/T(k)/FT/Tx/Parent 20 0 R;" + states +
                                                  "/Parent 20 0 R;/T(h)/Parent 20 0 R;" + "w/T(l)/FT/Tx/Parent 23 0 R");
    FormAtWork f(file);
    EXPECT_EQ(names_of(f.document), "g g.k g.h g.h.l ");
    EXPECT_TRUE(f.set("g", "on").ok());
    EXPECT_EQ(listed_in(f.saved(), 20, "Kids"), "-");
    EXPECT_TRUE(f.set("g.h.l", "x").ok());
    const std::string saved = f.saved();
    EXPECT_EQ(listed_in(saved), "[20 0 R]");
    EXPECT_EQ(listed_in(saved, 20, "Kids"), "[23 0 R]");
    EXPECT_EQ(listed_in(saved, 23, "Kids"), "[24 0 R]");
}

// A change of the structure lists all of them first.
TEST(AdoptionTest, StructureOfAdoptedFields)
{
    const std::string file = with_annotations("", "20 0 R 21 0 R 22 0 R", "w/FT/Tx/T(a);w/FT/Tx/T(b);w/FT/Tx/T(c)");
    FormAtWork f(file);
    EXPECT_TRUE(f.set("b", "x").ok());
    f.saved();
    EXPECT_TRUE(f.document.remove_field(f.field("a")).ok());
    EXPECT_EQ(listed_in(f.saved()), "[21 0 R 22 0 R]");
    EXPECT_TRUE(f.document.rename_field(f.field("c"), "d").ok());
    EXPECT_EQ(names_of(f.document), "b d ");
    f.document.revert();
    EXPECT_EQ(names_of(f.document), "a b c ");
    EXPECT_EQ(f.saved(), file);
}

TEST(AdoptionTest, CertifiedDocumentsTakeNoFields)
{
    const std::string file = with_annotations(
        "/AcroForm 3 0 R/Perms<</DocMDP 22 0 R>>", "20 0 R 21 0 R",
        "w/FT/Tx/T(a);w/FT/Tx/T(b);/ByteRange[0 1 2 3]/Reference[<</TransformMethod/DocMDP/TransformParams<</P 2>>>>]");
    FormAtWork f(file);
    EXPECT_TRUE(f.set("a", "x").ok());
    const CPDFStatus status = f.set("b", "x");
    EXPECT_EQ(status.text,
              "field \"b\" is not in the form's list of fields, and the document is certified against changes "
              "of its fields");
    EXPECT_TRUE(f.set("b", "x", PDF_FILL::FORCE).ok());
    EXPECT_EQ(listed_in(f.saved()), "[20 0 R 21 0 R]");
}
