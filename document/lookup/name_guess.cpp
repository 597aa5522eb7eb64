#include "document/lookup/name_guess.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <vector>

#include "document/lookup/field_text.h"
#include "forms/field_walk.h"

namespace {

// Longer names, and more of them, are not compared: each pair takes time in proportion to both.
constexpr size_t LONGEST_COMPARED = 120;
constexpr int MOST_COMPARED = 20000;

std::string small_letters(std::string_view text)
{
    std::string small(text);
    for (char& c : small)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return small;
}

// How many letters must be added, left out, changed or swapped with their neighbour to make `b` of `a`.
size_t edit_distance(std::string_view a, std::string_view b)
{
    std::vector<size_t> above(b.size() + 1);
    for (size_t j = 0; j < above.size(); ++j)
        above[j] = j;
    std::vector<size_t> row(above);
    std::vector<size_t> twice_above;
    for (size_t i = 0; i < a.size(); ++i) {
        row[0] = i + 1;
        for (size_t j = 0; j < b.size(); ++j) {
            row[j + 1] = std::min({above[j] + (a[i] != b[j]), row[j] + 1, above[j + 1] + 1});
            if (i > 0 && j > 0 && a[i] == b[j - 1] && a[i - 1] == b[j])
                row[j + 1] = std::min(row[j + 1], twice_above[j - 1] + 1);
        }
        twice_above = above;
        above = row;
    }
    return above[b.size()];
}

std::vector<CPDFField*> fields_with(CPDFAcroForm& form, const std::string& part, std::string (*spell)(std::string_view))
{
    std::vector<CPDFField*> found;
    for_each_field(form, [&](CPDFField& field) {
        if (field.m_name.len > 0 && spell(full_name(field)).find(part) != std::string::npos)
            found.push_back(&field);
    });
    const auto own = [&](const CPDFField* field) {
        return spell(utf8_of(field->m_name)).find(part) != std::string::npos;
    };
    if (found.size() > 1 && std::count_if(found.begin(), found.end(), own) == 1)
        return {*std::find_if(found.begin(), found.end(), own)};
    return found;
}

CPDFStatus several_fields(std::string_view word, const std::vector<CPDFField*>& fields)
{
    constexpr size_t MOST = 5;
    std::string list;
    for (size_t i = 0; i < std::min(fields.size(), MOST); ++i)
        list += (i ? ", " : "") + in_quotes(full_name(*fields[i]));
    if (fields.size() > MOST)
        list += " and " + std::to_string(fields.size() - MOST) + " more";
    return CPDFStatus::failed(PDF_CODE::NO_FIELD, "there is no field " + in_quotes(word) +
                                                      ", and several have that in their names: " + list);
}

}  // namespace

CPDFField* field_at(CPDFAcroForm& form, std::string_view place)
{
    int64_t number = 0;
    const auto result = std::from_chars(place.data(), place.data() + place.size(), number);
    CPDFField* found = nullptr;
    if (result.ec != std::errc() || result.ptr != place.data() + place.size() || number <= 0)
        return nullptr;
    for_each_field(form, [&](CPDFField& field) {
        if (field.m_name.len > 0 && --number == 0)
            found = &field;
    });
    return found;
}

CPDFField* guess_field(CPDFAcroForm& form, std::string_view word, CPDFStatus& why)
{
    if (word.empty()) {
        why = no_such_field(word);
        return nullptr;
    }
    if (CPDFField* field = field_at(form, word))
        return field;
    std::vector<CPDFField*> found =
        fields_with(form, std::string(word), [](std::string_view text) { return std::string(text); });
    if (found.empty())
        found = fields_with(form, small_letters(word), small_letters);
    if (found.size() == 1)
        return found.front();
    why = found.empty() ? no_such_field(form, word) : several_fields(word, found);
    return nullptr;
}

CPDFStatus no_such_field(CPDFAcroForm& form, std::string_view name)
{
    CPDFStatus status = no_such_field(name);
    const std::string given = small_letters(name);
    size_t nearest = std::max<size_t>(1, given.size() / 3) + 1;
    std::string best;
    int compared = 0;
    const auto compare = [&](const std::string& known, const CPDFField& field) {
        const size_t apart = known.size() > given.size() ? known.size() - given.size() : given.size() - known.size();
        if (apart >= nearest || known.size() > LONGEST_COMPARED)
            return;
        const size_t distance = edit_distance(given, small_letters(known));
        if (distance < nearest)
            best = full_name(field);
        nearest = std::min(nearest, distance);
    };
    if (given.empty() || given.size() > LONGEST_COMPARED)
        return status;
    for_each_field(form, [&](const CPDFField& field) {
        if (field.m_name.len <= 0 || ++compared > MOST_COMPARED)
            return;
        compare(full_name(field), field);
        if (field.m_parent)
            compare(utf8_of(field.m_name), field);
    });
    if (!best.empty())
        status.text += ": did you mean " + in_quotes(best) + "?";
    return status;
}
