// fill_formwork IN OUT NAME VALUE: makes VALUE the value of one text field and saves.

#include <cstdio>

#include "document/document.h"

namespace {

CPDFStatus fill(char** argv)
{
    CPDFDocument document;
    document.set_drawing(PDF_DRAWING::LEAVE_TO_VIEWERS);  // as the rival does
    if (CPDFStatus status = document.open(argv[1], PDF_LOAD::NAMED_FIELDS); !status.ok())
        return status;
    CPDFField* field = document.field(argv[3]);
    if (!field)
        return CPDFStatus::failed(PDF_CODE::NO_FIELD, std::string("There is no field ") + argv[3] + ".");
    if (CPDFStatus status = document.set_value(*field, argv[4]); !status.ok())
        return status;
    return document.save(argv[2]);
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 5) {
        std::fprintf(stderr, "usage: fill_formwork IN OUT NAME VALUE\n");
        return 2;
    }
    const CPDFStatus status = fill(argv);
    if (!status.ok())
        std::fprintf(stderr, "fill_formwork: %s\n", status.text.c_str());
    return status.ok() ? 0 : 1;
}
