#include "render/page/draw_page.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/document.h"
#include "document/lookup/page_map.h"
#include "engine/annot_widget.h"
#include "forms/field_walk.h"
#include "render/cairo/cairo_picture.h"
#include "render/cairo/cairo_render.h"

namespace {

// Annotation flags (ISO 32000-2, table 167).
constexpr int32_t ANNOTATION_HIDDEN = 0x2;
constexpr int32_t ANNOTATION_NO_VIEW = 0x20;

constexpr CPDFKeySet WIDGET_KEYS{"Rect", "F", "MK"};
constexpr CPDFKeySet PAGE_KEYS{"Annots"};

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
void paint_widget(const CPDFPicture& picture, const CPDFPageView& view, CPDFField& field, const PDF_BOX& rect,
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

void paint_annotation(CPDFXRefTable& xref, const PDF_REF& ref, CPDFField& field, const CPDFPageView& view,
                      const CPDFPicture& picture)
{
    CPDFObj own;
    xref.get_entity(own, ref, &WIDGET_KEYS);
    const CPDFDictionary* widget = own.dictionary();
    PDF_BOX rect;
    if (!widget || !read_box(xref, widget->get_item("Rect"), rect) ||
        resolve_integer(&xref, widget->get_item("F")) & (ANNOTATION_HIDDEN | ANNOTATION_NO_VIEW))
        return;
    const CPDFEntryView look(&xref, widget->get_item("MK"));
    const CPDFDictionary* turned = look->dictionary();
    paint_widget(picture, view, field, rect, read_rotation(xref, turned ? turned->get_item("R") : nullptr));
}

}  // namespace

CPDFStatus find_page(CPDFDocument& document, int32_t number, PDF_DRAWN_PAGE& page)
{
    CPDFPageMap pages;
    pages.load(document.xref(), document.root());
    const std::string name = "page " + std::to_string(number);
    const int32_t count = pages.page_count();
    if (number < 1 || number > count)
        return CPDFStatus::failed(PDF_CODE::NOT_FOUND, "there is no " + name + ": the document has " +
                                                          std::to_string(count) + (count == 1 ? " page" : " pages"));
    page.ref = pages.page_ref(number);
    if (page.ref.num == 0)
        return CPDFStatus::failed(PDF_CODE::NOT_FOUND, name + " is no object of its own, which is not supported");
    page.box = read_page_box(document.xref(), page.ref);
    return {};
}

void draw_buttons(CPDFDocument& document, const PDF_REF& page, const CPDFPageView& view, const CPDFPicture& picture)
{
    CPDFXRefTable& xref = document.xref();
    auto fields = choice_widgets(document);
    CPDFObj own;
    xref.get_entity(own, page, &PAGE_KEYS);
    const CPDFEntryView list(&xref, own.dictionary() ? own.dict->get_item("Annots") : nullptr);
    const CPDFArray* annotations = list->array();
    for (int32_t i = 0; annotations && i < annotations->count; ++i) {
        const CPDFObj& entry = annotations->items[i];
        const auto found = entry.type == PDF_OBJ_REF ? fields.find(entry.ref.num) : fields.end();
        if (found == fields.end())
            continue;
        paint_annotation(xref, entry.ref, *found->second, view, picture);
        fields.erase(found);  // a page may list a widget many times
    }
}
