#include "engine/action.h"

#include <algorithm>
#include <iterator>
#include <memory>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/stream.h"
#include "core/xref_table.h"

namespace {

// By PDF_ACTION_TYPE.
constexpr const char* TYPE_NAMES[] = {
    "",           "GoTo",        "GoToR",     "GoToE", "Launch",     "Thread",           "URI",
    "Sound",      "Movie",       "Hide",      "Named", "SubmitForm", "ResetForm",        "ImportData",
    "JavaScript", "SetOCGState", "Rendition", "Trans", "GoTo3DView", "RichMediaExecute", "GoToDp",
};
static_assert(std::size(TYPE_NAMES) == ACTION_GOTO_DOCUMENT_PART + 1);

class ActionParser {
public:
    explicit ActionParser(CPDFXRefTable& xref) : m_xref(xref) {}

    // Null for what is no dictionary, comes back to itself or is beyond the limits.
    std::unique_ptr<CPDFAction> parse(const CPDFObj& entry)
    {
        if (m_count >= LIMIT_ACTIONS || m_above.size() >= LIMIT_ACTION_DEPTH)
            return nullptr;
        const uint32_t num = entry.type == PDF_OBJ_REF ? entry.ref.num : 0;
        if (num && std::find(m_above.begin(), m_above.end(), num) != m_above.end())
            return nullptr;
        const CPDFEntryView value(&m_xref, &entry);
        const CPDFDictionary* dict = value->dictionary();
        std::unique_ptr<CPDFAction> action(dict ? new CPDFAction : nullptr);
        if (!action || !m_above.push(num))
            return nullptr;
        ++m_count;
        read(*action, *dict);
        read_next(*action, dict->get_item("Next"));
        m_above.pop();
        return action;
    }

private:
    void read(CPDFAction& action, const CPDFDictionary& dict)
    {
        action.m_type = type_of(dict);
        switch (action.m_type) {
        case ACTION_JAVASCRIPT:
        case ACTION_RENDITION:
            read_script(action.m_script, dict.get_item("JS"));
            break;
        case ACTION_URI:
            m_xref.read_obj_string(action.m_target, dict.get_item("URI"));
            break;
        case ACTION_NAMED:
            m_xref.read_obj_string(action.m_target, dict.get_item("N"));
            break;
        case ACTION_HIDE:
            resolve_obj(&m_xref, dict.get_item("T"), action.m_fields);
            break;
        default:
            read_file(action.m_target, dict.get_item("F"));
            action.m_flags = resolve_integer(&m_xref, dict.get_item("Flags"));
            resolve_obj(&m_xref, dict.get_item("Fields"), action.m_fields);
        }
    }

    int32_t type_of(const CPDFDictionary& dict)
    {
        const CPDFEntryView name(&m_xref, dict.get_item("S"));
        for (int32_t type = ACTION_GOTO; type <= ACTION_GOTO_DOCUMENT_PART; ++type) {
            if (name->is_name(TYPE_NAMES[type]))
                return type;
        }
        return ACTION_UNKNOWN;
    }

    void read_script(PDF_String& out, const CPDFObj* entry)
    {
        const CPDFEntryView script(&m_xref, entry);
        if (script->type != PDF_OBJ_STREAM) {
            m_xref.read_obj_string(out, &*script);
            return;
        }
        const std::unique_ptr<CPDFStream> reader(m_xref.make_stream(script->stream));
        int len = 0;
        unsigned char* text = reader ? reader->buffer_load(LIMIT_SCRIPT, len) : nullptr;
        if (text)
            out = {len, text};
    }

    // The name of a file: a string, or a dictionary that prefers the Unicode name (ISO 32000-2, 7.11.3).
    void read_file(PDF_String& out, const CPDFObj* entry)
    {
        const CPDFEntryView file(&m_xref, entry);
        if (const CPDFDictionary* dict = file->dictionary()) {
            const CPDFObj* name = dict->get_item("UF");
            m_xref.read_obj_string(out, name ? name : dict->get_item("F"));
        } else {
            m_xref.read_obj_string(out, &*file);
        }
    }

    void read_next(CPDFAction& action, const CPDFObj* entry)
    {
        if (!entry)
            return;
        const CPDFEntryView value(&m_xref, entry);
        const CPDFArray* several = value->array();
        const int32_t count = several ? several->count : 1;
        for (int32_t i = 0; i < count && m_count < LIMIT_ACTIONS; ++i) {
            std::unique_ptr<CPDFAction> next = parse(several ? several->items[i] : *entry);
            if (next && action.m_next.push(next.get()))
                static_cast<void>(next.release());
        }
    }

    CPDFXRefTable& m_xref;               // borrowed
    CPDFGrowable<uint32_t, 16> m_above;  // the objects of the actions that lead here, 0 for direct ones
    int m_count = 0;
};

}  // namespace

CPDFAction::CPDFAction() : m_type(ACTION_UNKNOWN), m_flags(0), m_script{0, nullptr}, m_target{0, nullptr} {}

CPDFAction::~CPDFAction()
{
    m_script.release();
    m_target.release();
    for (CPDFAction* next : m_next)
        delete next;
}

CPDFAction* CPDFAction::parser_act(CPDFXRefTable* xref, const CPDFObj* obj)
{
    if (!obj)
        return nullptr;
    const VXFailureCheck check;
    std::unique_ptr<CPDFAction> action = ActionParser(*xref).parse(*obj);
    return check.failed() ? nullptr : action.release();
}

const char* CPDFAction::type_name() const
{
    return TYPE_NAMES[m_type];
}
