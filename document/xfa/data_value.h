// A value of XFA data under its path.
#pragma once

#include <string>

// The path begins in the data proper ("form1.address.city"). A name that stands several times side by side has its place behind it,
// counted from 0 ("item[1]"); dots in names are written "\.".
struct PDF_XFA_VALUE {
    std::string path;
    std::string value;
};
