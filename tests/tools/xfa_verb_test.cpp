// The verbs on forms that have their values in XFA data alone, and --xfa.
#include "tests/tools/command_run.h"

namespace {
std::string stream_of(const std::string& text)
{
    return "<</Length " + std::to_string(text.size()) + ">>stream\n" + text + "\nendstream";
}

std::string form_with(const std::string& field, const std::string& data)
{
    return pdf_of({"<</Type/Catalog/AcroForm<</Fields[2 0 R]/XFA[(template)4 0 R(datasets)3 0 R]>>>>",
                   "<<" + field + ">>",
                   stream_of("<d:datasets xmlns:d='u'><lists>x</lists><d:data>" + data + "</d:data></d:datasets>"),
                   stream_of("<template><subform name='f'><field name='a'/></subform></template>")});
}
}  // namespace

TEST(XfaVerbTest, FormsWithoutFieldsAreReadAndFilledByPath)
{
    const CommandFolder folder;
    const std::string file = folder.write("dynamic.pdf", form_with("/FT/Sig/T(s)", "<f><n>Ada</n><i/><i>2</i></f>"));
    const std::string table = folder.run({"list", file}).out;
    for (const char* row :
         {"\n    data       f.n     Ada\n", "\n    data       f.i[0]\n", "\n    data       f.i[1]  2\n"})
        EXPECT_NE(table.find(row), std::string::npos) << table;

    const std::string json = folder.run({"list", "--json", file}).out;
    EXPECT_NE(json.find(",\n{\"name\":\"f.i[1]\",\"type\":null,\"kind\":\"data\",\"value\":\"2\"}\n]\n"),
              std::string::npos)
        << json;

    const std::string out = folder.path("out.pdf");
    const CommandResult refused = folder.run({"fill", file, "f.n=Bob", "f.x=1", "-o", out});
    EXPECT_EQ(refused.exit, 1);
    EXPECT_EQ(refused.err, "formwork: " + file + ": the XFA data have no value \"f.x\"\n");
    const CommandResult filled = folder.run({"fill", file, "f.n=Bob & Co", "f.i[0]=1", "--report", "-o", out});
    EXPECT_EQ(filled.exit, 0);
    EXPECT_EQ(filled.err, "");
    EXPECT_EQ(filled.out, "{\"name\":\"f.n\",\"result\":\"set\",\"value\":\"Bob & Co\"}\n"
                          "{\"name\":\"f.i[0]\",\"result\":\"set\",\"value\":\"1\"}\n");
    EXPECT_EQ(
        folder.run({"export", out, "--as", "xfa"}).out,
        "<d:datasets xmlns:d='u'><lists>x</lists><d:data><f><n>Bob &amp; Co</n><i>1</i><i>2</i></f></d:data></d:datasets>");

    const std::string rows = folder.write("rows.csv", "f.n,id\r\nA,1\r\nB,2\r\n");
    EXPECT_EQ(folder.run({"fill", file, "--batch", rows, "-o", folder.path("{f.n}{id}.pdf")}).exit, 0);
    EXPECT_NE(folder.run({"list", folder.path("B2.pdf")}).out.find("f.n     B\n"), std::string::npos);
}

TEST(XfaVerbTest, XfaKeepsWhatNoFieldHoldsAndTellsOfFieldsWithoutAPlace)
{
    const CommandFolder folder;
    const std::string file = folder.write("form.pdf", form_with("/FT/Tx/T(b[0])", "<f><a>1</a></f>"));
    const std::string out = folder.path("out.pdf");
    const CommandResult filled = folder.run({"fill", file, "b[0]=2", "--xfa", "-o", out});
    EXPECT_EQ(filled.exit, 0);
    EXPECT_EQ(filled.err, "formwork: " + file +
                              ": note: where in the XFA data the values of these fields belong is not known, "
                              "so they are not written there: \"b[0]\"\n");
    EXPECT_NE(folder.run({"export", out, "--as", "xfa"}).out.find("<f><a>1</a></f>"), std::string::npos);
    EXPECT_EQ(folder.run({"list", file}).out.find("data "), std::string::npos);
}
