#include "tools/batch/template_mark.h"

#include <charconv>

#include "document/lookup/field_text.h"
#include "tools/batch/sha256.h"
#include "tools/terminal_text.h"

namespace {

constexpr std::string_view BEGIN = "formwork-update 1 ";
constexpr size_t DIGITS = 64;  // of the digest
constexpr size_t LONGEST_LINE = 4096;

}  // namespace

TEMPLATE_MARK TEMPLATE_MARK::of(const std::string& path, std::string_view bytes)
{
    return {printable(path.substr(path.rfind('/') + 1)), bytes.size(), Sha256().add(bytes).hex()};
}

std::string TEMPLATE_MARK::line() const
{
    return std::string(BEGIN) + std::to_string(size) + " " + sha256 + " " + name + "\n";
}

CPDFStatus TEMPLATE_MARK::read(std::string_view& file)
{
    const size_t end = file.substr(0, LONGEST_LINE).find('\n');
    const std::string_view line = file.substr(0, end);
    if (end != std::string_view::npos && line.substr(0, BEGIN.size()) == BEGIN) {
        const char* const last = line.data() + line.size();
        const auto [digits, error] = std::from_chars(line.data() + BEGIN.size(), last, size);
        if (error == std::errc() && last - digits >= static_cast<ptrdiff_t>(DIGITS + 2) && *digits == ' ' &&
            digits[DIGITS + 1] == ' ') {
            sha256.assign(digits + 1, DIGITS);
            name.assign(digits + DIGITS + 2, last);
            file.remove_prefix(end + 1);
            return {};
        }
    }
    return CPDFStatus::failed(PDF_CODE::BAD_DATA, "it is no update that formwork fill --updates-only wrote");
}

CPDFStatus TEMPLATE_MARK::check(const std::string& path, std::string_view bytes) const
{
    const auto refuse = [&](const std::string& why) {
        return CPDFStatus::failed(PDF_CODE::BAD_DATA,
                                  "it belongs to another template than " + path + ": to " + in_quotes(name) + why);
    };
    if (bytes.size() != size)
        return refuse(" of " + std::to_string(size) + " bytes, not of " + std::to_string(bytes.size()));
    if (Sha256().add(bytes).hex() != sha256)
        return refuse(", which has as many bytes but others");
    return {};
}
