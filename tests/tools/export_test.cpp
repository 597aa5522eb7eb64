// What `formwork export` says beside the data.
#include "tests/tools/command_run.h"

TEST(ExportVerbTest, XmlThatIsNotWellFormedIsNoted)
{
    const CommandFolder folder;
    const std::string form = folder.write(
        "form.pdf",
        PdfBuilder().form({"<</FT/Tx/T(t t)>>", "<</FT/Btn/T(c)/V/a#26b>>", "<</FT/Tx/T(fine)/V(<&)>>"}).table().text);
    const CommandResult all = folder.run({"export", form, "--as", "xml"});
    EXPECT_EQ(all.exit, 0);
    EXPECT_NE(all.err.find("the names of these fields are no XML names: \"t t\"\n"), std::string::npos) << all.err;
    EXPECT_NE(all.err.find("XML can't hold the values of these fields: \"c\"\n"), std::string::npos) << all.err;
    EXPECT_EQ(folder.run({"export", form, "fine", "--as", "xml"}).err, "");
}
