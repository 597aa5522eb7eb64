#include "script/sandbox/message.h"

#include <cstring>
#include <type_traits>

#include "script/functions/characters.h"

namespace {

// A number is its bytes, a text and a list have a count of four bytes before them.

class Writer {
public:
    template <typename Number>
    void number(Number value)
    {
        char bytes[sizeof value];
        std::memcpy(bytes, &value, sizeof value);
        m_out.append(bytes, sizeof bytes);
    }

    void text(const std::string& value)
    {
        number(static_cast<uint32_t>(value.size()));
        m_out += value;
    }

    template <typename Item, typename Each>
    void list(const std::vector<Item>& items, const Each& each)
    {
        number(static_cast<uint32_t>(items.size()));
        for (const Item& item : items)
            each(item);
    }

    std::string& out() { return m_out; }

private:
    std::string m_out = std::string(SCRIPT_SIZE_BYTES, '\0');
};

class Reader {
public:
    explicit Reader(std::string_view bytes) : m_bytes(bytes) {}

    template <typename Number>
    void number(Number& value)
    {
        const std::string_view bytes = take(sizeof value);
        if (!m_failed)
            std::memcpy(&value, bytes.data(), sizeof value);
    }

    void text(std::string& value)
    {
        uint32_t size = 0;
        number(size);
        value = take(size);
    }

    template <typename Item, typename Each>
    void list(std::vector<Item>& items, const Each& each)
    {
        uint32_t count = 0;
        number(count);
        items.clear();
        // Every item takes four bytes at least, so that a count can't ask for more memory than the message justifies.
        m_failed = m_failed || count > m_bytes.size() / 4;
        for (uint32_t i = 0; i < count && !m_failed; ++i)
            each(items.emplace_back());
    }

    void fail_unless(bool good) { m_failed = m_failed || !good; }
    bool at_end() const { return !m_failed && m_bytes.empty(); }

private:
    std::string_view take(size_t size)
    {
        fail_unless(size <= m_bytes.size());
        const std::string_view bytes = m_failed ? std::string_view() : m_bytes.substr(0, size);
        m_bytes.remove_prefix(bytes.size());
        return bytes;
    }

    std::string_view m_bytes;
    bool m_failed = false;
};

// One description of each record serves both directions.

template <typename Way>
constexpr bool READS = std::is_same_v<Way, Reader>;

template <typename Way, typename Enumeration>
void enumeration(Way& way, Enumeration& value, Enumeration last)
{
    auto number = static_cast<uint8_t>(value);
    way.number(number);
    if constexpr (READS<Way>) {
        way.fail_unless(number <= static_cast<uint8_t>(last));
        value = static_cast<Enumeration>(number);
    }
}

template <typename Way, typename Bool>
void flag(Way& way, Bool& value)
{
    uint8_t number = value;
    way.number(number);
    if constexpr (READS<Way>) {
        way.fail_unless(number <= 1);
        value = number == 1;
    }
}

template <typename Way, typename Texts>
void texts(Way& way, Texts& list)
{
    way.list(list, [&way](auto& text) { way.text(text); });
}

template <typename Way, typename Changes>
void changes(Way& way, Changes& list)
{
    way.list(list, [&way](auto& change) {
        way.text(change.field);
        texts(way, change.value);
    });
}

template <typename Way, typename Event>
void event_record(Way& way, Event& event)
{
    way.text(event.target);
    way.text(event.value);
    flag(way, event.rc);
    way.text(event.message);
    flag(way, event.will_commit);
    way.text(event.change);
    way.number(event.sel_start);
    way.number(event.sel_end);
    auto color = static_cast<EVENT_COLOR>(event.color);
    enumeration(way, color, EVENT_COLOR::RED);
    if constexpr (READS<Way>)
        event.color = color;
}

template <typename Way, typename Display>
void display_record(Way& way, Display& display)
{
    auto number = display;
    enumeration(way, number, SCRIPT_DISPLAY::NO_VIEW);
    if constexpr (READS<Way>)
        display = number;
}

template <typename Way, typename Items>
void items_record(Way& way, Items& items)
{
    way.list(items, [&way](auto& item) {
        way.text(item.shown);
        way.text(item.value);
    });
}

template <typename Way, typename List>
void traits_record(Way& way, List& list)
{
    way.list(list, [&way](auto& traits) {
        way.text(traits.field);
        way.number(traits.made);
        way.number(traits.flags);
        display_record(way, traits.display);
        items_record(way, traits.items);
    });
}

template <typename Way, typename Field>
void field_record(Way& way, Field& field)
{
    way.text(field.name);
    auto type = field.type;
    enumeration(way, type, SCRIPT_FIELD_TYPE::SIGNATURE);
    if constexpr (READS<Way>)
        field.type = type;
    way.number(field.flags);
    display_record(way, field.display);
    texts(way, field.value);
    texts(way, field.default_value);
    items_record(way, field.items);
    way.number(field.char_limit);
    way.number(field.page);
    for (auto& side : field.rect)
        way.number(side);
    for (auto& color : field.colors)
        way.list(color, [&way](auto& value) { way.number(value); });
}

template <typename Way, typename Document>
void record(Way& way, Document& document) requires std::is_same_v<std::remove_const_t<Document>, SCRIPT_DOCUMENT>
{
    way.list(document.fields, [&way](auto& field) { field_record(way, field); });
    way.list(document.info, [&way](auto& entry) {
        way.text(entry.name);
        way.text(entry.text);
    });
    way.number(document.pages);
}

template <typename Way, typename Run>
void record(Way& way, Run& run) requires std::is_same_v<std::remove_const_t<Run>, SCRIPT_RUN>
{
    changes(way, run.changes);
    way.text(run.event_type);
    way.text(run.event_name);
    event_record(way, run.event);
    for (auto* part : {&run.event.today.year, &run.event.today.month, &run.event.today.day, &run.event.today.hour,
                       &run.event.today.minute, &run.event.today.second})
        way.number(*part);
    way.text(run.source);
    way.text(run.text);
}

template <typename Way, typename Answer>
void record(Way& way, Answer& answer) requires std::is_same_v<std::remove_const_t<Answer>, SCRIPT_ANSWER>
{
    way.text(answer.fault);
    event_record(way, answer.event);
    changes(way, answer.changes);
    traits_record(way, answer.traits);
    texts(way, answer.console);
}

std::string finished(Writer& writer)
{
    std::string& out = writer.out();
    const auto size = static_cast<uint32_t>(std::min<size_t>(out.size() - SCRIPT_SIZE_BYTES, UINT32_MAX));
    std::memcpy(out.data(), &size, sizeof size);
    return std::move(out);
}

template <typename Record>
std::string written(SCRIPT_REQUEST request, const Record& what)
{
    Writer writer;
    writer.number(static_cast<uint8_t>(request));
    record(writer, what);
    return finished(writer);
}

template <typename Record>
bool read(std::string_view message, Record& out)
{
    Reader reader(message);
    record(reader, out);
    return reader.at_end();
}

// The half of a pair (UTF-16 surrogates) that begins at `at`, as the interpreter spells it: in three bytes of its own. 0 for
// anything else.
char32_t half_at(std::string_view text, size_t at)
{
    if (text.size() - at < 3 || text[at] != '\xED' || static_cast<unsigned char>(text[at + 1]) < 0xA0)
        return 0;
    return 0xD000U | (text[at + 1] & 0x3FU) << 6U | (text[at + 2] & 0x3FU);
}

// Halves that belong together become the character that they stand for; what is not UTF-8 then becomes U+FFFD.
void make_well_formed(std::string& text)
{
    std::string joined;
    joined.reserve(text.size());
    for (size_t at = 0; at < text.size();) {
        const char32_t high = half_at(text, at);
        const char32_t low = high >= 0xD800 && high < 0xDC00 && text.size() - at >= 6 ? half_at(text, at + 3) : 0;
        if (low < 0xDC00) {
            joined += text[at++];
            continue;
        }
        append_character(joined, 0x10000 + ((high - 0xD800) << 10U) + (low - 0xDC00));
        at += 6;
    }
    text = text_of(characters_of(joined));
}

}  // namespace

std::string write_message(SCRIPT_REQUEST request, const SCRIPT_DOCUMENT& document)
{
    return written(request, document);
}

std::string write_message(SCRIPT_REQUEST request)
{
    Writer writer;
    writer.number(static_cast<uint8_t>(request));
    return finished(writer);
}

std::string write_message(SCRIPT_REQUEST request, const SCRIPT_RUN& run)
{
    return written(request, run);
}

std::string write_message(const SCRIPT_ANSWER& answer)
{
    Writer writer;
    record(writer, answer);
    return finished(writer);
}

std::optional<size_t> read_message_size(const char (&bytes)[SCRIPT_SIZE_BYTES])
{
    uint32_t size = 0;
    std::memcpy(&size, bytes, sizeof size);
    return size <= SCRIPT_MESSAGE_MAX ? std::optional<size_t>(size) : std::nullopt;
}

bool read_message(std::string_view message, SCRIPT_DOCUMENT& out)
{
    return read(message, out);
}

bool read_message(std::string_view message, SCRIPT_RUN& out)
{
    return read(message, out);
}

bool read_message(std::string_view message, SCRIPT_ANSWER& out)
{
    if (!read(message, out))
        return false;
    for (std::string* text : {&out.fault, &out.event.value, &out.event.message, &out.event.change, &out.event.target})
        make_well_formed(*text);
    for (SCRIPT_CHANGE& change : out.changes) {
        make_well_formed(change.field);
        for (std::string& text : change.value)
            make_well_formed(text);
    }
    for (SCRIPT_TRAITS& traits : out.traits) {
        make_well_formed(traits.field);
        for (SCRIPT_ITEM& item : traits.items) {
            make_well_formed(item.shown);
            make_well_formed(item.value);
        }
    }
    for (std::string& line : out.console)
        make_well_formed(line);
    return true;
}

std::optional<SCRIPT_REQUEST> read_request(std::string_view& message)
{
    if (message.empty() || static_cast<uint8_t>(message[0]) > static_cast<uint8_t>(SCRIPT_REQUEST::RUN))
        return std::nullopt;
    const auto request = static_cast<SCRIPT_REQUEST>(message[0]);
    message.remove_prefix(1);
    return request;
}
