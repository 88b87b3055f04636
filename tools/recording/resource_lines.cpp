// Lines of the policy and what it grants, and the thermal engine.
#include "tools/recording/tables.h"

namespace {

constexpr log_row rows[] = {
    {line_policy_thread, subject_policy, priority_error, true,
     "Error initializing Policy Manager Thread",
     "The policy's thread could not be started; start-up fails next.", "the policy has no thread"},
    {line_acceptor_memory, subject_policy, priority_error, true, "Failed to alloc",
     "Memory ran out in the chain of grants. At start a manager is missing from it and the daemon "
     "ends with status 255; later a grant was delivered and not remembered, so that it is "
     "delivered again.",
     "no memory in the chain of grants"},
    {line_policy_state, subject_policy, priority_debug_events, false, "PM : %s",
     "The policy enters this state (idle, game_default, game_tuner, graphic_tune or fps_tune) and "
     "hands out its grants; events 60 to 64 follow.",
     "the policy enters the state {1}"},
    {line_grant_held, subject_policy, priority_info, false, "Grant Setting Acceptor[%d] Grant[%d]",
     "After a state's grants were handed out: a requestor of the manager looked at last, and the "
     "grant delivered to it (1: its requests count).",
     nullptr},
    {line_requestor_listed, subject_rate, priority_info, false,
     "[%d]: Requstor[%d] Value[%d] Grant[%d]",
     "A requestor of a manager that has started: its place in the list, its number (0 dgpc, 1 game "
     "tuner, 3 image enhancement, 6 automode, 7 low power mode; 2 and 5 are not used), what it "
     "asks for (-1 or 0: nothing) and its grant.",
     nullptr},
    {line_requestors_none, subject_rate, priority_info, true, "The list [%s] is empty.",
     "A manager has started without requestors, as memory ran out: every request to it is refused.",
     "{1} takes no request: it has no requestors"},
    {line_rate_grant, subject_rate, priority_info, false, "FM - Acceptor %d set grant %d",
     "The policy tells the frame-rate manager whether the requests of the requestor of this number "
     "count (1) or not (0).",
     "what {1|the client dgpc|the game tuner|requestor 2|image enhancement|requestor 4|requestor "
     "5|automode|low power mode|an unknown requestor} asks of the frame rate {2|does not "
     "count|counts}"},
    {line_rate_applied, subject_rate, priority_info, false, "CF%d b%d",
     "The display gets another frame rate, in frames per second, and the requestor that asked for "
     "it (0 dgpc, 1 game tuner, 6 automode, 7 low power mode): the lowest rate from 20 to 59 among "
     "those whose grant counts. Without one it is 60, of requestor -1.",
     "the frame rate becomes {1} frames per second, {2|as the client dgpc asks|as the game tuner "
     "asks|as requestor 2 asks|as requestor 3 asks|as requestor 4 asks|as requestor 5 asks|as "
     "automode asks|as low power mode asks|as nobody asks for less}"},
    {line_requestor_missing, subject_rate, priority_error, true, "No such requestor [%d]",
     "The requestor of this number asked for a frame rate or an image mode, and the manager did "
     "not start or does not know it; the request is dropped.",
     "what {1|the client dgpc|the game tuner|requestor 2|image enhancement|requestor 4|requestor "
     "5|automode|low power mode|an unknown requestor} asks for is dropped: no manager has it"},
    {line_game_optimizer, subject_rate, priority_debug_powerhal, false, "Game Optimizer : %d",
     "The power HAL switches the Game Optimizer on (not 0) or off (0); with it on, a game of tuner "
     "mode 1 runs under the game tuner.",
     "the power HAL switches the Game Optimizer {1|off|on}"},
    {line_game_tuned, subject_rate, priority_error, false, "Game tuner mode",
     "A game of tuner mode 1 is in front with the Game Optimizer on: with a frame rate from 20 to "
     "60 it runs under the tuner, which asks for that rate after a second. An error by its "
     "priority alone.",
     "the game in front is meant for the game tuner"},
    {line_game_ofvalue, subject_rate, priority_debug_powerhal, false, "ofvalue : %d",
     "The of-value of the game that was reported; 1 or more with the game on sets the of-mode.",
     "the game's of-value is {1}"},
    {line_image_first, subject_image, priority_info, false, "extend ie config init: event %d/%d",
     "The first row of the image table: an event and the image mode that it asks for.", nullptr},
    {line_image_next, subject_image, priority_info, false, "extend ie config next: event %d/%d",
     "A further row of the image table: an event and the image mode that it asks for.", nullptr},
    {line_image_entry_memory, subject_image, priority_error, true,
     "Memory allocation failed for ie config.",
     "Memory ran out before the image table was read: no event asks for an image mode.",
     "no event asks for an image mode: no memory for the image table"},
    {line_image_row_memory, subject_image, priority_error, true,
     "Memory allocation failed for ie_config_node.",
     "Memory ran out while the image table was read: no event asks for an image mode.",
     "no event asks for an image mode: no memory for the image table"},
    {line_image_grant, subject_image, priority_info, false, "IE Manager - Acceptor %d set grant %d",
     "The policy tells the image-engine manager whether the requests of the requestor of this "
     "number count (1) or not (0).",
     "what {1|the client dgpc|the game tuner|requestor 2|image enhancement|requestor 4|requestor "
     "5|automode|low power mode|an unknown requestor} asks of the image engine {2|does not "
     "count|counts}"},
    {line_image_mode, subject_image, priority_error, false, "found %d, mode set to %d",
     "An event asks for an image mode: 0 off, 1 games, 3 the gallery. The engine gets it while the "
     "requestor's grant counts. An error by its priority alone.",
     "event {1} asks for image mode {2}"},
    {line_image_no_engine, subject_image, priority_error, true, "No Set Funtion",
     "The image engine was to be switched off and the hardware library's operation is not bound.",
     "the image engine cannot be switched off: the hardware library's operation is not bound"},
    {line_no_handle, subject_thermal, priority_error, true, "No handle",
     "The hardware library could not be opened for the thermal engine or for automode's kernel "
     "node; the lines before say why.",
     "the thermal engine or automode's kernel node has no hardware library"},
    {line_thermal_unsupported, subject_thermal, priority_info, true,
     "This device doesn't support thermal engine",
     "The thermal engine could not be bound, so that thermal configurations and low power mode are "
     "off; or, from automode, its kernel node could not. The lines before say what is missing.",
     "the thermal engine, or automode's kernel node, cannot be used"},
    {line_thermal_thread, subject_thermal, priority_error, true,
     "Error to initialzed sync notify thread.",
     "The thread that waits for the thermal engine could not be started: no thermal configuration "
     "is switched and low power mode is off.",
     "thermal configurations are off: nothing waits for the thermal engine"},
    {line_thermal_check, subject_thermal, priority_info, false, "Thermal Config Check Thread Start",
     "The thermal engine is asked every second, 300 times at most, how many descriptors it has; "
     "once the number has stayed for eleven seconds they count as loaded, and event 70 follows.",
     "the wait for the thermal engine begins"},
    {line_thermal_not_bound, subject_thermal, priority_error, true,
     "Thermal Interface is not initialized. Init it first.",
     "A thermal configuration was to be switched and the thermal engine is not bound; the request "
     "is dropped. Start-up's lines say what is missing.",
     "a switch of a thermal configuration is dropped: there is no thermal engine"},
    {line_thermal_not_loaded, subject_thermal, priority_info, false,
     "Thermal Configuration is not loaded yet.",
     "A thermal configuration was to be switched before event 70; the request is dropped. Common "
     "in the first seconds after a start; when it goes on, the thermal engine has no descriptors.",
     "a switch of a thermal configuration is dropped: the thermal engine has not loaded its "
     "descriptors"},
    {line_config_symbol, subject_thermal, priority_error, true, "dlsym failed!, %s",
     "The custom-configuration library lacks an entry point, and the loader's reason. No activity "
     "has a thermal configuration of its own.",
     "the custom-configuration library lacks an entry point: {1}"},
    {line_config_unbound, subject_thermal, priority_error, true, "dlsym not finished!",
     "An activity's configuration was asked for while the custom-configuration library is not "
     "bound.",
     "an activity's configuration cannot be looked up: its library is not bound"},
    {line_config_set, subject_thermal, priority_info, false, "config set complete : %s, %s",
     "The activity in front has a configuration of its own, which holds now: its action "
     "(TCONF_ENABLE switches a thermal configuration on, any other does nothing) and the action's "
     "argument.",
     "the activity in front sets {1} {2}"},
    {line_config_failed, subject_thermal, priority_info, true, "config set failed : %s, %s",
     "The configuration of the activity in front, its action and the argument, could not be "
     "switched on: the thermal engine refused it, has not loaded its descriptors yet or is not "
     "there. The one before is off and is switched off once more with the next activity.",
     "the activity's configuration {1} {2} could not be switched on"},
    {line_config_stuck, subject_thermal, priority_info, true, "restoring failed",
     "The configuration of the activity before could not be switched off; it stays the current "
     "one, and the new activity's is not set.",
     "the configuration of the activity before could not be switched off, so the new one is not "
     "set"},
};

}  // namespace

constinit const std::span<const log_row> log_resource_lines = rows;
