/**
 * Formwork for C++17 and later: formwork.h with objects that close themselves and results that say why there is none.
 *
 *     formwork::result<formwork::document> form = formwork::document::open("form.pdf");
 *     if (!form)
 *         return tell(form.error().text);
 *     formwork::result<formwork::field> city = form->find("address.city");
 *     if (formwork::result<void> done = city ? city->set("Ulm") : city.error(); !done)
 *         return tell(done.error().text);
 *     formwork::result<void> saved = form->save("filled.pdf");
 *
 * Everything here is inline, and does what the function of formwork.h that it is named after does; that header tells what is refused,
 * and what ends the handles of fields. Nothing throws but std::bad_alloc of the standard library, and value() of a failed result.
 */
#ifndef FORMWORK_HPP
#define FORMWORK_HPP

#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "formwork.h"

namespace formwork {

/** Why a call failed. */
struct failure {
    fw_code code = FW_INTERNAL;
    std::string text; /**< one sentence for people */
};

namespace detail {

inline failure last_error(fw_code code)
{
    return {code, fw_error()};
}

[[noreturn]] inline void fail(const failure& why)
{
#if defined(__cpp_exceptions)
    throw std::runtime_error(why.text);
#else
    (void)why;
    std::abort();
#endif
}

}  // namespace detail

/** What a call gives: a value, or an error. */
template <typename T>
class [[nodiscard]] result {
public:
    result(T value) : m_held(std::move(value)) {}
    result(failure why) : m_held(std::move(why)) {}

    bool has_value() const { return m_held.index() == 0; }
    explicit operator bool() const { return has_value(); }

    /** The value of a result that has one; to be asked for only then. */
    T& operator*() { return *std::get_if<T>(&m_held); }
    const T& operator*() const { return *std::get_if<T>(&m_held); }
    T* operator->() { return std::get_if<T>(&m_held); }
    const T* operator->() const { return std::get_if<T>(&m_held); }

    /** The value; throws std::runtime_error with the sentence where there is none, and ends a program without exceptions. */
    T& value() &
    {
        if (!has_value())
            detail::fail(error());
        return **this;
    }
    T&& value() &&
    {
        if (!has_value())
            detail::fail(error());
        return std::move(**this);
    }

    T value_or(T other) const { return has_value() ? **this : std::move(other); }

    /** The error of a result that has no value; to be asked for only then. */
    const failure& error() const { return *std::get_if<failure>(&m_held); }

private:
    std::variant<T, failure> m_held;
};

/** The result of a call that gives nothing but its success. */
template <>
class [[nodiscard]] result<void> {
public:
    result() = default;
    result(failure why) : m_error(std::move(why)) {}

    bool has_value() const { return !m_error; }
    explicit operator bool() const { return has_value(); }
    void value() const
    {
        if (m_error)
            detail::fail(*m_error);
    }
    const failure& error() const { return *m_error; }

private:
    std::optional<failure> m_error;
};

namespace detail {

inline result<void> done(fw_code code)
{
    if (code == FW_OK)
        return {};
    return last_error(code);
}

/** Calls `call(&text, &size)`, and makes the text that it hands out a string. */
template <typename Call>
result<std::string> take_text(const Call& call)
{
    char* text = nullptr;
    size_t size = 0;
    if (const fw_code code = call(&text, &size); code != FW_OK)
        return last_error(code);
    const std::unique_ptr<char, void (*)(void*)> owner(text, [](void* at) { fw_free(at); });
    return std::string(text, size);
}

/** Calls `call(&value)`. */
template <typename T, typename Call>
result<T> take(const Call& call)
{
    T value = {};
    if (const fw_code code = call(&value); code != FW_OK)
        return last_error(code);
    return value;
}

}  // namespace detail

/** A field of a document, which must not end before it. A copy is the same field. */
class field {
public:
    field() = default;
    field(fw_document* document, fw_field handle) : m_document(document), m_handle(handle) {}

    /** The handle, for calls of formwork.h. */
    fw_field handle() const { return m_handle; }

    /** A text that the field has, nothing where it has none. */
    result<std::optional<std::string>> text(fw_text which) const
    {
        const char* text = nullptr;
        if (const fw_code code = fw_field_text(m_document, m_handle, which, &text); code != FW_OK)
            return detail::last_error(code);
        return text ? std::optional<std::string>(text) : std::nullopt;
    }

    /** "" where the handle is good no longer, as in the functions that follow. */
    std::string name() const { return text(FW_NAME).value_or({}).value_or(""); }
    std::string label() const { return text(FW_LABEL).value_or({}).value_or(""); }
    std::optional<std::string> value() const { return text(FW_VALUE).value_or({}); }

    int64_t number(fw_number which) const
    {
        int64_t number = 0;
        fw_field_number(m_document, m_handle, which, &number);
        return number;
    }
    fw_kind kind() const { return static_cast<fw_kind>(number(FW_KIND)); }
    bool is_read_only() const { return (number(FW_FIELD_FLAGS) & 1) != 0; }
    bool is_required() const { return (number(FW_FIELD_FLAGS) & 2) != 0; }

    std::vector<std::string> items(fw_list which) const
    {
        std::vector<std::string> out;
        size_t count = 0;
        const char* text = nullptr;
        fw_item_count(m_document, m_handle, which, &count);
        for (size_t i = 0; i < count && fw_item(m_document, m_handle, which, i, &text) == FW_OK; ++i)
            out.emplace_back(text);
        return out;
    }
    std::vector<std::string> values() const { return items(FW_VALUES); }
    std::vector<std::string> options() const { return items(FW_OPTION_VALUES); }
    std::vector<std::string> states() const { return items(FW_STATES); }

    std::vector<fw_widget> widgets() const
    {
        std::vector<fw_widget> out;
        size_t count = 0;
        fw_widget widget;
        fw_widget_count(m_document, m_handle, &count);
        for (size_t i = 0; i < count && fw_widget_at(m_document, m_handle, i, &widget) == FW_OK; ++i)
            out.push_back(widget);
        return out;
    }

    result<void> set(const std::string& value, unsigned flags = FW_PLAIN) const
    {
        return detail::done(fw_set_value(m_document, m_handle, value.c_str(), flags));
    }
    result<void> set(const std::vector<std::string>& values, unsigned flags = FW_PLAIN) const
    {
        std::vector<const char*> texts;
        texts.reserve(values.size());
        for (const std::string& value : values)
            texts.push_back(value.c_str());
        return detail::done(fw_set_values(m_document, m_handle, texts.data(), texts.size(), flags));
    }
    result<void> set(std::initializer_list<const char*> values, unsigned flags = FW_PLAIN) const
    {
        return detail::done(fw_set_values(m_document, m_handle, values.begin(), values.size(), flags));
    }
    result<void> set(const char* value, unsigned flags = FW_PLAIN) const
    {
        return detail::done(fw_set_value(m_document, m_handle, value, flags));
    }

    /** Whether the field would take the value. */
    result<void> check(const std::string& value, unsigned flags = FW_PLAIN) const
    {
        return set(value, flags | FW_CHECK_ONLY);
    }

    result<void> reset(unsigned flags = FW_PLAIN) const
    {
        return detail::done(fw_reset(m_document, &m_handle, 1, flags));
    }
    result<void> change(const std::string& json, unsigned flags = FW_PLAIN) const
    {
        return detail::done(fw_change_field(m_document, m_handle, json.c_str(), flags));
    }
    result<void> remove(unsigned flags = FW_PLAIN) const
    {
        return detail::done(fw_remove_field(m_document, m_handle, flags));
    }
    result<void> rename(const std::string& name, unsigned flags = FW_PLAIN) const
    {
        return detail::done(fw_rename_field(m_document, m_handle, name.c_str(), nullptr, flags));
    }
    /** Moves the field under a group; "" is the top. */
    result<void> move(const std::string& group, unsigned flags = FW_PLAIN) const
    {
        return detail::done(fw_rename_field(m_document, m_handle, nullptr, group.c_str(), flags));
    }

private:
    fw_document* m_document = nullptr;  // borrowed
    fw_field m_handle = 0;
};

/** How a document is opened, see fw_open_options. */
struct open_options {
    std::string password;
    bool borrow = false;
    bool no_repair = false;
};

/** A document. It is moved, not copied, and closes itself; one that was moved from refuses every call. */
class document {
public:
    static result<document> open(const std::string& path, const open_options& options = {})
    {
        return open_with(options, [&](const fw_open_options* given, fw_document** out) {
            return fw_open_file(path.c_str(), given, out);
        });
    }
    static result<document> open_bytes(const void* bytes, size_t size, const open_options& options = {})
    {
        return open_with(options, [&](const fw_open_options* given, fw_document** out) {
            return fw_open_bytes(bytes, size, given, out);
        });
    }

    /** For calls of formwork.h; borrowed. */
    fw_document* get() const { return m_held ? m_held->document : nullptr; }

    bool has(fw_fact fact) const
    {
        int holds = 0;
        return fw_has(get(), fact, &holds) == FW_OK && holds != 0;
    }
    result<void> set_option(fw_option option, long value) { return detail::done(fw_set_option(get(), option, value)); }

    /** `progress(done)` returns whether to go on; it must not throw. */
    result<void> set_progress(std::function<bool(double done)> progress)
    {
        if (!m_held)
            return detail::done(fw_set_progress(nullptr, nullptr, nullptr));
        m_held->progress = std::move(progress);
        const fw_progress call = [](double done, void* user) {
            return (*static_cast<std::function<bool(double)>*>(user))(done) ? 0 : 1;
        };
        return detail::done(fw_set_progress(get(), m_held->progress ? call : nullptr, &m_held->progress));
    }

    std::vector<std::string> notes() const
    {
        std::vector<std::string> out;
        const char* note = nullptr;
        while (fw_note(get(), out.size(), &note) == FW_OK && note)
            out.emplace_back(note);
        return out;
    }

    result<size_t> field_count() const
    {
        return detail::take<size_t>([this](size_t* count) { return fw_field_count(get(), count); });
    }
    result<field> field_at(size_t index) const
    {
        return take_field([&](fw_field* out) { return fw_field_at(get(), index, out); });
    }
    result<field> find(const std::string& name, unsigned flags = FW_PLAIN) const
    {
        return take_field([&](fw_field* out) { return fw_find_field(get(), name.c_str(), flags, out); });
    }
    result<field> field_of_object(uint32_t object) const
    {
        return take_field([&](fw_field* out) { return fw_field_of_object(get(), object, out); });
    }

    /** All fields of the list; none where the form can't be read, which field_count tells. */
    std::vector<field> fields() const
    {
        std::vector<field> out;
        const size_t count = field_count().value_or(0);
        out.reserve(count);
        for (size_t i = 0; i < count; ++i) {
            if (result<field> found = field_at(i))
                out.push_back(*found);
        }
        return out;
    }

    result<std::string> list_json(unsigned flags = FW_PLAIN) const
    {
        return detail::take_text([&](char** text, size_t* size) { return fw_list_json(get(), flags, text, size); });
    }
    result<std::string> summary_json() const
    {
        return detail::take_text([&](char** text, size_t* size) { return fw_summary_json(get(), text, size); });
    }

    /** `report`, unless null, becomes the report also of a fill that is refused. */
    result<void> fill(std::string_view data, fw_format format = FW_JSON, unsigned flags = FW_PLAIN,
                      std::string* report = nullptr)
    {
        char* text = nullptr;
        size_t size = 0;
        const fw_code code =
            fw_fill(get(), format, data.data(), data.size(), flags, report ? &text : nullptr, report ? &size : nullptr);
        result<void> done = detail::done(code);
        if (report)
            report->assign(text ? text : "", size);
        fw_free(text);
        return done;
    }
    result<std::string> export_as(fw_format format, unsigned flags = FW_PLAIN) const
    {
        return detail::take_text(
            [&](char** text, size_t* size) { return fw_export(get(), format, nullptr, 0, flags, text, size); });
    }
    result<void> reset(unsigned flags = FW_PLAIN) { return detail::done(fw_reset(get(), nullptr, 0, flags)); }
    result<void> calculate() { return detail::done(fw_calculate(get())); }
    result<void> revert() { return detail::done(fw_revert(get())); }

    result<field> add(const std::string& json, unsigned flags = FW_PLAIN)
    {
        return take_field([&](fw_field* out) { return fw_add_field(get(), json.c_str(), flags, out); });
    }
    result<void> flatten(unsigned flags = FW_PLAIN) { return detail::done(fw_flatten(get(), flags)); }
    result<void> append(document& other, fw_same_names names = FW_REFUSE, unsigned flags = FW_PLAIN)
    {
        return detail::done(fw_append(get(), other.get(), names, flags));
    }

    result<void> save(const std::string& path) { return detail::done(fw_save_file(get(), path.c_str())); }
    /** The saved file; with FW_UPDATE_ONLY what stands behind the bytes of the input. */
    result<std::string> bytes(unsigned flags = FW_PLAIN)
    {
        return detail::take_text([&](char** text, size_t* size) { return fw_save_bytes(get(), flags, text, size); });
    }

private:
    struct held {
        fw_document* document = nullptr;
        std::function<bool(double)> progress;

        explicit held(fw_document* opened) : document(opened) {}
        held(const held&) = delete;
        held& operator=(const held&) = delete;
        ~held() { fw_close(document); }
    };

    explicit document(fw_document* opened) : m_held(std::make_unique<held>(opened)) {}

    template <typename Open>
    static result<document> open_with(const open_options& options, const Open& open)
    {
        fw_open_options given = {};
        given.struct_size = sizeof given;
        given.password = options.password.c_str();
        given.borrow = options.borrow;
        given.no_repair = options.no_repair;
        fw_document* opened = nullptr;
        if (const fw_code code = open(&given, &opened); code != FW_OK)
            return detail::last_error(code);
        return document(opened);
    }

    template <typename Call>
    result<field> take_field(const Call& call) const
    {
        fw_field handle = 0;
        if (const fw_code code = call(&handle); code != FW_OK)
            return detail::last_error(code);
        return field(get(), handle);
    }

    std::unique_ptr<held> m_held;
};

/** A table of which every row fills a form. */
class rows {
public:
    static result<rows> open(std::string_view data, fw_format format)
    {
        fw_rows* opened = nullptr;
        if (const fw_code code = fw_open_rows(format, data.data(), data.size(), &opened); code != FW_OK)
            return detail::last_error(code);
        return rows(opened);
    }

    size_t count() const
    {
        size_t count = 0;
        fw_row_count(m_rows.get(), &count);
        return count;
    }

    /** Fills `form` with the next row; its number, or an error with FW_END behind the last one. */
    result<size_t> fill(document& form, unsigned flags = FW_PLAIN)
    {
        return detail::take<size_t>([&](size_t* number) {
            return fw_fill_row(m_rows.get(), form.get(), flags, number, nullptr, nullptr);
        });
    }

private:
    explicit rows(fw_rows* opened) : m_rows(opened, &fw_close_rows) {}

    std::unique_ptr<fw_rows, void (*)(fw_rows*)> m_rows;
};

/** The version of the library that runs. */
inline std::string version()
{
    return fw_version();
}

}  // namespace formwork

#endif
