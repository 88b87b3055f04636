#include "tools/commands.h"

#include "tools/device_commands.h"
#include "tools/frames/frames_command.h"
#include "tools/lab/lab.h"
#include "tools/message_commands.h"
#include "tools/replay/replay_commands.h"
#include "tools/why/looking_commands.h"

const std::vector<add_commands> desk_commands = {add_message_commands, add_device_commands,
                                                 add_frames_commands,  add_looking_commands,
                                                 add_replay_commands,  add_lab_commands};
