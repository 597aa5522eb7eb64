// The data of a form as submit actions send them and as XFA keeps them, under the fields' own partial names.
#pragma once

#include <string>
#include <vector>

#include "file/status.h"

class CPDFDocument;
class CPDFField;

// Each fills `out` with the data of `fields`, borrowed, or of all fields when there are none. Sentences about what other programs may not
// take are appended to `notes` unless that is null.

// The pairs of a submit action, NAME=VALUE joined by '&', in plain ASCII.
CPDFStatus write_url_data(CPDFDocument& document, const std::vector<CPDFField*>& fields, std::string& out);

// The XML of a submit action. What makes it other than well-formed is noted: a program that reads it by other rules may still want
// it.
CPDFStatus write_xml_data(CPDFDocument& document, const std::vector<CPDFField*>& fields, std::string& out,
                          std::vector<std::string>* notes);

// The data set of a form with XFA data as CPDFDocument::read_xfa gives it, else the one that its fields would make; always of all
// fields.
CPDFStatus write_xfa_data(CPDFDocument& document, std::string& out, std::vector<std::string>* notes);
