// Runs the scripts of a form that are no well-known calls, in a process of their own that can do nothing but compute.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>

#include "script/sandbox/message.h"

struct SCRIPT_LIMITS {
    double seconds =
        2;  // of processor time, for all scripts of a document or of one row of a batch; 0.001 to a million
};

// One thread at a time; several of them may run at once. The process is started when it is needed first and ends with this.
// Scripts can't harm the host: whatever the process does or says, a run ends in bounded time with an answer or a fault.
class CPDFScriptSandbox {
public:
    explicit CPDFScriptSandbox(const SCRIPT_LIMITS& limits = {});
    ~CPDFScriptSandbox() { stop(); }
    CPDFScriptSandbox(const CPDFScriptSandbox&) = delete;
    CPDFScriptSandbox& operator=(const CPDFScriptSandbox&) = delete;

    // A new row of a batch begins, or the document was reverted: fields are as they were loaded, no variables of scripts are
    // left, and the time is whole again.
    void renew();

    // Whether a document has to be loaded before the next run: at first, and after the process was lost. Scripts that
    // prepare the document run after each renewal and each loading. False, too, when no script will run until the next renewal.
    bool needs_document() const { return !gave_up() && (m_child <= 0 || !m_loaded); }
    void load(const SCRIPT_DOCUMENT& document);
    // It is to be loaded anew: the process has made something else of it than is to be.
    void forget_document() { m_loaded = false; }

    // Runs a script. Where it does not come to its end, or anything is wrong with the process, the answer has a fault, the
    // end of a sentence such as "it took longer than 2 seconds", and nothing else counts.
    SCRIPT_ANSWER run(const SCRIPT_RUN& run);

    // Whether the last run failed only because somebody else ended the process, as the system does when the thread that started
    // it ends: it may be made once more.
    bool was_killed() const { return m_was_killed; }

    // The process, for those who look from outside; 0 for none.
    pid_t child() const { return m_child > 0 ? m_child : 0; }

private:
    using Clock = std::chrono::steady_clock;

    static constexpr int LOSSES_MAX = 10;

    bool gave_up() const { return m_too_large || m_out_of_time || m_losses >= LOSSES_MAX; }
    bool start();
    void stop();
    int wait_for_end();
    bool send(std::string_view bytes);
    bool receive(char* bytes, size_t size);
    bool wait_for(short events);
    double processor_time() const;
    bool begin_time();
    SCRIPT_ANSWER ask(const SCRIPT_RUN& run);
    std::string why_lost();
    std::string time_fault() const;
    SCRIPT_ANSWER failed(std::string fault);

    SCRIPT_LIMITS m_limits;
    pid_t m_child = 0;
    int m_pipe = -1;
    bool m_loaded = false;
    bool m_too_large = false;
    bool m_out_of_time = false;
    bool m_was_killed = false;
    int m_losses = 0;            // processes that this document has lost
    double m_used = 0;           // seconds of processor time of this document before `m_began`
    double m_began = 0;          // processor time of the child when the run began
    Clock::time_point m_ends;    // when a run ends at the latest, however little the machine let it run
    Clock::duration m_waited{};  // for all runs of this document
};
