/* list_fields IN.pdf: what the fields are called, are and hold, in C. */
#include <stdio.h>

#include "formwork.h"

static fw_code list_fields(fw_document* document)
{
    static const char* const KINDS[] = {"group", "radio", "push", "check", "text", "combo", "list", "signature"};
    size_t count = 0;
    fw_code code = fw_field_count(document, &count);
    for (size_t i = 0; i < count && code == FW_OK; ++i) {
        fw_field field = 0;
        const char* name = NULL;
        const char* value = NULL;
        int64_t kind = 0;
        code = fw_field_at(document, i, &field);
        if (code == FW_OK)
            code = fw_field_text(document, field, FW_NAME, &name);
        if (code == FW_OK)
            code = fw_field_text(document, field, FW_VALUE, &value);
        if (code == FW_OK)
            code = fw_field_number(document, field, FW_KIND, &kind);
        if (code == FW_OK)
            printf("%s (%s): %s\n", name, KINDS[kind], value ? value : "-");
    }
    return code;
}

int main(int argc, char** argv)
{
    fw_document* document = NULL;
    fw_code code = FW_OK;
    if (argc != 2) {
        fputs("usage: list_fields IN.pdf\n", stderr);
        return 2;
    }
    code = fw_open_file(argv[1], NULL, &document);
    if (code == FW_OK)
        code = list_fields(document);
    if (code != FW_OK)
        fprintf(stderr, "%s\n", fw_error());
    fw_close(document);
    return code == FW_OK ? 0 : 1;
}
