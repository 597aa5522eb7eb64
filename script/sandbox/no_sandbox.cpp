// Stands in for the sandbox where programs can't start another process: every script answers that it does not run.
#include "script/sandbox/sandbox.h"

CPDFScriptSandbox::CPDFScriptSandbox(const SCRIPT_LIMITS& limits) : m_limits(limits), m_losses(LOSSES_MAX) {}

void CPDFScriptSandbox::stop() {}

void CPDFScriptSandbox::renew() {}

void CPDFScriptSandbox::load(const SCRIPT_DOCUMENT& /*document*/) {}

SCRIPT_ANSWER CPDFScriptSandbox::run(const SCRIPT_RUN& /*run*/)
{
    SCRIPT_ANSWER answer;
    answer.fault = "this program has no sandbox to run scripts in";
    return answer;
}
