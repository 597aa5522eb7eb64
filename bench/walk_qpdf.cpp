// Lists the fields of a form through libqpdf: from memory, its fastest way, or with BENCH_FROM_FILE as processFile reads.

#include <cstdio>
#include <exception>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <string>

#include "bench/file_map.h"
#include "bench/walk_main.h"

namespace {

constexpr int MAX_DEPTH = 128;

const std::string KEY_T = "/T";
const std::string KEY_V = "/V";
const std::string KEY_DV = "/DV";
const std::string KEY_KIDS = "/Kids";

void list_texts(QPDFObjectHandle& value, LISTING* listing)
{
    if (value.isString()) {
        const std::string text = value.getUTF8Value();
        listing_text(listing, text.data(), text.size());
    } else if (value.isName()) {
        const std::string text = value.getName();
        listing_text(listing, text.data() + 1, text.size() - 1);
    }
}

void list_field(QPDFObjectHandle& field, const std::string& name, LISTING* listing)
{
    QPDFObjectHandle value = field.getKey(KEY_V);
    if (value.isNull())
        value = field.getKey(KEY_DV);
    listing_name(listing, name.data(), name.size());
    if (value.isArray()) {
        const int count = value.getArrayNItems();
        for (int i = 0; i < count; ++i) {
            QPDFObjectHandle item = value.getArrayItem(i);
            list_texts(item, listing);
        }
    } else {
        list_texts(value, listing);
    }
    listing_end(listing);
}

void walk_fields(QPDFObjectHandle& fields, std::string& name, int depth, LISTING* listing)
{
    const int count = fields.getArrayNItems();
    for (int i = 0; i < count; ++i) {
        QPDFObjectHandle field = fields.getArrayItem(i);
        if (!field.isDictionary())
            continue;
        const size_t above = name.size();
        QPDFObjectHandle part = field.getKey(KEY_T);
        if (part.isString()) {
            if (!name.empty())
                name += '.';
            name += part.getUTF8Value();
            list_field(field, name, listing);
        }
        QPDFObjectHandle kids = field.getKey(KEY_KIDS);
        if (kids.isArray() && depth < MAX_DEPTH)
            walk_fields(kids, name, depth + 1, listing);
        name.resize(above);
    }
}

void list_document(QPDF& document, LISTING* listing)
{
    QPDFObjectHandle form = document.getRoot().getKey("/AcroForm");
    QPDFObjectHandle fields = form.isDictionary() ? form.getKey("/Fields") : QPDFObjectHandle::newNull();
    std::string name;
    if (fields.isArray())
        walk_fields(fields, name, 0, listing);
}

int walk(const char* path, LISTING* listing)
{
#ifndef BENCH_FROM_FILE
    const FILE_MAP map = map_file(path);
#endif
    int done = 0;
    try {
        QPDF document;
        document.setSuppressWarnings(true);
#ifdef BENCH_FROM_FILE
        document.processFile(path);
#else
        document.processMemoryFile(path, reinterpret_cast<const char*>(map.bytes), map.size);
#endif
        list_document(document, listing);
        done = 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "walk_qpdf: %s\n", error.what());
    }
#ifndef BENCH_FROM_FILE
    unmap_file(map);
#endif
    return done;
}

}  // namespace

int main(int argc, char** argv)
{
    return walk_main(argc, argv, walk);
}
