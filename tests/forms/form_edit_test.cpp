// Editing the top-level fields, the signature flags, the default resources, and finding a field's scripts.

#include <algorithm>
#include <memory>

#include "core/dictionary.h"
#include "engine/action.h"
#include "engine/resources.h"
#include "tests/forms/form_fixture.h"
#include "tests/support/alloc_walk.h"

namespace {

constexpr const char* THREE_FIELDS = "/T (a) /Kids [5 0 R]; /T (b); /T (c); /T (k) /Parent 2 0 R; /T (new) /FT /Tx";

// An action and those behind it: type, script, target, flags, fields.
std::string show_action(const CPDFAction* action)
{
    if (!action)
        return "none";
    std::string text = std::to_string(action->m_type) + action->type_name() + " " + text_of(action->m_script) + "|" +
                       text_of(action->m_target) + "|" + std::to_string(action->m_flags) +
                       show_object(action->m_fields);
    for (const auto& next : action->m_next)
        text += " > " + show_action(next);
    return text;
}

std::string event_of(FormFixture& f, uint32_t num, int event)
{
    return show_action(std::unique_ptr<CPDFAction>(f.field(num).get_addition_js(event)).get());
}

}  // namespace

TEST(FormEditTest, AppendKeepsWhatNullSlotsStandFor)
{
    FormFixture f("/Fields 7 0 R", "/T (a); null; /T (c); /T (d);; [2 0 R 3 0 R (odd) 4 0 R]");
    EXPECT_EQ(f.form.append_field({0, 0}), nullptr);
    EXPECT_EQ(f.doc.show(1), "<< /Fields 7 0 R >>");
    CPDFField* added = f.form.append_field({5, 0});
    EXPECT_EQ(shape_of(f.form), "a - - c d");
    EXPECT_EQ(added, f.form.m_fields[4]);
    f.form.append_field({5, 0});
    f.form.append_field({80, 0});  // no dictionary
    EXPECT_EQ(shape_of(f.form), "a - - c d d ");
    EXPECT_EQ(f.doc.show(1), "<< /Fields [2 0 R 3 0 R (odd) 4 0 R 5 0 R 5 0 R 80 0 R] >>");
    f.form.remove_field(f.form.m_fields[3]);
    EXPECT_EQ(f.doc.show(1), "<< /Fields [2 0 R 3 0 R (odd) 5 0 R 5 0 R 80 0 R] >>");
}

TEST(FormEditTest, Remove)
{
    FormFixture f("/Fields [2 0 R 3 0 R 4 0 R]", THREE_FIELDS);
    FormFixture other("/Fields [2 0 R]", "/T (x)");
    f.form.remove_field(nullptr);
    f.form.remove_field(&other.field(2));
    EXPECT_EQ(shape_of(f.form), "a(k) b c");
    f.form.remove_field(&f.field(3));
    EXPECT_EQ(shape_of(f.form), "a(k) c");
    f.form.remove_field(&f.field(5));
    EXPECT_EQ(shape_of(f.form), "a c");
    EXPECT_EQ(f.doc.show(1), "<< /Fields [2 0 R 4 0 R] >>");
    EXPECT_EQ(f.doc.show(2), "<< /Kids [] /T (a) >>");
    FormFixture damaged("/Fields [2 0 R]", "/T (x)");
    parse_object("<< /Fields (gone) >>", damaged.doc.xref.get_xref2(1, 0)->obj);
    damaged.form.remove_field(&damaged.field(2));
    EXPECT_EQ(shape_of(damaged.form), "x");
}

TEST(FormEditTest, AppendChild)
{
    FormFixture f("/Fields [2 0 R]", THREE_FIELDS);
    EXPECT_EQ(f.field(5).append_child({2, 0}), nullptr) << "above itself";
    EXPECT_EQ(f.field(2).append_child({70, 0}), nullptr);
    ASSERT_TRUE(f.field(2).append_child({6, 0}));
    ASSERT_TRUE(f.field(5).append_child({3, 0}));
    EXPECT_EQ(shape_of(f.form), "a(k(b) new)");
    EXPECT_EQ(f.doc.show(2), "<< /Kids [5 0 R 6 0 R] /T (a) >>");
    EXPECT_EQ(f.doc.show(5), "<< /Kids [3 0 R] /Parent 2 0 R /T (k) >>");
}

TEST(FormEditTest, SignatureFlags)
{
    FormFixture f("/Fields [2 0 R 9 0 R] /SigFlags 0", "/FT /Sig /V << /Contents <01> >>");
    EXPECT_EQ(f.form.calc_sign_flag(), 1);
    EXPECT_EQ(f.doc.xref.changed_count(), 0);
    EXPECT_EQ(f.form.set_sign_flag(5), 1);
    EXPECT_EQ(f.doc.show(1), "<< /Fields [2 0 R 9 0 R] /SigFlags 3 >>");
    f.form.remove_field(&f.field(2));
    EXPECT_EQ(f.form.calc_sign_flag(), 1);
    EXPECT_EQ(f.doc.show(1), "<< /Fields [9 0 R] /SigFlags 0 >>");
    f.form.m_ref = {0, 0};
    EXPECT_EQ(f.form.set_sign_flag(1), 0);
}

TEST(FormResourcesTest, NewResource)
{
    const struct {
        const char* label;
        const char* form;
        const char* stored_form;
        const char* stored_resources;
    } cases[] = {
        {"none", "/A 1", "<< /A 1 /DR 91 0 R >>", "<< /Font << >> >>"},
        {"direct", "/DR << /Font << /F0 9 0 R >> >>", "<< /DR 91 0 R >>", "<< /Font << /F0 9 0 R >> >>"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        FormFixture f(c.form);
        f.doc.xref.raise_next_num(91);
        CPDFResources* resources = f.form.new_resource(&f.doc.xref);
        ASSERT_TRUE(resources);
        EXPECT_EQ(resources->m_ref.num, 91u);
        EXPECT_EQ(f.doc.show(1), c.stored_form);
        EXPECT_EQ(f.doc.show(91), c.stored_resources);
        EXPECT_EQ(f.doc.xref.changed()[0].ref.num, 91u) << "before the form that refers to it";
        EXPECT_EQ(f.form.new_resource(&f.doc.xref), resources);
        EXPECT_EQ(f.doc.xref.next_num(), 92u);
        f.form.m_ref = {0, 0};
        EXPECT_EQ(f.form.new_resource(&f.doc.xref), nullptr);
    }
}

TEST(FormResourcesTest, AppendFont)
{
    const struct {
        const char* label;
        const char* form;
        uint32_t changed;
        const char* stored;
    } cases[] = {
        {"direct", "/DR << /Font << /F0 9 0 R >> >>", 1, "<< /DR << /Font << /F0 9 0 R /F1 7 0 R >> >> >>"},
        {"replaced", "/DR << /Font << /F1 9 0 R >> >>", 1, "<< /DR << /Font << /F1 7 0 R >> >> >>"},
        {"indirect fonts", "/DR << /Font 2 0 R >>", 1, "<< /DR << /Font << /F1 7 0 R /Q 9 0 R >> >> >>"},
        {"indirect", "/DR 3 0 R", 3, "<< /Font << /F1 7 0 R >> /X 1 >>"},
        {"both indirect", "/DR 4 0 R", 2, "<< /F1 7 0 R /Q 9 0 R >>"},
        {"missing fonts", "/DR 5 0 R", 5, "<< /Font << /F1 7 0 R >> >>"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        FormFixture f(c.form, "/Q 9 0 R; /X 1; /Font 2 0 R; /Font 80 0 R; null; /BaseFont /Courier");
        EXPECT_EQ(f.form.append_font(&f.doc.xref, "F1", {7, 0}), 1);
        EXPECT_EQ(f.doc.show(c.changed), c.stored);
        EXPECT_EQ(f.doc.xref.changed_count(), 1);
        const CPDFObj* font = f.form.m_res->find("Font", "F1");
        EXPECT_EQ(font ? show_object(*font) : "-", "7 0 R");
    }
    FormFixture none("/A 1");
    EXPECT_EQ(none.form.append_font(&none.doc.xref, "F1", {7, 0}), 0);
}

TEST(FormResourcesTest, AppendFontInCatalog)
{
    MemoryDocument doc("null");
    CPDFObj root;
    ASSERT_TRUE(parse_object("<< /AcroForm << /DR << /Font << /F0 9 0 R >> >> >> >>", root));
    CPDFAcroForm form;
    form.load(&doc.xref, root.dict->get_item("AcroForm"), &root, {90, 0});
    EXPECT_EQ(form.append_font(&doc.xref, "F1", {7, 0}), 1);
    EXPECT_EQ(doc.show(90), "<< /AcroForm << /DR << /Font << /F0 9 0 R /F1 7 0 R >> >> >> >>");
    EXPECT_EQ(show_object(root), doc.show(90));
    EXPECT_TRUE(form.m_res->find("Font", "F1"));
    root.dict->get_item("AcroForm")->dict->remove_item("DR");
    EXPECT_EQ(form.append_font(&doc.xref, "F2", {7, 0}), 0);
}

TEST(FieldActionTest, GetAdditionJs)
{
    FormFixture f("/Fields [2 0 R 6 0 R]",
                  "/FT /Tx /T (a) /AA << /C 5 0 R /K << /S /URI /URI (u) >> >> /Kids [3 0 R 4 0 R];"
                  "/T (none) /Parent 2 0 R; /T (own) /Parent 2 0 R /AA << /K 5 0 R >>; /S /JavaScript /JS (c\\(\\));"
                  "/T (untyped) /AA << /K 5 0 R >>");
    const std::string script = "14JavaScript c()||0null";
    EXPECT_EQ(event_of(f, 2, 3), script);
    EXPECT_EQ(event_of(f, 2, 0), "none") << "a URI action";
    EXPECT_EQ(event_of(f, 3, 3), script) << "the parent's";
    EXPECT_EQ(event_of(f, 4, 0), script);
    EXPECT_EQ(event_of(f, 4, 3), "none") << "an AA without the event ends the search";
    EXPECT_EQ(event_of(f, 6, 0), "none");
    for (const int outside : {4, -1})
        EXPECT_EQ(event_of(f, 4, outside), "none");
}

TEST(ActionTest, Parse)
{
    const struct {
        const char* label;
        const char* action;
        const char* wanted;
    } cases[] = {
        {"script in a stream", "<< /S /JavaScript /JS 50 0 R >>", "14JavaScript in stream||0null"},
        {"submit", "<< /S /SubmitForm /F << /F (old) /UF (new) >> /Flags 4 /Fields [(a) 2 0 R] >>",
         "11SubmitForm |new|4[(a) 2 0 R]"},
        {"of no known type", "<< /S (URI) /URI (u) >>", "0 ||0null"},
        {"no dictionary", "[]", "none"},
        {"several follow", "<< /S /Named /N /Print /Next [<< /S /URI /URI (a) >> 7 << /S /ResetForm >>] >>",
         "10Named |Print|0null > 6URI |a|0null > 12ResetForm ||0null"},
        {"a loop", "2 0 R", "14JavaScript s||0null > 12ResetForm ||0null"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        FormFixture f("", "/S /JavaScript /JS (s) /Next 3 0 R; /S /ResetForm /Next [2 0 R 3 0 R]", "in stream");
        CPDFObj entry;
        ASSERT_TRUE(parse_object(c.action, entry));
        EXPECT_EQ(show_action(std::unique_ptr<CPDFAction>(CPDFAction::parser_act(&f.doc.xref, &entry)).get()),
                  c.wanted);
    }
    FormFixture wide("", "/S /JavaScript /JS (s) /Next [3 0 R 3 0 R 3 0 R]; /S /Named /Next [4 0 R 4 0 R 4 0 R];"
                         "/S /Named /Next [5 0 R 5 0 R 5 0 R]; /S /Named /Next [6 0 R 6 0 R 6 0 R 6 0 R 6 0 R 6 0 R];"
                         "/S /Named /Next [7 0 R 7 0 R 7 0 R 7 0 R 7 0 R 7 0 R 7 0 R 7 0 R]; /S /URI");
    CPDFObj entry;
    entry.set_ref({2, 0});
    const std::string shown =
        show_action(std::unique_ptr<CPDFAction>(CPDFAction::parser_act(&wide.doc.xref, &entry)).get());
    EXPECT_EQ(std::count(shown.begin(), shown.end(), '>'), 999) << "as many as are allowed, with the first";
}

#ifdef FORMWORK_ALLOC_HOOK

// Each operation does all of its work in the document or none of it; memory keeps a usable form.
TEST(FormEditTest, EveryFailedAllocation)
{
    const struct {
        const char* label;
        void (*run)(FormFixture& f);
        uint32_t object;
        const char* before;
        const char* after;
    } cases[] = {
        {"append_field",
         [](FormFixture& f) {
             f.form.append_field({6, 0});
         },
         1, "<< /DR << >> /Fields [2 0 R 3 0 R 4 0 R] >>", "<< /DR << >> /Fields [2 0 R 3 0 R 4 0 R 6 0 R] >>"},
        {"remove_field", [](FormFixture& f) { f.form.remove_field(f.form.m_fields[1]); }, 1,
         "<< /DR << >> /Fields [2 0 R 3 0 R 4 0 R] >>", "<< /DR << >> /Fields [2 0 R 4 0 R] >>"},
        {"append_child",
         [](FormFixture& f) {
             f.form.m_fields[0]->append_child({6, 0});
         },
         2, "<< /Kids [5 0 R] /T (a) >>", "<< /Kids [5 0 R 6 0 R] /T (a) >>"},
        {"set_sign_flag", [](FormFixture& f) { f.form.set_sign_flag(1); }, 1,
         "<< /DR << >> /Fields [2 0 R 3 0 R 4 0 R] >>", "<< /DR << >> /Fields [2 0 R 3 0 R 4 0 R] /SigFlags 3 >>"},
        {"new_resource", [](FormFixture& f) { f.form.new_resource(&f.doc.xref); }, 1,
         "<< /DR << >> /Fields [2 0 R 3 0 R 4 0 R] >>", "<< /DR 7 0 R /Fields [2 0 R 3 0 R 4 0 R] >>"},
        {"append_font",
         [](FormFixture& f) {
             f.form.append_font(&f.doc.xref, "F", {6, 0});
         },
         1, "<< /DR << >> /Fields [2 0 R 3 0 R 4 0 R] >>",
         "<< /DR << /Font << /F 6 0 R >> >> /Fields [2 0 R 3 0 R 4 0 R] >>"},
        {"reload_entries", [](FormFixture& f) { f.form.m_fields[2]->reload_entries(); }, 4, "<< /T (c) >>",
         "<< /T (c) >>"},
        {"get_addition_js", [](FormFixture& f) { delete f.form.m_fields[2]->get_addition_js(0); }, 4, "<< /T (c) >>",
         "<< /T (c) >>"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        each_failed_allocation([&](const auto& arm) {
            FormFixture f("/DR << >> /Fields [2 0 R 3 0 R 4 0 R]", THREE_FIELDS);
            const bool failed = arm([&] { c.run(f); });
            const std::string stored = f.doc.show(c.object);
            EXPECT_TRUE(stored == c.after || (failed && stored == c.before)) << stored;
            EXPECT_TRUE(stored.find("7 0 R") == std::string::npos || f.doc.show(7) == "<< >>");
            EXPECT_EQ(text_of(f.field(2).m_name), "a");
        });
    }
}

#endif
