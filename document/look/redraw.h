// Drawing the widgets of fields as their values are now.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/limits.h"
#include "core/object.h"
#include "file/status.h"

class CPDFDictionary;
class CPDFField;
class CPDFFormCompute;
class CPDFFormFonts;
class CPDFOptionIndex;
class CPDFWidgetReader;
struct WIDGET_DESCRIPTION;
struct WIDGET_PICTURE;

// A widget that is to be drawn.
struct PDF_DRAWN_WIDGET {
    PDF_REF ref;
    std::string on_state;  // of a check box or radio button: the name of its on state; empty for other kinds
};

// Gives widgets the appearance streams that show their fields (ISO 32000-2, 12.7.4.3). Fonts are loaded once, so one of
// these serves a document as long as it is open.
class CPDFRedraw {
public:
    // The store outlives this; `form` is the form dictionary, null for none, and is copied from.
    CPDFRedraw(CPDFXRefTable& xref, const CPDFDictionary* form);
    ~CPDFRedraw();
    CPDFRedraw(const CPDFRedraw&) = delete;
    CPDFRedraw& operator=(const CPDFRedraw&) = delete;

    // What formats texts from now on, borrowed; null, as at first, leaves them as they are.
    void format_with(CPDFFormCompute* compute) { m_compute = compute; }

    // Draws the widgets of `field`, which has its value itself. Buttons get what they lack for their states, and keep what
    // they have. Returns how many of `widgets` could be drawn; those without a rectangle can't. What can't be shown is noted.
    size_t draw(const CPDFField& field, const std::vector<PDF_DRAWN_WIDGET>& widgets);

    // The same for the widgets that have no appearance at all.
    size_t draw_missing(const CPDFField& field, const std::vector<PDF_DRAWN_WIDGET>& widgets);

    // The same for widgets that are to look anew whatever they show so far: buttons get all their states again, and
    // signature fields without a signature their frame.
    size_t draw_anew(const CPDFField& field, const std::vector<PDF_DRAWN_WIDGET>& widgets);

    // Embeds fonts of this machine that were used, and adds to `notes` a sentence for each field whose value can't be shown
    // whole. To be called before the document is saved. Fails when memory ran out since the last call.
    CPDFStatus finish(std::vector<std::string>& notes);

    // Whether widgets were left as they are since the last finish(), for more than LIMIT_DRAWN_CHARACTERS.
    bool left_some() const { return m_characters > LIMIT_DRAWN_CHARACTERS; }

    // To be called when a field has got other options.
    void options_changed();

    // To be called when all changes of the document were dropped.
    void changes_dropped();

private:
    struct SHARED_PICTURE;
    enum class WIDGETS { ALL, WITHOUT_APPEARANCE, ANEW };

    size_t draw(const CPDFField& field, const std::vector<PDF_DRAWN_WIDGET>& widgets, WIDGETS which);
    void draw_one(const CPDFField& field, const PDF_REF& ref, WIDGET_DESCRIPTION& widget);
    void draw_states(const CPDFField& field, const PDF_DRAWN_WIDGET& at, WIDGET_DESCRIPTION& widget);
    PDF_REF stored(WIDGET_PICTURE picture);
    void store(const char* key, const PDF_REF& ref, const CPDFObj& value);
    bool spend_characters(const WIDGET_DESCRIPTION& widget);
    void note_missing(const CPDFField& field, const std::u32string& missing);

    CPDFXRefTable& m_xref;  // borrowed from the document
    std::unique_ptr<CPDFFormFonts> m_fonts;
    std::unique_ptr<CPDFWidgetReader> m_reader;
    std::unique_ptr<CPDFOptionIndex> m_options;
    std::vector<SHARED_PICTURE> m_pictures;  // of the field that is drawn
    std::vector<std::string> m_notes;
    CPDFFormCompute* m_compute = nullptr;  // borrowed
    size_t m_characters = 0;               // of the values drawn since the last finish()
    bool m_failed = false;
};
