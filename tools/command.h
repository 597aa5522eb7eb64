// The formwork command: reads the command line and runs the verb it names.
#pragma once

// Takes what main takes; returns what the program ends with, a COMMAND_EXIT.
int run_command(int argc, char** argv);
