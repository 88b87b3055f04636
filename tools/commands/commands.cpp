#include "tools/commands/commands.h"

#include "tools/commands/device_commands.h"
#include "tools/commands/frames_command.h"
#include "tools/commands/lab_commands.h"
#include "tools/commands/looking_commands.h"
#include "tools/commands/message_commands.h"
#include "tools/commands/replay_commands.h"

const std::vector<add_commands> desk_commands = {add_message_commands, add_device_commands,
                                                 add_frames_commands,  add_looking_commands,
                                                 add_replay_commands,  add_lab_commands};
