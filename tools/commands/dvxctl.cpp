// dvxctl: talks to dvxd in words, and runs virtual devices for it.

#include "tools/commands/commands.h"

int main(int argc, char **argv) {
    return command_line_run(argc, argv, desk_commands);
}
