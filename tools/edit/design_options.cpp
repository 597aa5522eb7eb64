#include "tools/edit/design_options.h"

#include <CLI/CLI.hpp>

void DesignOptions::add_options(CLI::App& verb)
{
    for (const PDF_DESIGN_WORD& word : design_words()) {
        GIVEN& at = m_given.emplace_back();
        at.design = &word;
        at.name += word.name;
        at.option = verb.add_option(at.name, at.word, word.help)->option_text(word.value);
    }
}

CPDFStatus DesignOptions::read(PDF_FIELD_DESIGN& design) const
{
    CPDFStatus status;
    for (const GIVEN& at : m_given) {
        if (status.ok() && at.option->count())
            status = read_design_word(*at.design, at.name, at.word.text, design);
    }
    return status;
}
