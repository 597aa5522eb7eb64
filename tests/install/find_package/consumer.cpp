// Fills a field by the C++ interface as it is installed: consumer FORM.pdf

#include <formwork.hpp>

#include <iostream>

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    formwork::result<formwork::document> form = formwork::document::open(argv[1]);
    formwork::result<formwork::field> city = form ? form->find("address.city") : form.error();
    formwork::result<void> done = city ? city->set("Ulm") : city.error();
    if (!done) {
        std::cerr << done.error().text << "\n";
        return 1;
    }
    std::cout << fw_version() << " " << city->value().value_or("nothing") << "\n";
}
