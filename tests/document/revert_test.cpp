#include "tests/document/fill_fixture.h"

namespace {
using Values = std::vector<std::pair<std::string, CPDFValue>>;

// Every object of the document.
std::vector<std::string> objects_of(FormAtWork& f)
{
    f.document.xref().read_all_sections();
    std::vector<std::string> objects;
    for (uint32_t num = 1; num < f.document.xref().next_num(); ++num) {
        CPDFObj own;
        f.document.xref().get_entity(own, {num, 0});
        objects.push_back(show_object(own));
    }
    return objects;
}

// What the fields have in memory.
std::string memory_of(FormAtWork& f, const Values& values)
{
    std::string text;
    for (const auto& [name, value] : values)
        text += show_object(f.field(name).m_value) + std::to_string(f.field(name).m_sel_cnt);
    return text;
}

void set_all(FormAtWork& f, const Values& values)
{
    for (const auto& [name, value] : values)
        EXPECT_TRUE(f.set(name, value).ok()) << name;
}
}  // namespace

TEST(RevertTest, EverythingIsAsTheFileSays)
{
    PdfBuilder direct;
    direct.object(1, "<</AcroForm<</Fields[10 0 R 11 0 R]>>>>").object(10, "<</FT/Tx/T(t)/DV(d)/Kids[20 0 R]>>");
    direct.object(20, "<</Subtype/Widget/Parent 10 0 R/V(stale)>>");
    direct.object(11, "<</FT/Ch/Ff 2097152/T(c)/Opt[(x)(y)(z)]/I[2 0]/V[(z)(x)]>>").table();
    const struct {
        std::string file;
        Values values;
    } cases[] = {
        {"kinds.pdf",
         {{"name", "x"},
          {"company.contact.phone", "1"},
          {"subscribe", false},
          {"agree", true},
          {"size", "large"},
          {"title", "Sir"},
          {"month", "April"},
          {"toppings", std::vector<std::string>{"Olives", "mu"}}}},
        {"object-streams.pdf", {{"order.number", "x"}, {"order.date", ""}}},
        {"updates.pdf", {}},
        {"", {{"t", "new"}, {"c", "y"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        const std::string input = c.file.empty() ? direct.text : read_text_file(FORMWORK_SAMPLES_DIR "/" + c.file);
        for (const PDF_LOAD load : {PDF_LOAD::WHOLE_FORM, PDF_LOAD::NAMED_FIELDS}) {
            SCOPED_TRACE(load == PDF_LOAD::WHOLE_FORM ? "whole form" : "named fields");
            Values values = c.values;
            if (values.empty()) {
                FormAtWork names(input);
                for_each_field(names.document.form(), [&values](const CPDFField& field) {
                    if (field.m_type == FIELD_TEXT && field.m_name.len > 0)
                        values.emplace_back(full_name(field), "x");
                });
            }
            FormAtWork f(input, load);
            FormAtWork untouched(input);
            const uint32_t next = FormAtWork(input).document.xref().new_obj_num();
            for (int round = 0; round < 3; ++round) {
                set_all(f, values);
                FormAtWork once(input, load);
                set_all(once, values);
                EXPECT_NE(objects_of(f), objects_of(untouched));
                EXPECT_EQ(objects_of(f), objects_of(once)) << "round " << round;
                FormAtWork again(f.saved());
                EXPECT_EQ(memory_of(f, values), memory_of(again, values));
                CPDFObj more;
                more.set_int(1);
                f.document.xref().store_changed({f.document.xref().new_obj_num(), 0}, more);
                f.document.revert();
                EXPECT_EQ(f.saved(), input);
                EXPECT_EQ(objects_of(f), objects_of(untouched));
                EXPECT_EQ(memory_of(f, values), memory_of(untouched, values));
            }
            EXPECT_EQ(f.document.xref().new_obj_num(), next);
        }
    }
}
