#include "file/update.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "document/document.h"
#include "file/output_file.h"
#include "tests/support/pdf_builder.h"

namespace {
PdfBuilder base(const std::string& junk = "")
{
    return PdfBuilder(junk).object(1, "<</Type/Catalog>>").object(4, "(four)", 7).stream(5, "", "five");
}

std::string update_of(FileAtWork& file)
{
    std::string update;
    write_update(update, file.xref, file.reader, file.bytes.data(), file.bytes.size());
    return update;
}

// Stores the object that `text` spells as the new version of `num`.
void change(FileAtWork& file, uint32_t num, const std::string& text, uint32_t gen = 0)
{
    CPDFObj obj;
    ASSERT_TRUE(parse_object(text, obj));
    file.xref.store_changed({num, gen}, obj);
}

// Stores a Flate stream with `text` under a new number, which is returned.
uint32_t add_stream(FileAtWork& file, const std::string& text)
{
    const uint32_t num = file.xref.new_obj_num();
    int len = 0;
    unsigned char* packed = file.xref.compress_data(text.data(), static_cast<int>(text.size()), len);
    CPDFObj obj;
    obj.stream = new CPDFStreamRec;
    obj.type = PDF_OBJ_STREAM;
    obj.stream->dict.set_item_name("Filter", "FlateDecode");
    obj.stream->data_len = static_cast<uint32_t>(len);
    obj.stream->ref = {num, 0};
    obj.stream->in_memory = 1;
    obj.stream->handle = file.xref.set_mem_stream({num, 0}, packed, len);
    file.xref.store_changed({num, 0}, obj);
    return num;
}

std::string trailer_entry(const FileAtWork& file, const char* key)
{
    const CPDFObj* entry = file.reader.trailer().get_item(key);
    return entry ? show_object(*entry) : "";
}

mode_t mode_of(const std::string& path)
{
    struct stat info = {};
    return ::lstat(path.c_str(), &info) == 0 ? info.st_mode : 0;
}
}  // namespace

TEST(UpdateTest, EveryKindOfFileIsContinuedInItsKind)
{
    const std::string id = "/ID[(first) (second)]/Info 4 7 R";
    PdfBuilder older = base();
    older.object(4, "(older)", 7).table();
    PdfBuilder counted("0123456789\n");
    counted.count_junk().object(1, "<</Type/Catalog>>").object(4, "(four)", 7).stream(5, "", "five");
    const struct {
        const char* label;
        std::string text;
        PDF_SECTION_KIND kind;
        size_t shift;
    } cases[] = {
        {"table", base().table(id).text, PDF_SECTION_KIND::TABLE, 0},
        {"stream", base().xref_stream(9, id).text, PDF_SECTION_KIND::STREAM, 0},
        {"hybrid", base().object_stream(7, {{6, "(six)"}}).hybrid(9, id).text, PDF_SECTION_KIND::TABLE, 0},
        {"several updates", older.object(5, "(none)").stream(5, "", "five").xref_stream(9, id).text,
         PDF_SECTION_KIND::STREAM, 0},
        {"junk before the header", base("%junk\n").table(id).text, PDF_SECTION_KIND::TABLE, 6},
        {"junk that counts", counted.table(id).text, PDF_SECTION_KIND::TABLE, 0},
    };
    for (const auto& c : cases) {
        for (const size_t cut : {0, 1}) {
            SCOPED_TRACE(std::string(c.label) + (cut ? ", no line end" : ""));
            FileAtWork file(c.text.substr(0, c.text.size() - cut));
            change(file, 4, "<< /New (value) >>", 7);
            const uint32_t added = add_stream(file, "some data");
            EXPECT_EQ(file.data(added), "some data");
            const std::string update = update_of(file);
            EXPECT_EQ(update, update_of(file));

            FileAtWork again(std::string(file.bytes.begin(), file.bytes.end()) + update);
            EXPECT_EQ(again.reader.newest_kind(), c.kind);
            EXPECT_EQ(again.reader.shift(), c.shift);
            EXPECT_EQ(trailer_entry(again, "Prev"), std::to_string(file.reader.newest_pos()));
            EXPECT_EQ(trailer_entry(again, "Root") + trailer_entry(again, "Info"), "1 0 R4 7 R");
            EXPECT_EQ(trailer_entry(again, "ID").substr(0, 8), "[(first)");
            EXPECT_EQ(trailer_entry(again, "ID").find("(second)"), std::string::npos);
            EXPECT_EQ(again.show(4), "<< /New (value) >>");
            EXPECT_EQ(again.data(5), "five");
            EXPECT_EQ(again.data(added), "some data");
            EXPECT_EQ(trailer_entry(again, "Size"), std::to_string(again.xref.new_obj_num()));

            change(again, 4, "(third)", 7);
            FileAtWork third(std::string(again.bytes.begin(), again.bytes.end()) + update_of(again));
            EXPECT_EQ(third.show(4), "(third)");
            EXPECT_EQ(third.data(added), "some data");
            EXPECT_EQ(third.data(5), "five");
        }
    }
}

TEST(UpdateTest, TheGenerationIsThatOfTheFile)
{
    FileAtWork file(base().object_stream(7, {{6, "(six)"}}).xref_stream(9).text);
    change(file, 4, "(new)", 3);
    change(file, 6, "(new)", 3);
    change(file, 8, "(new)", 3);
    const std::string update = update_of(file);
    for (const char* head : {"4 7 obj\n", "6 0 obj\n", "8 3 obj\n"})
        EXPECT_NE(update.find(head), std::string::npos) << head;
}

TEST(UpdateTest, AFileWithoutIdGetsOneThatDependsOnTheChange)
{
    std::vector<std::string> ids;
    for (const char* value : {"(a)", "(b)", "(a)"}) {
        FileAtWork file(base().table().text);
        change(file, 4, value);
        FileAtWork again(std::string(file.bytes.begin(), file.bytes.end()) + update_of(file));
        ids.push_back(trailer_entry(again, "ID"));
    }
    EXPECT_EQ(ids[0], ids[2]);
    EXPECT_NE(ids[0], ids[1]);
    EXPECT_EQ(ids[0].size(), std::strlen("[<0123456789ABCDEF0123456789ABCDEF> <0123456789ABCDEF0123456789ABCDEF>]"));
}

// "Length" of the output is what was written, whatever the dictionary said before.
TEST(UpdateTest, StreamsAreWrittenWithTheirLength)
{
    FileAtWork file(
        base().object(8, "<</Length 900/A 1>>\nstream\nan endstream\nendstream").stream(6, "", "").table().text);
    CPDFObj obj;
    file.xref.get_entity(obj, {8, 0});
    ASSERT_EQ(obj.type, PDF_OBJ_STREAM);
    obj.stream->dict.set_item_int("A", 2);
    file.xref.store_changed({8, 0}, obj);
    auto* data = static_cast<unsigned char*>(VXAlloc(20));
    std::memcpy(data, "an endstream inside!", 20);
    obj.stream->in_memory = 1;
    obj.stream->handle = file.xref.set_mem_stream({6, 0}, data, 20);
    file.xref.store_changed({6, 0}, obj);

    FileAtWork again(std::string(file.bytes.begin(), file.bytes.end()) + update_of(file));
    EXPECT_EQ(again.show(8), "stream<< /A 2 /Length 3 >>");
    EXPECT_EQ(again.data(8), "an ");
    EXPECT_EQ(again.show(6), "stream<< /A 2 /Length 20 >>");
    EXPECT_EQ(again.data(6), "an endstream inside!");
}

TEST(OutputFileTest, ReplacesTheFileAsAWhole)
{
    const TempFolder folder;
    const std::string path = folder.path("out.pdf");
    ASSERT_TRUE(write_file(path, {"one", -1}, "two").ok());
    EXPECT_EQ(read_text_file(path), "onetwo");
    EXPECT_EQ(mode_of(path) & 0133, 0u);

    ::chmod(path.c_str(), 0640);
    std::filesystem::create_symlink(path, folder.path("link"));
    ASSERT_TRUE(write_file(folder.path("link"), {"three", -1}, "").ok());
    EXPECT_TRUE(S_ISLNK(mode_of(folder.path("link"))));
    EXPECT_EQ(read_text_file(path), "three");
    EXPECT_EQ(mode_of(path) & 07777, 0640u);

    const int input = ::open(path.c_str(), O_RDONLY);
    ASSERT_TRUE(write_file(path, {"three", input}, " and four").ok());
    ::close(input);
    EXPECT_EQ(read_text_file(path), "three and four");
    EXPECT_EQ(folder.files(), 2);
}

TEST(OutputFileTest, AFailureLeavesEverythingAsItWas)
{
    const TempFolder folder;
    const std::string path = folder.write("out.pdf", "kept");
    for (const std::string& target :
         {folder.path("none/out.pdf"), path + "/out.pdf", folder.path("."), std::string("/proc/out.pdf")}) {
        SCOPED_TRACE(target);
        const CPDFStatus status = write_file(target, {"new", -1}, "");
        EXPECT_EQ(status.code, PDF_CODE::IO);
        EXPECT_NE(status.text.find(target), std::string::npos) << status.text;
    }
    // No room for all of it.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before = {};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small = {100, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    const CPDFStatus status = write_file(path, {std::string(50, 'a'), -1}, std::string(100, 'b'));
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(status.code, PDF_CODE::IO);
    EXPECT_EQ(read_text_file(path), "kept");
    EXPECT_EQ(folder.files(), 1);
}

TEST(OutputFileTest, APipeIsWrittenAndStaysAPipe)
{
    const TempFolder folder;
    const std::string path = folder.path("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    const int fd = ::open(path.c_str(), O_RDWR | O_NONBLOCK);
    const CPDFStatus status = write_file(path, {"through ", -1}, "the pipe");
    char got[64] = "";
    EXPECT_EQ(::read(fd, got, sizeof got - 1), 16);
    ::close(fd);
    EXPECT_TRUE(status.ok()) << status.text;
    EXPECT_STREQ(got, "through the pipe");
    EXPECT_TRUE(S_ISFIFO(mode_of(path)));
}
