#include "formats/import/json_data.h"

#include <algorithm>
#include <cstring>
#include <nlohmann/json.hpp>
#include <unordered_set>

#include "core/limits.h"
#include "document/lookup/field_text.h"

namespace {

constexpr size_t LONGEST_FAULT = 200;
constexpr const char* ALLOWED = "; a value is a text, a number, true, false, null or a list of texts";

// Takes what the parser finds. No value lies deeper than a list in the object, so nothing nests.
class DataReader : public nlohmann::json_sax<nlohmann::json> {
public:
    explicit DataReader(CPDFFormData& out) : m_out(out) {}

    const std::string& fault() const { return m_fault; }

    bool null() override { return m_place == IN_OBJECT || refuse("null"); }
    bool boolean(bool value) override { return m_place == IN_OBJECT ? add(value) : refuse("true or false"); }
    // The parser has other numbers unsigned, so a zero is "-0" here.
    bool number_integer(number_integer_t value) override { return number(value ? std::to_string(value) : "-0"); }
    bool number_unsigned(number_unsigned_t value) override { return number(std::to_string(value)); }

    bool number_float(number_float_t /*value*/, const string_t& text) override
    {
        std::string digits = text;
        const auto is_point = [](char c) { return !std::strchr("0123456789+-eE", c); };
        std::replace_if(digits.begin(), digits.end(), is_point, '.');  // the parser writes the locale's
        return number(std::move(digits));
    }

    bool string(string_t& value) override
    {
        if (m_place != IN_LIST)
            return m_place == IN_OBJECT ? add(std::move(value)) : refuse("a text");
        std::get<std::vector<std::string>>(m_out.back().value).push_back(std::move(value));
        return count();
    }

    bool binary(binary_t& /*value*/) override { return refuse("binary data"); }

    bool start_object(size_t /*elements*/) override
    {
        if (m_place != OUTSIDE)
            return refuse("an object");
        m_place = IN_OBJECT;
        return true;
    }

    bool key(string_t& name) override
    {
        m_name = name;
        if (m_names.insert(name).second)
            return true;
        m_fault = in_quotes(name) + " is there twice";
        return false;
    }

    bool end_object() override { return true; }

    bool start_array(size_t /*elements*/) override
    {
        if (m_place != IN_OBJECT)
            return refuse("a list");
        m_place = IN_LIST;
        return add(std::vector<std::string>());
    }

    bool end_array() override
    {
        m_place = IN_OBJECT;
        return true;
    }

    bool parse_error(size_t /*position*/, const std::string& /*token*/, const nlohmann::json::exception& error) override
    {
        m_fault = error.what();
        for (const char* head : {"] ", "parse error at ", "parse error: "}) {
            const size_t at = m_fault.find(head);
            if (at != std::string::npos)
                m_fault.erase(0, at + std::strlen(head));
        }
        m_fault.resize(std::min(m_fault.size(), LONGEST_FAULT));  // it cites the text, which may be long
        return false;
    }

private:
    bool number(std::string digits) { return m_place == IN_OBJECT ? add(std::move(digits)) : refuse("a number"); }

    bool add(CPDFValue value)
    {
        m_out.push_back({m_name, std::move(value)});
        return count();
    }

    bool count()
    {
        if (++m_count <= LIMIT_DATA_VALUES)
            return true;
        m_fault = "there are more than " + std::to_string(LIMIT_DATA_VALUES) + " values";
        return false;
    }

    bool refuse(const char* what)
    {
        if (m_place == OUTSIDE)
            m_fault = std::string("the data is ") + what + ", not an object of names and values";
        else
            m_fault = in_quotes(m_name) + (m_place == IN_LIST ? " has a list with " : " is ") + what + ALLOWED;
        return false;
    }

    enum PLACE { OUTSIDE, IN_OBJECT, IN_LIST };

    CPDFFormData& m_out;  // borrowed from the caller
    PLACE m_place = OUTSIDE;
    size_t m_count = 0;  // of values
    std::string m_name;
    std::string m_fault;
    std::unordered_set<std::string> m_names;
};

}  // namespace

CPDFStatus read_json_data(std::string_view text, CPDFFormData& out)
{
    out.clear();
    DataReader reader(out);
    if (nlohmann::json::sax_parse(text.begin(), text.end(), &reader))
        return {};
    out.clear();
    return CPDFStatus::failed(PDF_CODE::BAD_DATA, reader.fault());
}
