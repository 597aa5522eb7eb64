// Stands in for system_copy.cpp where the system copies nothing itself.
#include "file/system_copy.h"

size_t system_copy(int /*from*/, int /*to*/, size_t /*size*/)
{
    return 0;
}
