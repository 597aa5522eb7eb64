// Forms that another program encrypted: listed, filled, and decrypted again by that program.
#include <gtest/gtest.h>

#include "tests/tools/command_run.h"

namespace {

struct Encryption {
    const char* label;
    const char* options;  // of qpdf --encrypt
    const char* user;
    const char* owner;
};

constexpr Encryption ENCRYPTIONS[] = {
    {"revision 2", "u o 40", "u", "o"},
    {"revision 3", "u o 128 --use-aes=n", "u", "o"},
    {"revision 3, PDFDocEncoding", "'p\xC3\xA4ss' '\xC3\xB6wner' 128 --use-aes=n", "p\xC3\xA4ss", "\xC3\xB6wner"},
    {"revision 4, RC4", "u o 128 --force-V4", "u", "o"},
    {"revision 4, AES", "u o 128 --use-aes=y --cleartext-metadata", "u", "o"},
    {"revision 5", "u o 256 --force-R5", "u", "o"},
    {"revision 6", "'p\xC3\xA4ss\xE2\x82\xAC' o 256", "p\xC3\xA4ss\xE2\x82\xAC", "o"},
    {"revision 6, no password", "'' o 256", "", "o"},
};

bool qpdf(const std::string& arguments)
{
    return std::system(("qpdf " + arguments + " >/dev/null 2>&1").c_str()) == 0;
}

// The lines of a list that tell names, values and options.
std::string values_of(const std::string& json)
{
    std::string out;
    for (size_t at = 0; at < json.size();) {
        const size_t end = std::min(json.find('\n', at), json.size());
        std::string line = json.substr(at, end - at);
        out += line.substr(0, line.find("\"object\"")) + "\n";
        at = end + 1;
    }
    return out;
}

}  // namespace

TEST(EncryptedTest, FormsAreListedAndFilledWithEitherPassword)
{
    if (!qpdf("--version"))
        GTEST_SKIP() << "qpdf makes the files of this test";
    const CommandFolder folder;
    const std::string in = folder.path("in.pdf");
    const std::string out = folder.path("out.pdf");
    const std::string plain = folder.path("plain.pdf");
    for (const char* sample : {"/kinds.pdf", "/object-streams.pdf"}) {
        const std::string form = FORMWORK_SAMPLES_DIR + std::string(sample);
        const bool kinds = form.ends_with("kinds.pdf");
        const std::string name = kinds ? "name" : "order.remark";
        for (const Encryption& each : ENCRYPTIONS) {
            SCOPED_TRACE(form + ", " + each.label);
            ASSERT_TRUE(
                qpdf("--allow-weak-crypto --encrypt " + std::string(each.options) + " -- '" + form + "' '" + in + "'"));
            ASSERT_TRUE(qpdf("--decrypt --password='" + std::string(each.owner) + "' '" + in + "' '" + plain + "'"));
            const std::string before = values_of(folder.run({"list", "--json", plain}).out);
            EXPECT_GT(before.size(), 1000u);
            const CommandResult wrong = folder.run({"list", in, "--password", "wrong"});
            EXPECT_EQ(wrong.exit, *each.user ? 1 : 0);
            EXPECT_EQ(wrong.err.find("the password is wrong") != std::string::npos, *each.user != 0);
            EXPECT_EQ(values_of(folder.run({"list", "--json", in, "--password", each.user}).out), before);
            EXPECT_EQ(values_of(folder.run({"list", "--json", in, "--password", each.owner}).out), before);
            const std::string password = kinds ? each.user : each.owner;
            const CommandResult filled =
                folder.run({"fill", in, "--password", password, name + "=G\xC3\xB6tz (\xCE\xA9)", "-o", out});
            ASSERT_EQ(filled.exit, 0) << filled.err;
            EXPECT_EQ(read_text_file(out).substr(0, read_text_file(in).size()), read_text_file(in));
            EXPECT_TRUE(qpdf("--check --password='" + password + "' '" + out + "'"));
            ASSERT_TRUE(qpdf("--decrypt --password='" + password + "' '" + out + "' '" + plain + "'"));
            EXPECT_EQ(folder.run({"get", plain, name}).out, "G\xC3\xB6tz (\xCE\xA9)\n");
        }
    }
}

TEST(EncryptedTest, PermissionsHoldUnlessForced)
{
    if (!qpdf("--version"))
        GTEST_SKIP() << "qpdf makes the files of this test";
    const CommandFolder folder;
    const std::string in = folder.path("in.pdf");
    const std::string out = folder.path("out.pdf");
    ASSERT_TRUE(qpdf("--encrypt '' o 256 --modify=none -- '" FORMWORK_SAMPLES_DIR "/kinds.pdf' '" + in + "'"));
    const CommandResult list = folder.run({"list", in});
    EXPECT_EQ(list.exit, 0);
    EXPECT_NE(list.err.find("permissions forbid to fill"), std::string::npos);
    const std::vector<std::vector<std::string>> verbs = {
        {"fill", in, "name=x"}, {"reset", in}, {"remove", in, "name"}, {"fill", in, "name=x", "--flatten"}};
    for (std::vector<std::string> verb : verbs) {
        SCOPED_TRACE(verb.front());
        verb.insert(verb.end(), {"-o", out});
        const CommandResult refused = folder.run(verb);
        EXPECT_EQ(refused.exit, 1);
        EXPECT_NE(refused.err.find("permissions forbid"), std::string::npos) << refused.err;
        EXPECT_FALSE(std::filesystem::exists(out));
        verb.insert(verb.end(), {"--password", "o"});
        EXPECT_EQ(folder.run(verb).exit, 0);
        std::filesystem::remove(out);
        verb.back() = "";
        verb.emplace_back("--force");
        EXPECT_EQ(folder.run(verb).exit, 0);
        std::filesystem::remove(out);
    }
}
