#include "tools/command.h"

int main(int argc, char** argv)
{
    return run_command(argc, argv);
}
