// `--scripts all`: what the scripts of a form and of its document do to the file that the command writes.
#include <gmock/gmock.h>
#include <sys/prctl.h>
#include <sys/wait.h>

#include <cerrno>
#include <thread>

#include "document/document.h"
#include "tests/tools/command_run.h"

namespace {

using testing::HasSubstr;
using testing::Not;

std::string action(const std::string& script)
{
    std::string escaped;
    for (const char c : script)
        escaped += (c == '(' || c == ')' || c == '\\' ? "\\" : "") + std::string(1, c);
    return "<</S/JavaScript/JS(" + escaped + ")>>";
}

std::string scripted(const std::string& entries, const std::string& event, const std::string& script)
{
    return entries + "/AA<</" + event + action(script) + ">>";
}

// One page with these fields as objects 6 and following, of which `order` are calculated.
std::string form(const std::vector<std::string>& fields, const std::string& order, const std::string& names = "")
{
    std::vector<std::string> objects = {"", "<</Type/Pages/Kids[3 0 R]/Count 1>>", "", "",
                                        "<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>"};
    std::string refs;
    for (const std::string& field : fields) {
        objects.push_back("<</Type/Annot/Subtype/Widget/F 4/P 3 0 R/Rect[20 100 220 120]" + field + ">>");
        refs += std::to_string(objects.size()) + " 0 R ";
    }
    objects[0] = "<</Type/Catalog/Pages 2 0 R/AcroForm 4 0 R/Names<</JavaScript " + names + ">>>>";
    objects[2] = "<</Type/Page/Parent 2 0 R/MediaBox[0 0 612 792]/Annots[" + refs + "]>>";
    objects[3] = "<</Fields[" + refs + "]/CO[" + order + "]/DA(/Helv 10 Tf 0 g)/DR<</Font<</Helv 5 0 R>>>>>>";
    return pdf_of(objects);
}

const char* const ADDS = "event.value = plus(getField('a').value, 1)";

std::string document_scripts()
{
    return "<</Kids[<</Names[(b) " + action("function plus(a, b) { return a + b; } getField('d').value = 'set'") +
           "(a) " + action("throw 'none'") + "(c) " + action("n = typeof n == 'undefined' ? 1 : 2") + "]>> 1 0 R]>>";
}

class ScriptsTest : public testing::Test {
protected:
    std::string get(const std::string& name, const std::string& file = "out.pdf")
    {
        return folder.run({"get", folder.path(file), name}).out;
    }

    CommandResult fill(const std::string& file, std::vector<std::string> values)
    {
        values.insert(values.begin(), {"fill", file, "--scripts", "all", "-o", folder.path("out.pdf")});
        return folder.run(values);
    }

    CommandFolder folder;
};

TEST_F(ScriptsTest, ThoseOfTheDocumentPrepareThoseOfFields)
{
    const std::string file = folder.write(
        "f.pdf", form({"/FT/Tx/T(a)", scripted("/FT/Tx/T(t)", "C", ADDS), "/FT/Tx/T(d)"}, "7 0 R", document_scripts()));
    const CommandResult result = fill(file, {"a=4"});
    EXPECT_EQ(result.exit, 0);
    EXPECT_THAT(result.err, HasSubstr("note: the document script \"a\" was not run: none\n"));
    EXPECT_EQ(get("t") + get("d"), "5\nset\n");
    fill(file, {"a=4", "d=mine"});
    EXPECT_EQ(get("d"), "mine\n");
    const std::string known = folder.run({"fill", file, "a=4", "-o", folder.path("out.pdf")}).err;
    EXPECT_THAT(known, HasSubstr("4 scripts were not run"));
}

TEST_F(ScriptsTest, WhatTheyMakeOfFieldsIsStored)
{
    const std::string script =
        "console.println(String.fromCharCode(27) + '[1m' + [event.target.page, event.target.rect, event.target.textColor]);"
        "getField('h').hidden = true; getField('a').readonly = true;"
        "getField('c').setItems([['One', '1'], '2']); getField('c').value = '2'";
    const std::string file = folder.write("f.pdf", form({"/FT/Tx/T(a)", scripted("/FT/Tx/T(t)", "C", script),
                                                         "/FT/Tx/T(h)", "/FT/Ch/Ff 131072/T(c)/Opt[(x)(y)]/V(x)"},
                                                        "7 0 R"));
    EXPECT_THAT(fill(file, {"a=4", "--verbose"}).err, HasSubstr("console: \\x1b[1m0,20,120,220,100,G,0\n"));
    EXPECT_EQ(get("c"), "2\n");
    const std::string out = read_text_file(folder.path("out.pdf"));
    EXPECT_THAT(out, HasSubstr("/T(h)/F 6"));
    EXPECT_THAT(out, HasSubstr("/Opt[[(1)(One)](2)]"));
    EXPECT_THAT(folder.run({"fill", folder.path("out.pdf"), "a=5", "--in-place"}).err, HasSubstr("read-only"));
    EXPECT_THAT(fill(file, {"a=4"}).err, Not(HasSubstr("console")));
}

TEST_F(ScriptsTest, ChecksHaveTheirOwnWordsAndFormatsAreDrawn)
{
    const std::string check = "if (event.value == 'bad') { app.alert('Not that.'); event.rc = false; }"
                              "else event.value = event.value.toUpperCase()";
    const std::string file =
        folder.write("f.pdf", form({scripted("/FT/Tx/T(k)", "K", check), scripted("/FT/Tx/T(v)", "V", check),
                                    scripted("/FT/Tx/T(f)", "F", "event.value = '<' + event.value + '>'")},
                                   ""));
    for (const char* value : {"k=bad", "v=bad"}) {
        const CommandResult result = fill(file, {value});
        EXPECT_EQ(result.exit, 1);
        EXPECT_THAT(result.err, HasSubstr("Not that."));
    }
    EXPECT_EQ(fill(file, {"k=good", "v=fine", "f=hello"}).exit, 0);
    EXPECT_EQ(get("k") + get("v") + get("f"), "GOOD\nFINE\nhello\n");
    if (std::system("pdftotext -v 2>/dev/null") != 0)
        GTEST_SKIP() << "no pdftotext";
    std::system(("pdftotext '" + folder.path("out.pdf") + "' '" + folder.path("text") + "'").c_str());
    EXPECT_THAT(read_text_file(folder.path("text")), HasSubstr("<hello>"));
}

TEST_F(ScriptsTest, AnEndlessOneLeavesTheRestFilled)
{
    const std::string file =
        folder.write("f.pdf", form({"/FT/Tx/T(a)", scripted("/FT/Tx/T(t)", "C", "for (;;);")}, "7 0 R"));
    const CommandResult result = fill(file, {"a=4", "--script-seconds", "0.2"});
    EXPECT_EQ(result.exit, 0);
    EXPECT_THAT(result.err, HasSubstr("the calculate script of field \"t\" was not run: it took longer than 0.2 sec"));
    EXPECT_EQ(get("a"), "4\n");
}

TEST_F(ScriptsTest, RowsOfABatchKnowNothingOfEachOther)
{
    const std::string deadly = "if (getField('a').value == 2) { var x = []; for (;;) x.push('x' + x.length); }"
                               "event.value = plus(getField('a').value, n)";
    const std::string file =
        folder.write("f.pdf", form({"/FT/Tx/T(a)", scripted("/FT/Tx/T(t)", "C", deadly), "/FT/Tx/T(d)"}, "7 0 R",
                                   document_scripts()));
    const std::string rows = folder.write("rows.csv", "a\n1\n2\n3\n4\n");
    std::vector<const char*> numbers = {"1"};
#ifndef __SANITIZE_ADDRESS__
    // The sanitizer's allocator can't be forked while another thread holds one of its locks: the child waits for it forever.
    numbers.push_back("2");
#endif
    for (const char* jobs : numbers) {
        const CommandResult result = folder.run({"fill", file, "--batch", rows, "-o", folder.path("{a}.pdf"),
                                                 "--scripts", "all", "--script-seconds", "20", "--jobs", jobs});
        EXPECT_EQ(result.exit, 0) << result.err;
        EXPECT_THAT(result.err, HasSubstr("field \"t\" was not run: it took more than 64 MiB of memory"));
        EXPECT_EQ(get("t", "1.pdf") + get("t", "2.pdf") + get("t", "3.pdf") + get("t", "4.pdf"), "2\n\n4\n5\n");
        EXPECT_EQ(get("d", "4.pdf"), "set\n");
    }
}

// What the process was loaded with, in the middle of the first row, comes back in no other one.
TEST_F(ScriptsTest, WhatARowLeavesOutIsNotThatOfAnotherRow)
{
    const std::string adds = "event.value = getField('a').value + '|' + getField('b').value;"
                             "getField('h').hidden = getField('b').value == 1";
    const std::string file = folder.write(
        "f.pdf",
        form({"/FT/Tx/T(a)/V(own)", "/FT/Tx/T(b)", scripted("/FT/Tx/T(t)", "C", adds), "/FT/Tx/T(h)"}, "8 0 R"));
    const std::string rows = folder.write("rows.jsonl", "{\"b\":\"1\",\"a\":\"x\"}\n{\"b\":\"2\"}\n");
    const CommandResult result =
        folder.run({"fill", file, "--batch", rows, "-o", folder.path("{b}.pdf"), "--scripts", "all"});
    EXPECT_EQ(result.exit, 0) << result.err;
    EXPECT_EQ(get("t", "1.pdf") + get("t", "2.pdf"), "x|1\nown|2\n");
    EXPECT_THAT(read_text_file(folder.path("1.pdf")), HasSubstr("/T(h)/F 6"));
    EXPECT_THAT(read_text_file(folder.path("2.pdf")), Not(HasSubstr("/T(h)/F 6")));
}

TEST_F(ScriptsTest, WhatAFailedScriptDidIsNotSeen)
{
    const std::string file = folder.write(
        "f.pdf", form({"/FT/Tx/T(x)", scripted("/FT/Tx/T(s)", "C", "getField('g').value = 5; throw 'no'"),
                       scripted("/FT/Tx/T(t)", "C", "event.value = 'g is ' + getField('g').value"), "/FT/Tx/T(g)/V(1)"},
                      "7 0 R 8 0 R"));
    EXPECT_THAT(fill(file, {"x=1"}).err, HasSubstr("the calculate script of field \"s\" was not run: no"));
    EXPECT_EQ(get("g") + get("t"), "1\ng is 1\n");
}

// A format that makes something of its field costs the process what it knows; the scripts of the document prepare it again,
// whatever they make of fields themselves.
TEST_F(ScriptsTest, FunctionsOfTheDocumentOutlastAFormat)
{
    const std::string names =
        "<</Names[(a) " + action("function show(x) { return '<' + x + '>'; } getField('d').hidden = true;") + "]>>";
    const std::string format = "event.value = show(event.value); event.target.readonly = true";
    const std::string file = folder.write(
        "f.pdf",
        form({scripted("/FT/Tx/T(a)", "F", format), scripted("/FT/Tx/T(b)", "F", format), "/FT/Tx/T(d)"}, "", names));
    EXPECT_EQ(fill(file, {"a=1", "b=2", "d=3"}).err, "");
    const std::string out = read_text_file(folder.path("out.pdf"));
    for (const char* part : {"(<1>) Tj", "(<2>) Tj", "/F 6"})
        EXPECT_THAT(out, HasSubstr(part));
}

TEST_F(ScriptsTest, ValuesComeOutAsTheyAre)
{
    const struct {
        const char* script;
        const char* field;
        const char* value;
    } rows[] = {{"event.value = 0.1 + 0.2", "t", "0.30000000000000004\n"},
                {"event.value = '\\ud83d\\ude00'", "t", "\xF0\x9F\x98\x80\n"},
                {"getField('l').value = ['p', 'r']", "l", "p, r\n"},
                {"getField('l').currentValueIndices = [0, 2]", "l", "p, r\n"},
                {"resetForm(['l', 'c'])", "l", "q, r\n"},
                {"resetForm(['l', 'c'])", "c", "Off\n"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.script);
        const std::string file =
            folder.write("f.pdf", form({"/FT/Tx/T(a)", scripted("/FT/Tx/T(t)", "C", row.script),
                                        "/FT/Ch/Ff 2097152/T(l)/Opt[(p)(q)(r)]/V(q)/DV[(q)(r)]",
                                        "/FT/Btn/T(c)/V/Yes/AS/Yes/AP<</N<</Yes 1 0 R/Off 1 0 R>>>>"},
                                       "7 0 R"));
        const CommandResult result = fill(file, {"a=1"});
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(get(row.field), row.value);
    }
}

// Each run hands over a large text, in a circle: the time of the child is no bound of what that takes here.
TEST_F(ScriptsTest, WhatScriptsHandOverCountsAsWork)
{
    const std::string grows = "var s = 'xxxxxxxxxxxxxxxx'; for (var i = 0; i < 16; ++i) s += s;"
                              "global.n = (global.n || 0) + 1; getField('b').value = s + global.n";
    std::string order;
    for (int i = 0; i < 500; ++i)
        order += i % 2 ? "7 0 R " : "8 0 R ";
    const std::string file = folder.write("f.pdf", form({"/FT/Tx/T(a)", scripted("/FT/Tx/T(s)", "C", grows),
                                                         scripted("/FT/Tx/T(t)", "C", grows), "/FT/Tx/T(b)"},
                                                        order));
    const CommandResult result = fill(file, {"a=1", "--no-appearance"});
    EXPECT_EQ(result.exit, 1);
    EXPECT_THAT(result.err, HasSubstr("more work than the file's size justifies to calculate the form"));
}

// The child of the scripts ends with the thread that started it.
TEST_F(ScriptsTest, ADocumentMayMoveToAnotherThread)
{
    const std::string file = folder.write(
        "f.pdf", form({"/FT/Tx/T(a)", scripted("/FT/Tx/T(t)", "C", ADDS), "/FT/Tx/T(d)"}, "7 0 R", document_scripts()));
    CPDFDocument document;
    document.set_scripts(PDF_SCRIPTS::ALL);
    ASSERT_TRUE(document.open(file).ok());
    for (const char* value : {"1", "2", "3"})
        std::thread([&] { EXPECT_TRUE(document.set_text(*document.field("a"), value).ok()); }).join();
    EXPECT_TRUE(document.set_text(*document.field("a"), "4").ok());
    EXPECT_EQ(document.calculation_notes().size(), 1U);  // of the document's script that throws
    std::vector<uint8_t> out;
    ASSERT_TRUE(document.save(out).ok());
    EXPECT_THAT(std::string(out.begin(), out.end()), HasSubstr("/T(t)/AA"));
    EXPECT_THAT(std::string(out.begin(), out.end()), HasSubstr("/V(5)"));
}

class CorpusScriptsTest : public testing::TestWithParam<std::string> {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(CorpusScriptsTest);
INSTANTIATE_TEST_SUITE_P(RealFiles, CorpusScriptsTest, testing::ValuesIn(corpus_sample()), file_label);

TEST_P(CorpusScriptsTest, EveryScriptRunsOrIsNamed)
{
    const CommandFolder folder;
    prctl(PR_SET_CHILD_SUBREAPER, 1);  // whoever is left behind becomes a child of this process
    const std::string out = folder.path("out.pdf");
    const CommandResult result = folder.run({"calculate", GetParam(), "--scripts", "all", "-o", out});
    ASSERT_TRUE(result.exit == 0 || result.exit == 1) << result.exit << result.err;
    EXPECT_THAT(result.err, Not(HasSubstr("crashed")));
    EXPECT_THAT(result.err, Not(HasSubstr("nonsense")));
    EXPECT_THAT(result.err, Not(HasSubstr("scripts were not run")));
    EXPECT_EQ(folder.run({"list", out}).exit, result.exit);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

}  // namespace
