/* Fills a field by the C interface as it is installed: consumer FORM.pdf */

#include <formwork.h>
#include <stdio.h>
#include <string.h>

static int fail(const char* where)
{
    fprintf(stderr, "%s: %s\n", where, fw_error());
    return 1;
}

int main(int argc, char** argv)
{
    fw_document* form = NULL;
    fw_document* filled = NULL;
    fw_field city = 0;
    char* bytes = NULL;
    size_t size = 0;
    const char* value = NULL;
    if (argc != 2)
        return 2;
    if (fw_open_file(argv[1], NULL, &form) != FW_OK)
        return fail("open");
    if (fw_find_field(form, "address.city", FW_PLAIN, &city) != FW_OK)
        return fail("find");
    if (fw_set_value(form, city, "Ulm", FW_PLAIN) != FW_OK)
        return fail("set");
    if (fw_save_bytes(form, FW_PLAIN, &bytes, &size) != FW_OK)
        return fail("save");
    fw_close(form);
    if (fw_open_bytes(bytes, size, NULL, &filled) != FW_OK)
        return fail("open again");
    if (fw_find_field(filled, "address.city", FW_PLAIN, &city) != FW_OK ||
        fw_field_text(filled, city, FW_VALUE, &value) != FW_OK)
        return fail("read");
    printf("%s %d.%d.%d %s\n", fw_version(), FW_VERSION_MAJOR, FW_VERSION_MINOR, FW_VERSION_PATCH, value);
    fw_close(filled);
    fw_free(bytes);
    return 0;
}
