// What signatures allow to be changed (ISO 32000-2, 12.8.2 and 12.7.5.5).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "file/status.h"

class CPDFAcroForm;
class CPDFDictionary;
class CPDFField;
class CPDFXRefTable;

// Whether a file of `size` bytes with the catalog `root` holds a signature, other than one that gave a viewer more rights
// (UR, UR3).
bool has_signature(const uint8_t* data, size_t size, CPDFXRefTable& xref, const CPDFDictionary& root);

// Reads the signatures of a document once: the permissions of a certifying signature (DocMDP), the fields that signatures
// lock (FieldMDP and "Lock"). Nothing is verified.
class CPDFSignatureGuard {
public:
    // For a document without a signature: nothing is refused.
    CPDFSignatureGuard() = default;

    // For a document that has_signature, with its form and catalog. Nothing is kept of them.
    CPDFSignatureGuard(CPDFXRefTable& xref, CPDFAcroForm& form, const CPDFDictionary& root);

    // Whether some field of the form is signed, or the document certified.
    bool is_signed() const { return m_signed; }

    // Whether a signature allows some changes only, or none.
    bool is_certified() const { return m_certified || m_no_changes; }

    // Refuses, naming the field and the signature, to fill a field where that would break a signature.
    CPDFStatus check_fill(const CPDFField& field) const;

    // Refuses to change values that no field has where a signature allows no changes, or locks all fields but some.
    CPDFStatus check_data() const;

    // Refuses to add, remove or change the fields themselves in a certified document, whatever the certification
    // allows, and, where `field` is not null, what the field's own lock or signature forbids for it and the fields
    // under it.
    CPDFStatus check_edit(CPDFField* field) const;

private:
    struct LOCK {
        std::string signature;            // full name of the signature field
        bool all_but;                     // whether the fields named are those that stay open
        std::vector<std::string> fields;  // full names; a field under one of them counts
    };

    void add_signature(CPDFXRefTable& xref, CPDFField& field);
    void add_lock(CPDFXRefTable& xref, const CPDFDictionary& parameters, const std::string& signature);
    void add_permission(CPDFXRefTable& xref, const CPDFDictionary& parameters);
    void read_permissions(CPDFXRefTable& xref, const CPDFDictionary& root);
    void read_references(CPDFXRefTable& xref, const CPDFDictionary& signature, const std::string& name);

    bool m_signed = false;
    bool m_no_changes = false;  // a signature allows none
    bool m_certified = false;   // a signature allows some changes only, never to the fields themselves
    std::vector<LOCK> m_locks;
};
