// Object values as the bytes of a PDF file (ISO 32000-2, 7.3).
#pragma once

#include <cstdint>
#include <string>

#include "core/object.h"

// Appends `obj` to `out`. A stream appends its dictionary only. Every byte of strings and names survives reading back.
void write_object(std::string& out, const CPDFObj& obj);
void write_dictionary(std::string& out, const CPDFDictionary& dict);

// Appends one entry of a dictionary. `value` is not null.
void write_entry(std::string& out, const char* key, const CPDFObj& value);

// Appends a real with no more digits than it carries, without an exponent; the decimal sign is a point.
void write_real(std::string& out, VXFIX value);
