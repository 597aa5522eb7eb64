// What the XML of a form can't hold. The engine writes the names of fields as tags and the states of buttons as their
// bytes; who wants the result well-formed asks before.
#pragma once

class CPDFField;

// Whether the name of the field makes a tag that XML 1.0 (2.3) allows, without a colon, or none.
bool has_xml_name(const CPDFField& field);

// Whether the value that is written for the field is character data of XML. True when memory runs out.
bool has_xml_value(const CPDFField& field);
