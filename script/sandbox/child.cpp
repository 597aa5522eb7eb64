#include "script/sandbox/child.h"

#include <unistd.h>

#include <cerrno>
#include <csetjmp>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "script/sandbox/host.h"

namespace {

// Errors are told in a sentence.
constexpr size_t FAULT_MAX = 200;

// What the interpreter has allocated, each block with its size before it.
class Heap {
public:
    static void* allocate(void* heap, void* block, int size) { return static_cast<Heap*>(heap)->allocate(block, size); }

private:
    static constexpr size_t HEAD = alignof(std::max_align_t);

    void* allocate(void* block, int size)
    {
        char* const start = block ? static_cast<char*>(block) - HEAD : nullptr;
        const size_t before = start ? *reinterpret_cast<size_t*>(start) : 0;
        const size_t wanted = static_cast<size_t>(size);
        if (size <= 0) {
            std::free(start);
            m_used -= before;
            return nullptr;
        }
        if (m_used - before + wanted > SCRIPT_MEMORY_MAX)
            return nullptr;
        char* const moved = static_cast<char*>(std::realloc(start, HEAD + wanted));
        if (!moved)
            return nullptr;
        m_used += wanted - before;
        *reinterpret_cast<size_t*>(moved) = wanted;
        return moved + HEAD;
    }

    size_t m_used = 0;
};

[[noreturn]] void end_for_memory()
{
    _exit(SCRIPT_EXIT_MEMORY);
}

void end_for_panic(js_State* /*js*/)
{
    _exit(SCRIPT_EXIT_MEMORY);
}

void say_nothing(js_State* /*js*/, const char* /*message*/) {}

void define_objects(js_State* js)
{
    define_document(js);
    define_fields(js);
    define_app(js);
    define_form_functions(js);
    define_constants(js);
    define_missing(js);
}

// False when the script did not come to its end; the error is on the stack then. Errors jump back here.
bool run_script(js_State* js)
{
    if (setjmp(*static_cast<jmp_buf*>(js_savetry(js))) != 0)
        return false;
    define_event(js);
    js_loadstring(js, "script", host_of(js).run.text.c_str());
    js_pushglobal(js);
    js_call(js, 0);
    js_pop(js, 1);
    read_event(js);
    js_endtry(js);
    return true;
}

bool define_all(js_State* js)
{
    if (setjmp(*static_cast<jmp_buf*>(js_savetry(js))) != 0)
        return false;
    define_objects(js);
    js_endtry(js);
    return true;
}

std::string fault_of(const std::string& error)
{
    if (error == "out of memory" || error.find("string too long") != std::string::npos)
        return std::string(SCRIPT_MEMORY_FAULT);
    if (error.find("stack overflow") != std::string::npos)
        return "its calls are nested too deeply";
    std::string fault = error.substr(0, FAULT_MAX);
    for (char& c : fault)
        if (static_cast<unsigned char>(c) < ' ')
            c = ' ';
    return fault.empty() ? "it threw nothing" : fault;
}

class Server {
public:
    explicit Server(int pipe) : m_pipe(pipe) {}
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    int serve()
    {
        std::string message;
        while (receive(message)) {
            if (!serve(message))
                return SCRIPT_EXIT_CONFUSED;
        }
        return SCRIPT_EXIT_DONE;
    }

private:
    bool serve(std::string_view message)
    {
        const std::optional<SCRIPT_REQUEST> request = read_request(message);
        if (request == SCRIPT_REQUEST::LOAD) {
            SCRIPT_DOCUMENT document;
            forget();
            const bool good = read_message(message, document);
            m_host.load(std::move(document));
            return good;
        }
        if (request == SCRIPT_REQUEST::RENEW) {
            forget();
            m_host.renew();
            return message.empty();
        }
        return request && read_message(message, m_host.run) && answer();
    }

    // No state of scripts stays.
    void forget()
    {
        if (m_host.js)
            js_freestate(m_host.js);
        m_host.js = nullptr;
    }

    bool answer()
    {
        m_host.answer.fault.clear();
        m_host.answer.changes.clear();
        m_host.answer.console.clear();
        m_host.event = m_host.run.event;
        for (const SCRIPT_CHANGE& change : m_host.run.changes)
            m_host.take_change(change);
        run();
        m_host.tell_traits();
        const std::string bytes = write_message(m_host.answer);
        if (bytes.size() <= SCRIPT_MESSAGE_MAX)
            return send(bytes);
        SCRIPT_ANSWER too_large;
        too_large.fault = "its answer is too large";
        return send(write_message(too_large));
    }

    void run()
    {
        if (!m_host.js && !begin())
            end_for_memory();
        if (!run_script(m_host.js)) {
            m_host.answer.fault = fault_of(js_trystring(m_host.js, -1, "its error is none"));
            js_pop(m_host.js, 1);
        }
    }

    bool begin()
    {
        m_host.js = js_newstate(Heap::allocate, &m_heap, 0);
        if (!m_host.js)
            return false;
        js_setcontext(m_host.js, &m_host);
        js_setreport(m_host.js, say_nothing);
        js_atpanic(m_host.js, end_for_panic);
        return define_all(m_host.js);
    }

    bool receive(std::string& message)
    {
        char bytes[SCRIPT_SIZE_BYTES];
        if (!receive(bytes, sizeof bytes))
            return false;
        message.resize(read_message_size(bytes).value_or(0));
        return receive(message.data(), message.size());
    }

    bool receive(char* bytes, size_t size)
    {
        while (size > 0) {
            const ssize_t got = read(m_pipe, bytes, size);
            if (got == 0 || (got < 0 && errno != EINTR))
                return false;
            bytes += got > 0 ? got : 0;
            size -= got > 0 ? static_cast<size_t>(got) : 0;
        }
        return true;
    }

    bool send(std::string_view bytes)
    {
        while (!bytes.empty()) {
            const ssize_t sent = write(m_pipe, bytes.data(), bytes.size());
            if (sent < 0 && errno != EINTR)
                return false;
            bytes.remove_prefix(sent > 0 ? static_cast<size_t>(sent) : 0);
        }
        return true;
    }

    int m_pipe;
    Heap m_heap;
    SCRIPT_HOST m_host;
};

}  // namespace

int serve_scripts(int pipe)
{
    std::set_new_handler(end_for_memory);
    // Never destroyed: the process ends without cleaning up.
    return (new Server(pipe))->serve();
}
