// Any bytes as FDF.
#include "formats/import/fdf_data.h"
#include "fuzz/data_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    check_data(data, size, read_fdf_data);
    return 0;
}
