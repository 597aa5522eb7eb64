// Stands in for qpdf where programs can't start another process.
#include "file/rescue/rescue.h"

CPDFStatus rescue_file(const uint8_t* /*data*/, size_t /*size*/, const std::string& /*password*/,
                       CPDFFileBytes& /*out*/)
{
    return CPDFStatus::failed(PDF_CODE::DAMAGED, "repairing it needs qpdf, which this program does without");
}
