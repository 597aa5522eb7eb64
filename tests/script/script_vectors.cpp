// Runs calls of form functions from a file, as known calls and by scripts in the sandbox, and compares what comes of them:
// script_vectors FILE. Ends with "N passed, N failed";
// exits 0 when none failed, 77 when there is no such file. The file is a JSON array of
//   {"call": "AFNumber_Format", "args": [2, 0], "value": "1", "event": {"willCommit": false, "change": "2", "selStart": -1,
//    "selEnd": -1}, "fields": {"a": "1"}, "expect": {"value": "1.00", "rc": true} or {"returns": "1.00"}}
// of which "value", "event" and "fields" may be missing.
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>

#include "script/known_call.h"
#include "script/sandbox/sandbox.h"

namespace {

using nlohmann::json;

std::string text_of(const json& value)
{
    return value.is_string() ? value.get<std::string>() : value.dump();
}

SCRIPT_VALUE value_of(const json& value)
{
    if (value.is_boolean())
        return {value.get<bool>()};
    if (value.is_number())
        return {value.get<double>()};
    if (value.is_string())
        return {value.get<std::string>()};
    if (!value.is_array())
        return {};
    SCRIPT_LIST list;
    for (const json& item : value)
        list.push_back(value_of(item));
    return {std::move(list)};
}

json json_of(const SCRIPT_VALUE& value)
{
    if (const SCRIPT_LIST* list = value.list()) {
        json out = json::array();
        for (const SCRIPT_VALUE& item : *list)
            out.push_back(json_of(item));
        return out;
    }
    if (const bool* flag = std::get_if<bool>(&value.held))
        return *flag;
    if (const double* number = std::get_if<double>(&value.held))
        return *number;
    return value.is_nothing() ? json() : json(value.text());
}

class JsonFields : public CPDFFieldValues {
public:
    explicit JsonFields(const json& vector) : m_fields(vector.value("fields", json::object())) {}

    void append_values(const std::string& name, std::vector<std::string>& out) const override
    {
        for (const auto& [field, value] : m_fields.items())
            if (field == name || field.starts_with(name + '.'))
                out.push_back(text_of(value));
    }

private:
    json m_fields;
};

FIELD_EVENT event_of(const json& vector)
{
    FIELD_EVENT event;
    event.target = "field";
    event.value = text_of(vector.value("value", json("")));
    const json typing = vector.value("event", json::object());
    event.will_commit = typing.value("willCommit", true);
    event.change = typing.value("change", "");
    event.sel_start = typing.value("selStart", -1);
    event.sel_end = typing.value("selEnd", -1);
    return event;
}

// The script that makes the call of `vector`: the recogniser has to know it.
std::string script_of(const json& vector)
{
    std::string arguments = vector.at("args").dump();
    return vector.at("call").get<std::string>() + '(' + arguments.substr(1, arguments.size() - 2) + ");";
}

// What came of a call, in the form of "expect".
json outcome_of(const json& vector)
{
    const std::optional<KNOWN_CALL> call = read_known_call(script_of(vector));
    if (!call || call->arguments.size() != vector.at("args").size())
        return "not recognised";
    for (size_t i = 0; i < call->arguments.size(); ++i)
        if (call->arguments[i].held.index() != value_of(vector.at("args")[i]).held.index())
            return "recognised with other arguments";
    FIELD_EVENT event = event_of(vector);
    const SCRIPT_VALUE returned = run_known_call(*call, event, JsonFields(vector));
    if (vector.at("expect").contains("returns"))
        return {{"returns", json_of(returned)}};
    const bool as_text = vector.at("expect").value("value", json("")).is_string();
    return {{"value", as_text ? json(event.value) : json::parse(event.value, nullptr, false)}, {"rc", event.rc}};
}

// The same call made by a script in the sandbox.
json sandbox_outcome_of(const json& vector, CPDFScriptSandbox& sandbox)
{
    SCRIPT_DOCUMENT document;
    const json fields = vector.value("fields", json::object());
    for (const auto& [field, value] : fields.items()) {
        document.fields.emplace_back().name = field;
        document.fields.back().value = {text_of(value)};
    }
    sandbox.renew();
    sandbox.load(document);
    const bool returns = vector.at("expect").contains("returns");
    SCRIPT_RUN run;
    run.event = event_of(vector);
    run.text = script_of(vector);
    if (returns)
        run.text = "event.value = JSON.stringify(" + run.text.substr(0, run.text.size() - 1) + ')';
    const SCRIPT_ANSWER answer = sandbox.run(run);
    if (!answer.fault.empty())
        return answer.fault;
    const json value = json::parse(answer.event.value, nullptr, false);
    if (returns)
        return {{"returns", value}};
    const bool as_text = vector.at("expect").value("value", json("")).is_string();
    return {{"value", as_text ? json(answer.event.value) : value}, {"rc", answer.event.rc}};
}

bool is_expected(const json& vector, const json& outcome)
{
    if (outcome == vector.at("expect"))
        return true;
    std::printf("%s of %s\n  got      %s\n  expected %s\n", script_of(vector).c_str(),
                vector.value("value", json()).dump().c_str(), outcome.dump().c_str(),
                vector.at("expect").dump().c_str());
    return false;
}

bool run(const json& vector, CPDFScriptSandbox& sandbox)
{
    const bool known = is_expected(vector, outcome_of(vector));
    return is_expected(vector, sandbox_outcome_of(vector, sandbox)) && known;
}

}  // namespace

int main(int argc, char** argv)
try {
    std::ifstream file(argc == 2 ? argv[1] : "");
    if (!file) {
        std::puts("script_vectors FILE: there is no such file");
        return 77;
    }
    int passed = 0;
    int failed = 0;
    CPDFScriptSandbox sandbox;
    for (const json& vector : json::parse(file))
        ++(run(vector, sandbox) ? passed : failed);
    std::printf("%d passed, %d failed\n", passed, failed);
    return failed != 0;
} catch (const std::exception& fault) {
    std::fprintf(stderr, "script_vectors: %s\n", fault.what());
    return 1;
}
