// Actions: what a viewer does when something happens to a field, a page or the document (ISO 32000-2, 12.6).
#pragma once

#include "core/growable.h"
#include "core/object.h"

// The types in the order of the standard's table 201, which stays; 0 is a type that is not in it.
enum PDF_ACTION_TYPE : int32_t {
    ACTION_UNKNOWN = 0,
    ACTION_GOTO = 1,
    ACTION_GOTO_REMOTE = 2,
    ACTION_GOTO_EMBEDDED = 3,
    ACTION_LAUNCH = 4,
    ACTION_THREAD = 5,
    ACTION_URI = 6,
    ACTION_SOUND = 7,
    ACTION_MOVIE = 8,
    ACTION_HIDE = 9,
    ACTION_NAMED = 10,
    ACTION_SUBMIT_FORM = 11,
    ACTION_RESET_FORM = 12,
    ACTION_IMPORT_DATA = 13,
    ACTION_JAVASCRIPT = 14,
    ACTION_SET_OCG_STATE = 15,
    ACTION_RENDITION = 16,
    ACTION_TRANSITION = 17,
    ACTION_GOTO_3D_VIEW = 18,
    ACTION_RICH_MEDIA = 19,
    ACTION_GOTO_DOCUMENT_PART = 20,
};

// One action with those that follow it. It holds copies, so the document may change.
class CPDFAction : public VXNew<CPDFAction> {
public:
    CPDFAction();
    virtual ~CPDFAction();
    CPDFAction(const CPDFAction&) = delete;
    CPDFAction& operator=(const CPDFAction&) = delete;

    // A new action from an action entry, the dictionary or a reference to it; the caller owns it. Null when `obj` is
    // null or leads to no dictionary, and when memory runs out. `xref` is not null.
    static CPDFAction* parser_act(CPDFXRefTable* xref, const CPDFObj* obj);

    // The type as "S" spells it, such as JavaScript; empty for ACTION_UNKNOWN.
    const char* type_name() const;

    int32_t m_type;       // PDF_ACTION_TYPE
    int32_t m_flags;      // "Flags" of a submit or reset action
    PDF_String m_script;  // owned; the text string of a script, whether it was given as a string or as a stream
    // Owned; what the action is about: the address of a URI action, the file of a submit, import, launch or remote action,
    // the name of a named one; empty where there is none.
    PDF_String m_target;
    CPDFObj m_fields;  // "Fields" of a submit or reset action, "T" of a hide action; null when absent
    CPDFGrowable<CPDFAction*, 4>
        m_next;  // owned, with the actions; those of "Next", in order; at most LIMIT_ACTIONS in all
};
