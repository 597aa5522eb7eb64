/* What the native library makes of a form, for comparison: native FORM DATA.json OUTPUT.pdf [TIMES]. Fills the form and saves it,
 * and prints the milliseconds that listing and filling take, the least of so many times. An output is written where the
 * filling succeeds; its code is the exit code. */
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include "formwork.h"

typedef struct text {
    char* bytes;
    size_t size;
} text;

static text read_file(const char* path)
{
    text out = {NULL, 0};
    FILE* file = fopen(path, "rb");
    if (!file)
        exit(100);
    fseek(file, 0, SEEK_END);
    out.size = (size_t)ftell(file);
    rewind(file);
    out.bytes = malloc(out.size + 1);
    if (fread(out.bytes, 1, out.size, file) != out.size)
        exit(100);
    fclose(file);
    return out;
}

static double now(void)
{
    struct timespec time;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return (double)time.tv_sec * 1e3 + (double)time.tv_nsec / 1e6;
}

static void keep_least(double* least, double began)
{
    const double took = now() - began;
    if (*least < 0 || took < *least)
        *least = took;
}

static fw_code list(const text* form)
{
    fw_document* document;
    char* json = NULL;
    fw_code code = fw_open_bytes(form->bytes, form->size, NULL, &document);
    if (code == FW_OK)
        code = fw_list_json(document, FW_PLAIN, &json, NULL);
    fw_free(json);
    fw_close(document);
    return code;
}

static fw_code fill(const text* form, const text* data, text* out)
{
    fw_document* document;
    fw_code code = fw_open_bytes(form->bytes, form->size, NULL, &document);
    if (code == FW_OK)
        code = fw_fill(document, FW_JSON, data->bytes, data->size, FW_PLAIN, NULL, NULL);
    if (code == FW_OK)
        code = fw_save_bytes(document, FW_PLAIN, &out->bytes, &out->size);
    fw_close(document);
    return code;
}

int main(int argc, char** argv)
{
    const int times = argc > 4 ? atoi(argv[4]) : 1;
    double listing = -1;
    double filling = -1;
    fw_code code = FW_OK;
    if (argc < 4)
        return 101;
    const text form = read_file(argv[1]);
    const text data = read_file(argv[2]);
    for (int i = 0; i < times && code == FW_OK; ++i) {
        text out = {NULL, 0};
        double began = now();
        code = list(&form);
        keep_least(&listing, began);
        began = now();
        if (code == FW_OK)
            code = fill(&form, &data, &out);
        keep_least(&filling, began);
        if (code == FW_OK && i == 0) {
            FILE* file = fopen(argv[3], "wb");
            if (!file || fwrite(out.bytes, 1, out.size, file) != out.size || fclose(file) != 0)
                exit(100);
        }
        fw_free(out.bytes);
    }
    if (code != FW_OK)
        fprintf(stderr, "%s\n", fw_error());
    printf("{\"list\": %.3f, \"fill\": %.3f}\n", listing, filling);
    return code;
}
