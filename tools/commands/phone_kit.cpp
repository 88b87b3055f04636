// dvxctl as it goes onto a phone: what needs neither a simulator nor a virtual device.

#include "tools/commands/command_line.h"
#include "tools/commands/looking_commands.h"
#include "tools/commands/message_commands.h"

int main(int argc, char **argv) {
    return command_line_run(argc, argv, {add_message_commands, add_looking_commands});
}
