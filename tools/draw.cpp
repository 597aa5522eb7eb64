#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <memory>
#include <unordered_map>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "document/document.h"
#include "document/lookup/field_text.h"
#include "document/lookup/page_box.h"
#include "document/lookup/page_map.h"
#include "engine/annot_widget.h"
#include "file/file_bytes.h"
#include "forms/field_walk.h"
#include "render/cairo/cairo_picture.h"
#include "render/cairo/cairo_render.h"
#include "tools/save_output.h"
#include "tools/verb.h"

namespace {

// Annotation flags (ISO 32000-2, table 167).
constexpr int32_t ANNOTATION_HIDDEN = 0x2;
constexpr int32_t ANNOTATION_NO_VIEW = 0x20;

constexpr const char* WIDGET_KEYS[] = {"Rect", "F", "MK"};
constexpr CPDFKeySet WIDGET_KEY_SET(WIDGET_KEYS);

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

// In pixels.
struct PICTURE_SIZE {
    double width, height;

    std::string text() const
    {
        return std::to_string(std::llround(width)) + " by " + std::to_string(std::llround(height)) + " pixels";
    }
};

// How points of the page become pixels of the picture, which are counted from its upper left corner.
class PageView {
public:
    PageView(const PDF_PAGE_BOX& page, double scale) : m_page(page), m_scale(scale) {}

    double scale() const { return m_scale; }
    int32_t rotate() const { return m_page.rotate; }
    PICTURE_SIZE size() const { return size(-ROUNDING); }

    // Whether a picture of the page may have this size: what rounding makes of a whole number of pixels is either.
    bool may_have(const PICTURE_SIZE& picture) const
    {
        const PICTURE_SIZE least = size(-ROUNDING);
        const PICTURE_SIZE most = size(ROUNDING);
        return (picture.width == least.width || picture.width == most.width) &&
               (picture.height == least.height || picture.height == most.height);
    }

    // Where a rectangle of the page lies in the picture.
    PDF_BOX place(const PDF_BOX& rect) const
    {
        const PDF_BOX& crop = m_page.crop;
        const PDF_BOX left = {rect.x0 - crop.x0, rect.y0 - crop.y0, rect.x1 - crop.x0, rect.y1 - crop.y0};
        const PDF_BOX right = {crop.x1 - rect.x1, crop.y1 - rect.y1, crop.x1 - rect.x0, crop.y1 - rect.y0};
        switch (m_page.rotate) {
        case 90:
            return scaled({left.y0, left.x0, left.y1, left.x1});
        case 180:
            return scaled({right.x0, left.y0, right.x1, left.y1});
        case 270:
            return scaled({right.y0, right.x0, right.y1, right.x1});
        default:
            return scaled({left.x0, right.y0, left.x1, right.y1});
        }
    }

private:
    static constexpr double ROUNDING = 1e-4;

    // A page takes every pixel that it reaches into.
    PICTURE_SIZE size(double rounding) const
    {
        const double width = std::max(1.0, std::ceil(m_page.crop.width() * m_scale + rounding));
        const double height = std::max(1.0, std::ceil(m_page.crop.height() * m_scale + rounding));
        return m_page.rotate % 180 == 0 ? PICTURE_SIZE{width, height} : PICTURE_SIZE{height, width};
    }

    PDF_BOX scaled(const PDF_BOX& box) const
    {
        return {box.x0 * m_scale, box.y0 * m_scale, box.x1 * m_scale, box.y1 * m_scale};
    }

    PDF_PAGE_BOX m_page;
    double m_scale;
};

VXFIX to_fix(double value)
{
    constexpr double MOST = 1 << 30;
    return std::llround(std::clamp(value, -MOST, MOST) * static_cast<double>(VXFIX_ONE));
}

// Maps a frame that is turned clockwise by `degrees` to where it lies in the picture; its origin is the corner of `box`
// that is its upper left one.
cairo_matrix_t frame_matrix(const PDF_BOX& box, int32_t degrees)
{
    switch (degrees) {
    case 90:
        return {0, 1, -1, 0, box.x1, box.y0};
    case 180:
        return {-1, 0, 0, -1, box.x1, box.y1};
    case 270:
        return {0, -1, 1, 0, box.x0, box.y1};
    default:
        return {1, 0, 0, 1, box.x0, box.y0};
    }
}

// Paints `field` in the frame of its widget: there its text runs from left to right whatever turns page and widget
// have. One device unit is one point, so that the button keeps its share of the field at every scale.
void paint_widget(const CPDFPicture& picture, const PageView& view, CPDFField& field, const PDF_BOX& rect,
                  int32_t widget_rotation)
{
    const PDF_BOX box = view.place(rect);
    const int32_t degrees = (view.rotate() - widget_rotation + 360) % 360;
    const bool is_on_side = degrees % 180 != 0;
    const VXFIX width = to_fix((is_on_side ? box.height() : box.width()) / view.scale());
    const VXFIX height = to_fix((is_on_side ? box.width() : box.height()) / view.scale());
    const cairo_matrix_t to_picture = frame_matrix(box, degrees);
    cairo_set_matrix(picture.context(), &to_picture);
    cairo_scale(picture.context(), view.scale(), view.scale());
    CPDFCairoRender renderer(picture.context());
    field.render(&renderer, {VXFIX_ONE, 0, 0, -VXFIX_ONE, 0, height}, {0, 0, width, height});
}

std::string_view text_of(const CPDFFileBytes& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// The choice fields by the object numbers of their widgets.
std::unordered_map<uint32_t, CPDFField*> choice_widgets(CPDFDocument& document)
{
    std::unordered_map<uint32_t, CPDFField*> fields;
    for_each_field(document.form(), [&](CPDFField& field) {
        if (field.m_type != FIELD_CHOICE)
            return;
        for (const CPDFAnnotWidget* widget : document.widgets_of(field))
            fields.emplace(widget->m_ref.num, &field);
    });
    return fields;
}

void paint_widgets(CPDFDocument& document, const CPDFDictionary& page, const PageView& view, const CPDFPicture& picture)
{
    CPDFXRefTable& xref = document.xref();
    auto fields = choice_widgets(document);
    CPDFObj scratch;
    const CPDFArray* annotations = view_obj(&xref, page.get_item("Annots"), scratch)->array();
    for (int32_t i = 0; annotations && i < annotations->count; ++i) {
        const CPDFObj& entry = annotations->items[i];
        const auto found = entry.type == PDF_OBJ_REF ? fields.find(entry.ref.num) : fields.end();
        if (found == fields.end())
            continue;
        CPDFObj own;
        xref.get_entity(own, entry.ref, &WIDGET_KEY_SET);
        const CPDFDictionary* widget = own.dictionary();
        PDF_BOX rect;
        if (!widget || !read_box(xref, widget->get_item("Rect"), rect) ||
            resolve_integer(&xref, widget->get_item("F")) & (ANNOTATION_HIDDEN | ANNOTATION_NO_VIEW))
            continue;
        CPDFObj held;
        const CPDFDictionary* look = view_obj(&xref, widget->get_item("MK"), held)->dictionary();
        paint_widget(picture, view, *found->second, rect, read_rotation(xref, look ? look->get_item("R") : nullptr));
        fields.erase(found);  // a page may list a widget many times
    }
}

// Reads the picture to draw over. Returns what is wrong with it; empty when nothing is.
std::string read_page_picture(const std::string& path, const PageView& view, CPDFFileBytes& bytes, PICTURE_SIZE& size)
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
bool start_picture(const DRAW_ARGUMENTS& arguments, const PageView& view, CPDFPicture& picture)
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

// Reads the page's dictionary, or says what is wrong with it; empty when nothing is.
std::string find_page(CPDFDocument& document, int32_t number, CPDFObj& page)
{
    CPDFPageMap pages;
    pages.load(document.xref(), document.root());
    const std::string name = "page " + std::to_string(number);
    if (number > pages.page_count())
        return "there is no " + name + ": the document has " + std::to_string(pages.page_count()) +
               (pages.page_count() == 1 ? " page" : " pages");
    document.xref().get_entity(page, pages.page_ref(number));
    return page.dictionary() ? "" : name + " is no object of its own, which is not supported";
}

int draw_page(const DRAW_ARGUMENTS& arguments)
{
    CPDFDocument document;
    if (!open_document(document, arguments.input))
        return COMMAND_REFUSED;
    CPDFObj page;
    if (const std::string wrong = find_page(document, arguments.page_number, page); !wrong.empty()) {
        complain(arguments.input.path.text, wrong);
        return COMMAND_REFUSED;
    }
    const PageView view(read_page_box(document.xref(), *page.dictionary()), arguments.pixels_per_point);
    CPDFPicture picture;
    if (!start_picture(arguments, view, picture))
        return COMMAND_REFUSED;
    paint_widgets(document, *page.dictionary(), view, picture);
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
    CLI::App& verb =
        *app.add_subcommand("draw", "Draws the drop-down buttons of a page's combo boxes as a PNG picture");
    add_input(verb, arguments->input);
    verb.add_option("--page", arguments->page, "number of the page, from 1")->required()->option_text("N");
    verb.add_option("--scale", arguments->scale, "pixels per point (1, which is 72 dpi)")->option_text("S");
    verb.add_option("--over", arguments->over, "draw over this picture of the page")->option_text("PAGE.png");
    verb.add_option("-o,--output", arguments->output, "where to save; - is standard output")
        ->required()
        ->option_text("OUT.png");
    verb.footer(
        "The picture shows the crop box, turned as the page is, and is transparent apart from the buttons. A picture for --over\n"
        "has the same size, as `pdftoppm -png -cropbox -r 72` makes it for a scale of 1. Buttons are 16 points wide; a\n"
        "read-only or hidden combo box has none.");
    verb.callback([arguments, &action] { action = [arguments] { return draw(*arguments); }; });
}
