// Any bytes as XFDF.
#include "formats/import/xfdf_data.h"
#include "fuzz/data_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    check_data(data, size, read_xfdf_data);
    return 0;
}
