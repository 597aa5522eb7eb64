#include "tests/support/alloc_walk.h"

#include "forms/exchange/field_set.h"
#include "tests/forms/form_fixture.h"

#ifdef FORMWORK_ALLOC_HOOK

// What loaded is what the file says, or empty, or absent; nothing is half done.
TEST(FormAllocFailureTest, Load)
{
    each_failed_allocation([](const auto& arm) {
        FormFixture f(
            "/DR << /Font << /F 9 0 R >> >> /Fields [2 0 R 4 0 R 5 0 R] /XFA [(template) 50 0 R (datasets) 7 0 R]",
            "/FT /Tx /T (a) /V (v) /DV (d) /DA (da) /MaxLen 6 0 R /Kids [3 0 R 2 0 R 8 0 R]; /T (b) /V 10 0 R;"
            "/FT /Ch /T (c) /Opt [(o) [(p) (P)] 10 0 R] /I [1 2]; /FT /Sig /T (s) /V << /Contents <01> >>; 6;"
            "null; /Subtype /Widget; /BaseFont /Helv; (far)",
            "<template><subform name='a'><field name='b'><event><submit target='T'/></event></field></subform></template>");
        f.form.unload();
        const bool failed = arm([&] { f.load(); });
        EXPECT_TRUE(f.form.m_field_cnt == 0 || f.form.m_field_cnt == 3);
        for_each_field(f.form, [](const CPDFField& field) {
            const std::string name = text_of(field.m_name);
            EXPECT_TRUE(name.empty() || (name.size() == 1 && name[0] == "  abcs"[field.m_ref.num]));
            const std::string value = show_object(field.m_value);
            EXPECT_TRUE(value == "(v)" || value == "(d)" || value == "(far)" || value == "()" || value == "null" ||
                        field.m_type == FIELD_SIGNATURE)
                << value;
            EXPECT_TRUE(field.m_opt_cnt == 0 || (field.m_opt_cnt == 3 && field.m_opts));
            EXPECT_TRUE(field.m_sel_cnt == 0 || (field.m_sel_cnt == 2 && field.m_sels));
            for (int32_t i = 0; i < field.m_opt_cnt; ++i)
                EXPECT_EQ(field.m_opts[i].val.buf == nullptr, field.m_opts[i].val.len == 0);
            EXPECT_TRUE(!field.m_xfa_target ||
                        (field.m_xfa_target == std::string("T") && field.m_xfa_event == XFA_EVENT_SUBMIT));
        });
        EXPECT_TRUE(failed || f.field(3).m_xfa_target);
        // With memory back, the same form loads whole.
        f.form.unload();
        f.load();
        EXPECT_EQ(shape_of(f.form), "a**(b) c s");
    });
}

// The field has the new text or none; the document holds a whole version of the object: old, new, or with an empty text.
TEST(FormAllocFailureTest, Setters)
{
    const std::string before = "<< /AA << /K [(x) /N] >> /FT /Tx /T (old) /V (old) >>";
    const auto version = [](const std::string& name, const std::string& value) {
        return "<< /AA << /K [(x) /N] >> /FT /Tx /T " + name + " /V " + value + " >>";
    };
    std::string text = "new";
    const PDF_String value{3, reinterpret_cast<unsigned char*>(text.data())};
    for (const bool naming : {true, false}) {
        for (const bool again : {false, true}) {
            SCOPED_TRACE(std::string(naming ? "set_name" : "set_edit_value") + (again ? " again" : ""));
            each_failed_allocation([&](const auto& arm) {
                FormFixture f("/Fields [2 0 R]", before);
                CPDFField& field = f.field(2);
                if (again)
                    parse_object(before, f.doc.xref.get_xref2(2, 0)->obj);
                const bool failed = arm([&] { naming ? field.set_name(L"n") : field.set_edit_value(&value); });
                const std::string now = naming ? text_of(field.m_name) : text_of(field.m_value.str);
                EXPECT_TRUE(now == (naming ? std::string("\xFE\xFF\0n", 4) : text) || (failed && now.empty()));
                const std::string stored = f.doc.show(2);
                const std::string wanted = naming ? version("<FEFF006E>", "(old)") : version("(old)", "(new)");
                const std::string emptied = naming ? version("()", "(old)") : version("(old)", "()");
                EXPECT_TRUE(stored == wanted || (failed && (stored == before || stored == emptied))) << stored;
            });
        }
    }
}

TEST(FormAllocFailureTest, FieldSetKeepsItsEntries)
{
    each_failed_allocation([](const auto& arm) {
        _PDF_FIELD_SET_ set;
        for (int i = 0; i < 8; ++i)
            set.add(".old", "value", 1);
        char* added = nullptr;
        const bool failed = arm([&] { added = set.add(".new", "", 2); });
        EXPECT_EQ(added == nullptr, failed);
        EXPECT_EQ(set.count, failed ? 8 : 9);
        EXPECT_STREQ(set.items[7].name, ".old");
        EXPECT_NE(set.add(".more", "", 1), nullptr);
    });
}

#endif
