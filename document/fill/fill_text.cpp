#include "core/text.h"
#include "document/fill/filler_internal.h"

namespace {

int64_t character_count(const std::string& text)
{
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* end = p + text.size();
    int64_t count = 0;
    for (; p < end; ++count)
        ucs_from_utf8(p, end);
    return count;
}

}  // namespace

CPDFStatus plan_text(const PDF_FIELD_SHAPE& shape, const CPDFValue& value, PDF_FILL_PLAN& plan)
{
    plan.action = PDF_FILL_PLAN::SET_TEXT;
    if (std::holds_alternative<std::vector<std::string>>(value))
        return refuse_value("is a text field, which takes one text");
    plan.text = texts_of(value)[0];
    plan.coerced = std::holds_alternative<bool>(value);
    const int32_t most = shape.max_length;
    const int64_t count = character_count(plan.text);
    if (most > 0 && count > most)
        return refuse_value("takes at most " + std::to_string(most) + " characters, not " + std::to_string(count),
                            PDF_CODE::LIMIT);
    return {};
}
