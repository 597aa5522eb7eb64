#include "tests/support/alloc_walk.h"

#include <functional>

#include "engine/action.h"
#include "engine/annot_widget.h"
#include "forms/field_select.h"
#include "tests/forms/form_fixture.h"
#include "tests/support/new_hook.h"

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

// One field of each kind, objects 2 to 5; with `again` the document has a newer version of each already.
class OperationFixture : public FormFixture {
public:
    explicit OperationFixture(bool again)
        : FormFixture("/Fields [2 0 R 3 0 R 4 0 R 5 0 R]",
                      "/FT /Tx /T (old) /V (old) /DV (d) /AA << /K [(x) /N] >> /Kids [7 0 R 8 0 R];"
                      "/FT /Ch /Opt [[(a) (Apple)] (b) [(c) (Cherry)]] /I [1 2] /V (x); /FT /Btn /V /Off /Kids [9 0 R];"
                      "/FT /Btn /Ff 32768 /V /1 /DV /2 /Kids [6 0 R]; /T (k) /AS /k /AP << /N << /k 1 0 R >> >>;"
                      "/FT /Tx /T (a); /FT /Tx /T (b); /T (c) /AS /k /AP << /N << /k 1 0 R >> >>")
    {
        for (uint32_t num = again ? 2 : 99; num <= 9; ++num) {
            CPDFObj own;
            doc.xref.get_entity(own, {num, 0});
            doc.xref.store_changed({num, 0}, own);
        }
        widgets[0].load(&doc.xref, {6, 0});
        widgets[1].load(&doc.xref, {9, 0});
        widgets[2].load(&doc.xref, {2, 0});
        field(2).m_widget = &widgets[2];
        field(6).m_widget = &widgets[0];
        field(9).m_widget = &widgets[1];
    }

    // Every entry of every object, and what the fields have in memory.
    std::vector<std::string> state()
    {
        std::vector<std::string> all;
        for (uint32_t num = 2; num <= 9; ++num) {
            for (const char* key : {"AA", "AP", "AS", "DV", "FT", "Ff", "I", "Kids", "Opt", "T", "V"})
                all.push_back(doc.entry(num, key));
        }
        for (uint32_t num = 2; num <= 5; ++num) {
            all.push_back(show_object(field(num).m_value));
            all.push_back("(" + text_of(field(num).m_name) + ")");
            all.push_back(std::to_string(field(num).m_opt_cnt));
            all.push_back(std::to_string(field(num).m_kid_cnt));
        }
        return all;
    }

    CPDFAnnotWidget widgets[3];
};

// Whatever fails, each of these is the old or the new one, or it is empty.
TEST(FormAllocFailureTest, Operations)
{
    std::string bytes = "new";
    PDF_String text = string_of(bytes);
    const int sels[] = {2, 0, 1};
    const std::pair<const char*, std::function<void(OperationFixture&)>> operations[] = {
        {"set_name", [](OperationFixture& f) { f.field(2).set_name(L"n"); }},
        {"set_edit_value", [&](OperationFixture& f) { f.field(2).set_edit_value(&text); }},
        {"remove_child", [](OperationFixture& f) { f.field(2).remove_child(f.field(2).m_kids[0]); }},
        {"set_choice_sel", [](OperationFixture& f) { f.field(3).set_choice_sel(0); }},
        {"set_choice_sels", [&](OperationFixture& f) { f.field(3).set_choice_sels(sels, 3); }},
        {"insert_choice_opt", [&](OperationFixture& f) { f.field(3).insert_choice_opt(1, &text, &text); }},
        {"remove_choice_opt", [](OperationFixture& f) { f.field(3).remove_choice_opt(1); }},
        {"set_check_value", [](OperationFixture& f) { f.field(9).set_check_value("b"); }},
        {"set_radio", [](OperationFixture& f) { f.field(5).set_radio(&f.widgets[1]); }},
        {"reset", [](OperationFixture& f) { f.form.reset(nullptr, 0); }},
    };
    for (const auto& [name, operation] : operations) {
        for (const bool again : {false, true}) {
            SCOPED_TRACE(std::string(name) + (again ? " again" : ""));
            OperationFixture whole(again);
            const std::vector<std::string> before = whole.state();
            operation(whole);
            const std::vector<std::string> after = whole.state();
            EXPECT_NE(before, after);
            each_failed_allocation([&, &operation = operation](const auto& arm) {
                OperationFixture f(again);
                const bool failed = arm([&] { operation(f); });
                const std::vector<std::string> now = f.state();
                // A kid is in memory as long as the document has it.
                EXPECT_EQ(f.field(2).m_kid_cnt, f.doc.entry(2, "Kids") == "[7 0 R 8 0 R]" ? 2 : 1);
                for (size_t i = 0; i < now.size(); ++i)
                    EXPECT_TRUE(now[i] == after[i] ||
                                (failed && (now[i] == before[i] || now[i] == "()" || now[i] == "null")))
                        << i << now[i];
            });
        }
    }
}

#ifdef FORMWORK_ALLOC_HOOK

// All that the engine needs comes from its own allocator, which tells of a failure and does not throw.
TEST(FormAllocFailureTest, NothingIsTakenByNew)
{
    OperationFixture f(true);
    CPDFObj source, names, copy;
    parse_object("<< /S /JavaScript /JS (x) /Next [<< /S /Hide /T (b) >>] >>", source);
    parse_object("[(a) (b) (c) (d) (e) (f) (g) (old) (k) 2 0 R 9 0 R]", names);
    wchar_t name[64];
    int len = 0;
    fail_new_after(0);
    copy.copy_from(&source);
    f.form.unload();
    f.load();
    CPDFField* const field = f.form.find(PDF_REF{2, 0});
    field->get_full_name2(name, 64);
    field->set_name(L"n");
    field->append_child({9, 0});
    f.form.append_field({6, 0});
    CPDFAction* const action = CPDFAction::parser_act(&f.doc.xref, &source);
    char* const texts[] = {f.form.get_url_para(names.arr, 0), f.form.get_url_xml(names.arr, 0),
                           f.form.get_xfa_data(len)};
    fail_new_after(-1);
    EXPECT_EQ(new_calls(), 0);
    EXPECT_TRUE(field->m_kid_cnt == 3 && action && texts[0] && texts[1] && texts[2]);
    delete action;
    for (char* text : texts)
        VXFree(text);
}

// The XML parser throws; what the form holds meanwhile is given back.
TEST(FormAllocFailureTest, AParserThatThrowsCountsAsFailure)
{
    FormFixture f(
        "/Fields [2 0 R] /XFA [(template) 50 0 R (datasets) 7 0 R]", "/FT /Tx /T (a)",
        "<template><subform><field name='a'><event><submit target='T'/></event></field></subform></template>");
    f.form.unload();
    const int64_t live = vx_live_blocks();
    bool failed = true;
    for (int64_t n = 0; failed && n < 1000; ++n) {
        const VXFailureCheck memory;
        fail_new_after(n);
        f.load();
        fail_new_after(-1);
        failed = memory.failed();
        EXPECT_TRUE(failed || f.field(2).m_xfa_target) << n;
        f.form.unload();
        ASSERT_EQ(vx_live_blocks(), live) << n;
    }
    EXPECT_FALSE(failed);
}

#endif
