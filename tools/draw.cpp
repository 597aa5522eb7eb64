#include <CLI/CLI.hpp>
#include <charconv>
#include <memory>

#include "core/limits.h"
#include "document/document.h"
#include "document/lookup/field_text.h"
#include "file/file_bytes.h"
#include "render/cairo/cairo_picture.h"
#include "render/page/draw_page.h"
#include "tools/save_output.h"
#include "tools/verb.h"

namespace {

constexpr double LEAST_SCALE = 0.001;
constexpr double MOST_SCALE = 1000;

constexpr const char* NO_PNG = "the file can't be read as a PNG picture";

struct DRAW_ARGUMENTS {
    COMMAND_INPUT input;
    COMMAND_WORD page;
    COMMAND_WORD scale{"1"};
    COMMAND_WORD over;
    COMMAND_WORD output;
    int32_t page_number = 0;
    double pixels_per_point = 1;
};

std::string_view text_of(const CPDFFileBytes& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Reads the picture to draw over. Returns what is wrong with it; empty when nothing is.
std::string read_page_picture(const std::string& path, const CPDFPageView& view, CPDFFileBytes& bytes,
                              PICTURE_SIZE& size)
{
    const CPDFStatus status = bytes.open(path);
    if (!status.ok())
        return status.text;
    uint32_t width = 0;
    uint32_t height = 0;
    if (!CPDFPicture::png_size(text_of(bytes), width, height))
        return NO_PNG;
    size = {static_cast<double>(width), static_cast<double>(height)};
    if (view.may_have(size))
        return {};
    return "the picture is " + size.text() + " large, but the page at this scale is " + view.size().text();
}

bool is_too_large(const PICTURE_SIZE& size)
{
    return std::max(size.width, size.height) > LIMIT_PICTURE_SIDE || size.width * size.height > LIMIT_PICTURE_PIXELS;
}

bool refuse(const std::string& file, const std::string& sentence)
{
    complain(file, sentence);
    return false;
}

// Makes the picture that the buttons are painted on. False after a complaint.
bool start_picture(const DRAW_ARGUMENTS& arguments, const CPDFPageView& view, CPDFPicture& picture)
{
    const std::string& file = arguments.input.path.text;
    const std::string& over = arguments.over.text;
    PICTURE_SIZE size = view.size();
    if (is_too_large(size))
        return refuse(file, "the picture would be " + size.text() + " large, which is not supported");
    CPDFFileBytes page;
    if (!over.empty()) {
        const std::string wrong = read_page_picture(over, view, page, size);
        if (!wrong.empty())
            return refuse(over, wrong);
    }
    if (!picture.create(static_cast<int>(size.width), static_cast<int>(size.height)))
        return refuse(file, "there is not enough memory for a picture of " + size.text());
    return over.empty() || picture.paint_png(text_of(page)) || refuse(over, NO_PNG);
}

int write_picture(const DRAW_ARGUMENTS& arguments, const CPDFPicture& picture)
{
    std::string png;
    const CPDFStatus status =
        picture.append_png(png) ? save_text(png, arguments.output.text)
                                : CPDFStatus::failed(PDF_CODE::NO_MEMORY, "there is not enough memory for the picture");
    return end_with(status, arguments.input.path.text);
}

int draw_page(const DRAW_ARGUMENTS& arguments)
{
    const std::string& file = arguments.input.path.text;
    CPDFDocument document;
    if (!open_document(document, arguments.input))
        return COMMAND_REFUSED;
    PDF_DRAWN_PAGE page = {};
    CPDFStatus status;
    do
        status = find_page(document, arguments.page_number, page);
    while (mend_document(document, arguments.input));
    if (!status.ok())
        return end_with(status, file);
    const CPDFPageView view(page.box, arguments.pixels_per_point);
    CPDFPicture picture;
    if (!start_picture(arguments, view, picture))
        return COMMAND_REFUSED;
    draw_buttons(document, page.ref, view, picture);
    return write_picture(arguments, picture);
}

// Reads a whole word as a number.
template <typename Number>
bool read_number(const std::string& text, Number& number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

// What is wrong with the command line; empty when nothing is.
std::string wrong_usage(DRAW_ARGUMENTS& arguments)
{
    if (!read_number(arguments.page.text, arguments.page_number) || arguments.page_number < 1)
        return in_quotes(arguments.page.text) + " is no page number: pages are counted from 1";
    double& scale = arguments.pixels_per_point;
    if (!read_number(arguments.scale.text, scale) || !(scale >= LEAST_SCALE && scale <= MOST_SCALE))
        return in_quotes(arguments.scale.text) + " is no scale: give a number from 0.001 to 1000, such as 2.5";
    for (const COMMAND_WORD& input : {arguments.input.path, arguments.over}) {
        if (is_same_file(arguments.output.text, input.text))
            return in_quotes(arguments.output.text) + " is an input, which is never written to";
    }
    return {};
}

int draw(DRAW_ARGUMENTS& arguments)
{
    if (const std::string wrong = wrong_usage(arguments); !wrong.empty())
        return complain_usage(wrong);
    return draw_page(arguments);
}

}  // namespace

void add_draw_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<DRAW_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("draw", "Draws the drop-down buttons of a page's combo boxes as a PNG");
    add_input(verb, arguments->input);
    verb.add_option("--page", arguments->page, "number of the page, from 1")->required()->option_text("N");
    verb.add_option("--scale", arguments->scale, "pixels per point (1, which is 72 dpi)")->option_text("S");
    verb.add_option("--over", arguments->over, "draw over this picture of the page")->option_text("PAGE.png");
    verb.add_option("-o,--output", arguments->output, "where to save; - is standard output")
        ->required()
        ->option_text("OUT.png");
    verb.footer("The picture shows the crop box, turned as the page is, and is transparent apart\n"
                "from the buttons. A picture for --over has the same size, as\n"
                "`pdftoppm -png -cropbox -r 72` makes it for a scale of 1. Buttons are 16 points\n"
                "wide; a read-only or hidden combo box has none.");
    verb.callback([arguments, &action] { action = [arguments] { return draw(*arguments); }; });
}
