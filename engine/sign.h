// The signature value of a signature field (ISO 32000-2, 12.8.1).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class CPDFDictionary;
class CPDFXRefTable;

// Keeps copies of what the signature dictionary says; nothing is verified.
class CPDFSign {
public:
    // Reads `dict`, which may be freed afterwards. Entries of the wrong kind are left at their defaults.
    void load(CPDFXRefTable* xref, const CPDFDictionary* dict);

    int32_t m_data_cnt = 0;             // bytes of "Contents"; above 0 when the field is signed
    std::string m_filter;               // "Filter", e.g. Adobe.PPKLite
    std::string m_sub_filter;           // "SubFilter", e.g. adbe.pkcs7.detached
    std::string m_name;                 // "Name", raw text-string bytes
    std::string m_date;                 // "M", raw date string
    std::vector<int64_t> m_byte_range;  // "ByteRange": offset and length of each signed part, in bytes
};
