// The XFA data of a form, read and brought in step with its fields.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "document/xfa/xfa_data.h"
#include "document/xfa/xfa_packets.h"

class CPDFAcroForm;
class CPDFField;
class CPDFWidgetBinder;

class CPDFXfaForm {
public:
    // Reads the data set of the form whose entry in the catalog is `form`.
    CPDFStatus open(CPDFXRefTable& xref, const CPDFObj* form);

    CPDFXfaData& data() { return m_data; }

    // Notes the values of the fields where the template says they belong; what no field stands for stays. Where several fields stand for
    // one value, one of those in `changed` is right, else one that says what the data say, else the first. `notes` gets sentences that
    // name the fields that can't be written. Refuses a value that XML can't hold.
    CPDFStatus take_values(CPDFXRefTable& xref, CPDFAcroForm& form, const CPDFWidgetBinder& widgets,
                           const std::vector<CPDFField*>& changed, std::vector<std::string>& notes);

    // Makes the data with what was noted a new version of their stream; nothing when nothing was.
    CPDFStatus store(CPDFXRefTable& xref) const;

private:
    const CPDFXmlTree* template_tree(int32_t& top, std::vector<std::string>& notes);

    PDF_XFA_PACKETS m_packets;
    CPDFXfaData m_data;
    CPDFXmlTree m_own_template;  // of a packet
};
