// A colour as form dictionaries and default appearances give it (ISO 32000-2, 12.5.6.19, table 192).
#pragma once

// 0 values: none (transparent); 1: gray; 3: RGB; 4: CMYK. Values are from 0 to 1.
struct WIDGET_COLOR {
    int count = 0;
    double values[4] = {};
};
