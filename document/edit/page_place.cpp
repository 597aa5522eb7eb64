#include "document/edit/page_place.h"

#include "document/edit/new_object.h"
#include "document/edit/page_annots.h"
#include "document/lookup/page_map.h"

namespace {

bool holds(const PDF_BOX& box, const PDF_RECT& rect)
{
    constexpr double SLACK = PDF_RECT::SMALLEST;
    return rect.x >= box.x0 - SLACK && rect.y >= box.y0 - SLACK && rect.x + rect.width <= box.x1 + SLACK &&
           rect.y + rect.height <= box.y1 + SLACK;
}

}  // namespace

void check_place(EDIT_TARGET& target, const PDF_PLACE& place, CPDFRefusals& refusals)
{
    const CPDFPageMap& pages = target.pages;
    const bool there = place.page >= 1 && place.page <= pages.page_count() && pages.page_ref(place.page).num;
    if (!there)
        refusals.add("there is no page " + std::to_string(place.page) + ": the document has " +
                     std::to_string(pages.page_count()));
    const PDF_RECT& rect = place.rect;
    const PDF_BOX box = there ? target.boxes.of(target.xref, pages.page_ref(place.page)).crop : PDF_BOX();
    const std::string shown = "the rectangle " + number_syntax(rect.x) + "," + number_syntax(rect.y) + "," +
                              number_syntax(rect.width) + "," + number_syntax(rect.height);
    if (rect.width < PDF_RECT::SMALLEST || rect.height < PDF_RECT::SMALLEST)
        refusals.add(shown + " is empty");
    else if (there && !holds(box, rect))
        refusals.add(shown + " is not on page " + std::to_string(place.page) + ", which goes from " +
                     number_syntax(box.x0) + "," + number_syntax(box.y0) + " to " + number_syntax(box.x1) + "," +
                     number_syntax(box.y1));
}

std::string rect_syntax(const PDF_RECT& rect)
{
    return "[" + number_syntax(rect.x) + " " + number_syntax(rect.y) + " " + number_syntax(rect.x + rect.width) + " " +
           number_syntax(rect.y + rect.height) + "]";
}

// Pages are turned clockwise, widgets the other way.
int32_t upright_turn(EDIT_TARGET& target, int32_t page)
{
    return target.boxes.of(target.xref, target.pages.page_ref(page)).rotate;
}

PDF_CHANGE_RESULT list_on_pages(EDIT_TARGET& target, const PDF_PAGE_WIDGETS& widgets)
{
    CPDFAnnotationLists lists(target.xref, target.pages);
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    for (const auto& [page, refs] : widgets) {
        result = both(result, lists.make_own(page));
        if (result == PDF_CHANGE_RESULT::STORED)
            result = add_annotations(target.xref, target.pages.page_ref(page), refs);
        if (result == PDF_CHANGE_RESULT::STORED)
            target.pages.add_annotations(refs, page);
    }
    return result;
}

PDF_CHANGE_RESULT take_off_pages(EDIT_TARGET& target, const std::unordered_set<uint32_t>& gone)
{
    std::map<int32_t, std::unordered_set<uint32_t>> by_page;
    for (const uint32_t num : gone) {
        for (const PDF_PAGE_ANNOTATION& at : target.pages.annotations_of(num))
            by_page[at.page].insert(num);
    }
    target.pages.remove_annotations(gone);
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    for (const auto& [page, annotations] : by_page)
        result = both(result, remove_annotations(target.xref, target.pages.page_ref(page), annotations));
    return result;
}
