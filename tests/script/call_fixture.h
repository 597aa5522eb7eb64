// Runs scripts that are known calls.
#pragma once

#include <gtest/gtest.h>

#include <map>

#include "script/known_call.h"

class MapFields : public CPDFFieldValues {
public:
    explicit MapFields(std::map<std::string, std::string> fields = {}) : m_fields(std::move(fields)) {}

    void append_values(const std::string& name, std::vector<std::string>& out) const override
    {
        for (const auto& [field, value] : m_fields)
            if (field == name || field.starts_with(name + '.'))
                out.push_back(value);
    }

private:
    std::map<std::string, std::string> m_fields;
};

inline FIELD_EVENT event_with(std::string value)
{
    FIELD_EVENT event;
    event.target = "f";
    event.value = std::move(value);
    event.today = {2023, 5, 6};
    return event;
}

// Runs `script` in `event`; a script that is not known fails the test.
inline SCRIPT_VALUE run_script(std::string_view script, FIELD_EVENT& event, const CPDFFieldValues& fields = MapFields())
{
    const std::optional<KNOWN_CALL> call = read_known_call(script);
    if (!call) {
        ADD_FAILURE() << "not known: " << script;
        return {};
    }
    return run_known_call(*call, event, fields);
}

// The value that `script` leaves in a field with `value`, or the message of the refusal.
inline std::string result_of(std::string_view script, std::string value)
{
    FIELD_EVENT event = event_with(std::move(value));
    run_script(script, event);
    return event.rc ? event.value : event.message;
}

// What the call returns, as text.
inline std::string returned_by(std::string_view script)
{
    FIELD_EVENT event = event_with("");
    return run_script(script, event).text();
}
