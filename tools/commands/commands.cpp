#include "tools/commands/commands.h"

#include "tools/commands/device_commands.h"
#include "tools/commands/doctor_command.h"
#include "tools/commands/explain_commands.h"
#include "tools/commands/frames_command.h"
#include "tools/commands/lab_commands.h"
#include "tools/commands/message_commands.h"
#include "tools/commands/record_command.h"
#include "tools/commands/replay_command.h"
#include "tools/commands/report_commands.h"

const std::vector<add_commands> desk_commands = {
    add_message_commands, add_device_commands,  add_frames_commands,
    add_record_command,   add_explain_commands, add_doctor_command,
    add_replay_command,   add_report_commands,  add_lab_commands};
