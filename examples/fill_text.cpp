// fill_text IN.pdf FIELD VALUE OUT.pdf: lists the fields, sets one of them and saves the result.
#include <cstdio>

#include "formwork.hpp"

namespace {

int complain(const formwork::failure& why)
{
    std::fprintf(stderr, "%s\n", why.text.c_str());
    return 1;
}

void print_field(const formwork::field& field)
{
    std::printf("%s = %s\n", field.name().c_str(), field.value().value_or("-").c_str());
}

int fill(const char* in, const char* name, const char* value, const char* out)
{
    formwork::result<formwork::document> form = formwork::document::open(in);
    if (!form)
        return complain(form.error());
    for (const formwork::field& field : form->fields())
        print_field(field);
    const formwork::result<formwork::field> field = form->find(name);
    if (!field)
        return complain(field.error());
    if (const formwork::result<void> set = field->set(value); !set)
        return complain(set.error());
    if (const formwork::result<void> saved = form->save(out); !saved)
        return complain(saved.error());

    const formwork::result<formwork::document> saved = formwork::document::open(out);
    if (!saved)
        return complain(saved.error());
    std::printf("saved %s: ", out);
    print_field(saved->find(name).value_or({}));
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 5) {
        std::fputs("usage: fill_text IN.pdf FIELD VALUE OUT.pdf\n", stderr);
        return 2;
    }
    return fill(argv[1], argv[2], argv[3], argv[4]);
}
