// fill_text IN.pdf FIELD VALUE OUT.pdf: lists the fields, sets one text field and saves the result.
#include <cstdio>

#include "document/document.h"
#include "document/lookup/field_text.h"
#include "forms/field_walk.h"

namespace {

int complain(const CPDFStatus& status)
{
    std::fprintf(stderr, "%s\n", status.text.c_str());
    return 1;
}

void print_field(CPDFField& field)
{
    if (field.m_name.len == 0)
        return;
    const PDF_String* text = field.get_edit_value();
    std::printf("%s = %s\n", full_name(field).c_str(), text ? utf8_of(*text).c_str() : "-");
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 5) {
        std::fputs("usage: fill_text IN.pdf FIELD VALUE OUT.pdf\n", stderr);
        return 2;
    }
    CPDFDocument document;
    if (const CPDFStatus status = document.open(argv[1]); !status.ok())
        return complain(status);
    for_each_field(document.form(), print_field);

    CPDFField* field = document.field(argv[2]);
    if (!field)
        return complain(CPDFStatus::failed(PDF_CODE::NO_FIELD, "there is no such field"));
    if (const CPDFStatus status = document.set_value(*field, argv[3]); !status.ok())
        return complain(status);
    if (const CPDFStatus status = document.save(argv[4]); !status.ok())
        return complain(status);

    CPDFDocument saved;
    if (const CPDFStatus status = saved.open(argv[4]); !status.ok())
        return complain(status);
    std::printf("saved %s: ", argv[4]);
    field = saved.field(argv[2]);
    if (field)
        print_field(*field);
    return field ? 0 : 1;
}
