#include <cairo.h>
#include <gtest/gtest.h>

#include "tests/tools/command_run.h"

namespace {

// A PNG picture that `formwork draw` wrote; pixels are alpha, red, green, blue in hexadecimal.
struct Picture {
    int width, height;
    std::vector<uint32_t> pixels;

    explicit Picture(const std::string& path)
    {
        cairo_surface_t* surface = cairo_image_surface_create_from_png(path.c_str());
        width = cairo_image_surface_get_width(surface);
        height = cairo_image_surface_get_height(surface);
        const auto* data = reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(surface));
        pixels.assign(data, data + static_cast<ptrdiff_t>(width) * height);  // rows of whole words have no gaps
        cairo_surface_destroy(surface);
    }

    // The smallest box with all pixels of one colour: "left,top-right,bottom", edges included.
    std::string extent(uint32_t color) const
    {
        int x0 = width, y0 = height, x1 = -1, y1 = -1;
        for (int i = 0; i < width * height; ++i) {
            if (pixels[static_cast<size_t>(i)] != color)
                continue;
            x0 = std::min(x0, i % width), x1 = std::max(x1, i % width);
            y0 = std::min(y0, i / width), y1 = std::max(y1, i / width);
        }
        const auto point = [](int x, int y) { return std::to_string(x) + "," + std::to_string(y); };
        return x1 < 0 ? "none" : point(x0, y0) + "-" + point(x1, y1);
    }
};

constexpr uint32_t FACE = 0xFFF0F0F0;
constexpr uint32_t DARK = 0xFFA0A0A0;
constexpr uint32_t BLACK = 0xFF000000;

class DrawTest : public testing::Test {
protected:
    // A page 200 by 100 points large with a combo box at (20, 60)-(120, 80).
    std::string form(const std::string& page, const std::string& widget = "", const std::string& tree = "")
    {
        return folder.write("form.pdf",
                            pdf_of({"<</Type/Catalog/Pages 2 0 R/AcroForm<</Fields[4 0 R]>>>>",
                                    "<</Type/Pages/Kids[3 0 R]/MediaBox[0 0 200 100]" + tree + ">>",
                                    "<</Type/Page/Parent 2 0 R/Annots[4 0 R]" + page + ">>",
                                    "<</FT/Ch/Ff 131072/T(a)/Subtype/Widget/Rect[120 60 20 80]" + widget + ">>"}));
    }

    CommandResult draw(const std::string& file, std::vector<std::string> more = {})
    {
        more.insert(more.begin(), {"draw", file, "--page", "1", "-o", out});
        return folder.run(more);
    }

    CommandFolder folder;
    std::string out = folder.path("out.png");
};

// The strips leave 14 by 13 pixels of the face free; the dark ones are below and at the right. Of the arrow, the two
// rows next to its base are black throughout.
TEST_F(DrawTest, TheButtonIsAtTheEndOfTheText)
{
    const struct {
        const char* label;
        std::string page, widget, tree;
        const char* size;
        const char* face;
        const char* dark;
        const char* arrow;
    } cases[] = {
        {"upright", "", "", "", "200x100", "102,24-115,36", "101,23-116,37", "107,28-110,29"},
        {"crop box inherited", "", "", "/CropBox[10 20 150 300]", "140x80", "92,24-105,36", "91,23-106,37",
         "97,28-100,29"},
        {"turned page", "/Rotate 90", "", "", "100x200", "63,102-75,115", "62,101-76,116", "70,107-71,110"},
        {"upside down", "/Rotate 180", "", "", "200x100", "84,63-97,75", "83,62-98,76", "89,70-92,71"},
        {"turned back", "", "", "/Rotate -90", "100x200", "24,84-36,97", "23,83-37,98", "28,89-29,92"},
        {"upright again", "/Rotate 90", "/MK<</R 90>>", "", "100x200", "62,24-75,116", "61,23-76,117", "67,68-70,69"},
        {"hidden", "", "/F 2", "", "200x100", "none", "none", "none"},
        {"not for the screen", "", "/F 36", "", "200x100", "none", "none", "none"},
        {"read-only", "", "/Ff 131073", "", "200x100", "none", "none", "none"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const CommandResult result = draw(form(c.page, c.widget, c.tree));
        ASSERT_EQ(result.exit, 0) << result.err;
        const Picture picture(out);
        EXPECT_EQ(std::to_string(picture.width) + "x" + std::to_string(picture.height), c.size);
        EXPECT_EQ(picture.extent(FACE), c.face);
        EXPECT_EQ(picture.extent(DARK), c.dark);
        EXPECT_EQ(picture.extent(BLACK), c.arrow);
    }
}

TEST_F(DrawTest, APagePictureStaysUnderTheButtons)
{
    const std::string page = folder.path("page.png");
    ASSERT_EQ(draw(form("", "/Rect[20 10 120 30]")).exit, 0);
    std::filesystem::rename(out, page);
    ASSERT_EQ(draw(form(""), {"--over", page}).exit, 0);
    EXPECT_EQ(Picture(out).extent(FACE), "102,24-115,86");
    EXPECT_EQ(Picture(out).extent(BLACK), "107,28-110,79");
    EXPECT_EQ(Picture(out).extent(0), "0,0-199,99");
}

TEST_F(DrawTest, TheSampleHasTwoButtons)
{
    const std::string file = std::string(FORMWORK_SAMPLES_DIR) + "/kinds.pdf";
    ASSERT_EQ(folder.run({"draw", file, "--page", "2", "-o", out}).exit, 0);
    EXPECT_EQ(Picture(out).extent(FACE), "422,384-435,420");
    ASSERT_EQ(folder.run({"draw", file, "--page", "1", "-o", out}).exit, 0);
    EXPECT_EQ(Picture(out).extent(FACE), "none");
}

TEST_F(DrawTest, SaysWhatIsWrongAndWritesNothing)
{
    const std::string file = form("");
    ASSERT_EQ(draw(file).exit, 0);
    const std::string png = read_text_file(out);
    std::filesystem::remove(out);
    const std::string page = folder.write("page.png", png);
    const std::string cut = folder.write("cut.png", png.substr(0, png.size() / 2));
    const std::string text = folder.write("text.png", "no PNG");
    const std::string missing = folder.path("missing.png");
    const struct {
        std::vector<std::string> arguments;
        int exit;
        std::string error;
    } cases[] = {
        {{"--page", "2"}, 1, file + ": there is no page 2: the document has 1 page"},
        {{"--page", "0"}, 2, "\"0\" is no page number: pages are counted from 1"},
        {{"--page", "1", "--scale", "nan"}, 2, "\"nan\" is no scale: give a number from 0.001 to 1000, such as 2.5"},
        {{"--page", "1", "--scale", "1e3"},
         1,
         file + ": the picture would be 200000 by 100000 pixels large, which is not supported"},
        {{"--page", "1", "--over", page, "--scale", "2"},
         1,
         page + ": the picture is 200 by 100 pixels large, but the page at this scale is 400 by 200 pixels"},
        {{"--page", "1", "--over", cut}, 1, cut + ": the file can't be read as a PNG picture"},
        {{"--page", "1", "--over", text}, 1, text + ": the file can't be read as a PNG"},
        {{"--page", "1", "--over", missing}, 1, missing + ": "},
        {{"--page", "1", "-o", file}, 2, "\"" + file + "\" is an input, which is never written to"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.error);
        std::vector<std::string> arguments = {"draw", file, "-o", out};
        arguments.resize(c.arguments.back() == file ? 2 : 4);
        arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
        const CommandResult result = folder.run(arguments);
        EXPECT_EQ(result.exit, c.exit);
        EXPECT_EQ(result.err.find("formwork: " + c.error), 0u) << result.err;
        EXPECT_FALSE(std::filesystem::exists(out));
    }
}

}  // namespace
