// dvxctl as it goes onto a phone: what needs neither a simulator nor a virtual device.

#include "tools/commands/command_line.h"
#include "tools/commands/doctor_command.h"
#include "tools/commands/explain_commands.h"
#include "tools/commands/message_commands.h"
#include "tools/commands/record_command.h"

int main(int argc, char **argv) {
    return command_line_run(
        argc, argv,
        {add_message_commands, add_record_command, add_explain_commands, add_doctor_command});
}
