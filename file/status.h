// How operations on a document report failure: a code to branch on and one sentence to show.
#pragma once

#include <string>

enum class PDF_CODE {
    OK,
    NOT_FOUND,      // no such file or page
    IO,             // the file can't be read or written
    NOT_PDF,        // no PDF header
    NO_CATALOG,     // no usable trailer or catalog
    ENCRYPTED,      // protected, and can't be opened
    DAMAGED,        // the cross-reference data can't be read
    LIMIT,          // larger, or more work, than what is supported
    NO_FIELD,       // no field of that name
    WRONG_KIND,     // the field can't take such a value
    READ_ONLY,      // the field is read-only
    NOT_PERMITTED,  // the password that opened the file does not permit it
    BAD_EDIT,       // the form can't be changed in this way
    BAD_DATA,       // a file with form data can't be read
    BAD_REQUEST,    // what was asked for makes no sense
    NO_MEMORY,
    CANCELLED,  // whoever was told of the progress asked for the end
};

// A status without arguments is OK; failed() makes the others.
struct [[nodiscard]] CPDFStatus {
    PDF_CODE code = PDF_CODE::OK;
    std::string text;  // one sentence that names the object or the field; empty when OK

    bool ok() const { return code == PDF_CODE::OK; }

    static CPDFStatus cancelled() { return {PDF_CODE::CANCELLED, "the operation was cancelled"}; }
    static CPDFStatus failed(PDF_CODE code, std::string text) { return {code, std::move(text)}; }
};
