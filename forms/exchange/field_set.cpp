#include "forms/exchange/field_set.h"

#include <tinyxml.h>

#include <cstring>

#include "core/growable.h"

namespace {

constexpr int32_t ENTRY_STEP = 8;
constexpr int32_t KIND_SUBMIT = 1;
constexpr int32_t KIND_RESET = 2;

// Writes '.' and `name` at path[len]; the new length, or -1 when the buffer has no room for them.
int append_name(char* path, int len, const char* name)
{
    const size_t size = std::strlen(name);
    if (size + 2 > static_cast<size_t>(FIELD_SET_PATH - len))
        return -1;
    path[len] = '.';
    std::memcpy(path + len + 1, name, size + 1);
    return len + 1 + static_cast<int>(size);
}

}  // namespace

_PDF_FIELD_SET_::~_PDF_FIELD_SET_()
{
    for (int32_t i = 0; i < count; ++i)
        VXFree(items[i].name);
    VXFree(items);
}

char* _PDF_FIELD_SET_::add(const char* name, const char* value, int kind)
{
    if (count == cap && !vx_add_room(items, cap, ENTRY_STEP))
        return nullptr;
    const size_t name_size = std::strlen(name) + 1;
    const size_t value_size = std::strlen(value) + 1;
    auto* block = static_cast<char*>(VXAlloc(name_size + value_size));
    if (!block)
        return nullptr;
    std::memcpy(block, name, name_size);
    std::memcpy(block + name_size, value, value_size);
    items[count++] = {block, block + name_size, kind};
    return block + name_size;
}

void _PDF_FIELD_SET_::load(TiXmlElement* elem, char* path, int len)
{
    if (const char* name = elem->Attribute("name"))
        len = append_name(path, len, name);
    if (len < 0)
        return;
    for (TiXmlElement* child = elem->FirstChildElement(); child; child = child->NextSiblingElement()) {
        if (std::strcmp(child->Value(), "subform") == 0)
            load(child, path, len);
        else if (std::strcmp(child->Value(), "field") == 0)
            load_field(child, path, len);
    }
}

void _PDF_FIELD_SET_::load_field(TiXmlElement* field, char* path, int len)
{
    const char* name = field->Attribute("name");
    TiXmlElement* event = field->FirstChildElement("event");
    TiXmlElement* action = event ? event->FirstChildElement() : nullptr;
    if (!name || !action || append_name(path, len, name) < 0)
        return;
    if (std::strcmp(action->Value(), "submit") == 0) {
        if (const char* target = action->Attribute("target"))
            add(path, target, KIND_SUBMIT);
    } else if (std::strcmp(action->Value(), "script") == 0) {
        const char* script = action->GetText();
        if (script && std::strstr(script, "resetData"))
            add(path, "", KIND_RESET);
    }
}
