// A resource dictionary (ISO 32000-2, 7.8.3).
#pragma once

#include <string>
#include <vector>

#include "core/object.h"

class CPDFXRefTable;

// One named resource: its category ("Font", "XObject", ...), its name and where its object is.
struct PDF_RESOURCE {
    std::string category;
    std::string name;
    PDF_REF ref;            // number 0 when the resource is held directly
    std::string base_font;  // "BaseFont" of a font, empty for other resources
};

// Binds to a resource dictionary and lists what it names. It copies what it keeps, so the dictionary may change; a
// changed dictionary is seen after unload_resource and load_resource.
class CPDFResources {
public:
    CPDFResources() = default;
    virtual ~CPDFResources();
    CPDFResources(const CPDFResources&) = delete;
    CPDFResources& operator=(const CPDFResources&) = delete;

    // Attaches the dictionary that `entry` is or refers to; null or another kind attaches nothing.
    virtual void bind(CPDFXRefTable* xref, const CPDFObj* entry);

    // Detaches the dictionary, so that another can be bound.
    virtual void unbind();

    // Loads the resources that the bound dictionary names. `flags` is 0.
    void load_resource(CPDFXRefTable* xref, int flags);

    // Releases what load_resource loaded.
    void unload_resource();

    // Adds the font dictionary `font` under `name`, or puts it in place of the one of that name, where the bound
    // dictionary is an object of its own. Returns 1, or 0 with nothing changed when it isn't, can't be fetched, or
    // memory runs out.
    int append_font(CPDFXRefTable* xref, const char* name, const PDF_REF& font);

    // The loaded resource, or null. Borrowed: ends with unload_resource.
    const PDF_RESOURCE* find(const char* category, const char* name) const;
    const std::vector<PDF_RESOURCE>& resources() const { return m_resources; }

    PDF_REF m_ref = {0, 0};  // the bound dictionary; number 0 when it is no object of its own

private:
    CPDFObj m_dict;  // the bound entry, when it is a dictionary held directly
    std::vector<PDF_RESOURCE> m_resources;
};
