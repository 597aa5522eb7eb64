// Making what the widgets of a form show a part of its pages.
#pragma once

#include "document/edit/edit.h"

// Draws the appearance of every widget that is seen into its page, in the order in which the page lists them, takes all
// widgets off the pages and the form off the document (ISO 32000-2, 12.5.5). Widgets that are hidden or not viewed, and
// those without an appearance, are only taken off; other annotations stay. Hands out in `gone` the widgets that are objects of
// their own. When memory runs out, or a page can't be changed, a part may be done.
CPDFStatus flatten_form(EDIT_TARGET& target, std::vector<PDF_REF>& gone);
