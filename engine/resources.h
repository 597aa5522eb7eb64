// A resource dictionary (ISO 32000-2, 7.8.3).
#pragma once

#include "core/alloc.h"
#include "core/object.h"

class CPDFXRefTable;

// Binds to a resource dictionary and keeps what it names: a copy, so the dictionary may change; a changed one is seen after
// unload_resource and load_resource.
class CPDFResources : public VXNew<CPDFResources> {
public:
    CPDFResources() = default;
    virtual ~CPDFResources();
    CPDFResources(const CPDFResources&) = delete;
    CPDFResources& operator=(const CPDFResources&) = delete;

    // Attaches the dictionary that `entry` is or refers to; null or another kind attaches nothing.
    virtual void bind(CPDFXRefTable* xref, const CPDFObj* entry);

    // Detaches the dictionary, so that another can be bound.
    virtual void unbind();

    // Loads the resources that the bound dictionary names; none when memory runs out. `flags` is 0.
    void load_resource(CPDFXRefTable* xref, int flags);

    // Releases what load_resource loaded.
    void unload_resource();

    // Adds the font dictionary `font` under `name`, or puts it in place of the one of that name, where the bound
    // dictionary is an object of its own. Returns 1, or 0 with nothing changed when it isn't, can't be fetched, or
    // memory runs out.
    int append_font(CPDFXRefTable* xref, const char* name, const PDF_REF& font);

    // The resource of a category such as Font, as the dictionary gives it: a reference or the object itself; null when
    // there is none. Borrowed: ends with unload_resource and append_font.
    const CPDFObj* find(const char* category, const char* name) const;

    PDF_REF m_ref = {0, 0};  // the bound dictionary; number 0 when it is no object of its own

private:
    void note_font(const char* name, const CPDFObj& font);

    CPDFObj m_dict;       // the bound entry, when it is a dictionary held directly
    CPDFObj m_resources;  // what is loaded: a dictionary of the categories, none of them a reference; null for nothing
};
