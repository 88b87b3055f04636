// Lines of the policy and what it grants, and the thermal engine.
#include "tools/recording/tables.h"

namespace {

constexpr log_row rows[] = {
    {log_line::policy_thread, log_subject::policy, log_priority::error, true,
     "Error initializing Policy Manager Thread",
     "The policy's thread could not be started; start-up fails next.", "the policy has no thread"},
    {log_line::acceptor_memory, log_subject::policy, log_priority::error, true, "Failed to alloc",
     "Memory ran out in the chain of grants. At start a manager is missing from it and the daemon "
     "ends with status 255; later a grant was delivered and not remembered, so that it is "
     "delivered again.",
     "no memory in the chain of grants"},
    {log_line::policy_state, log_subject::policy, log_priority::debug_events, false, "PM : %s",
     "The policy enters this state (idle, game_default, game_tuner, graphic_tune or fps_tune) and "
     "hands out its grants; events 60 to 64 follow.",
     "the policy enters the state {1}"},
    {log_line::grant_held, log_subject::policy, log_priority::info, false,
     "Grant Setting Acceptor[%d] Grant[%d]",
     "After a state's grants were handed out: a requestor of the manager looked at last, and the "
     "grant delivered to it (1: its requests count).",
     nullptr},
    {log_line::requestor_listed, log_subject::rate, log_priority::info, false,
     "[%d]: Requstor[%d] Value[%d] Grant[%d]",
     "A requestor of a manager that has started: its place in the list, its number (0 dgpc, 1 game "
     "tuner, 3 image enhancement, 6 automode, 7 low power mode; 2 and 5 are not used), what it "
     "asks for (-1 or 0: nothing) and its grant.",
     nullptr},
    {log_line::requestors_none, log_subject::rate, log_priority::info, true,
     "The list [%s] is empty.",
     "A manager has started without requestors, as memory ran out: every request to it is refused.",
     "{1} takes no request: it has no requestors"},
    {log_line::rate_grant, log_subject::rate, log_priority::info, false,
     "FM - Acceptor %d set grant %d",
     "The policy tells the frame-rate manager whether the requests of the requestor of this number "
     "count (1) or not (0).",
     "what {1|the client dgpc|the game tuner|requestor 2|image enhancement|requestor 4|requestor "
     "5|automode|low power mode|an unknown requestor} asks of the frame rate {2|does not "
     "count|counts}"},
    {log_line::rate_applied, log_subject::rate, log_priority::info, false, "CF%d b%d",
     "The display gets another frame rate, in frames per second, and the requestor that asked for "
     "it (0 dgpc, 1 game tuner, 6 automode, 7 low power mode): the lowest rate from 20 to 59 among "
     "those whose grant counts. Without one it is 60, of requestor -1.",
     "the frame rate becomes {1} frames per second, {2|as the client dgpc asks|as the game tuner "
     "asks|as requestor 2 asks|as requestor 3 asks|as requestor 4 asks|as requestor 5 asks|as "
     "automode asks|as low power mode asks|as nobody asks for less}"},
    {log_line::requestor_missing, log_subject::rate, log_priority::error, true,
     "No such requestor [%d]",
     "The requestor of this number asked for a frame rate or an image mode, and the manager did "
     "not start or does not know it; the request is dropped.",
     "what {1|the client dgpc|the game tuner|requestor 2|image enhancement|requestor 4|requestor "
     "5|automode|low power mode|an unknown requestor} asks for is dropped: no manager has it"},
    {log_line::game_optimizer, log_subject::rate, log_priority::debug_powerhal, false,
     "Game Optimizer : %d",
     "The power HAL switches the Game Optimizer on (not 0) or off (0); with it on, a game of tuner "
     "mode 1 runs under the game tuner.",
     "the power HAL switches the Game Optimizer {1|off|on}"},
    {log_line::game_tuned, log_subject::rate, log_priority::error, false, "Game tuner mode",
     "A game of tuner mode 1 is in front with the Game Optimizer on: with a frame rate from 20 to "
     "60 it runs under the tuner, which asks for that rate after a second. An error by its "
     "priority alone.",
     "the game in front is meant for the game tuner"},
    {log_line::game_ofvalue, log_subject::rate, log_priority::debug_powerhal, false, "ofvalue : %d",
     "The of-value of the game that was reported; 1 or more with the game on sets the of-mode.",
     "the game's of-value is {1}"},
    {log_line::image_first, log_subject::image, log_priority::info, false,
     "extend ie config init: event %d/%d",
     "The first row of the image table: an event and the image mode that it asks for.", nullptr},
    {log_line::image_next, log_subject::image, log_priority::info, false,
     "extend ie config next: event %d/%d",
     "A further row of the image table: an event and the image mode that it asks for.", nullptr},
    {log_line::image_entry_memory, log_subject::image, log_priority::error, true,
     "Memory allocation failed for ie config.",
     "Memory ran out before the image table was read: no event asks for an image mode.",
     "no event asks for an image mode: no memory for the image table"},
    {log_line::image_row_memory, log_subject::image, log_priority::error, true,
     "Memory allocation failed for ie_config_node.",
     "Memory ran out while the image table was read: no event asks for an image mode.",
     "no event asks for an image mode: no memory for the image table"},
    {log_line::image_grant, log_subject::image, log_priority::info, false,
     "IE Manager - Acceptor %d set grant %d",
     "The policy tells the image-engine manager whether the requests of the requestor of this "
     "number count (1) or not (0).",
     "what {1|the client dgpc|the game tuner|requestor 2|image enhancement|requestor 4|requestor "
     "5|automode|low power mode|an unknown requestor} asks of the image engine {2|does not "
     "count|counts}"},
    {log_line::image_mode, log_subject::image, log_priority::error, false,
     "found %d, mode set to %d",
     "An event asks for an image mode: 0 off, 1 games, 3 the gallery. The engine gets it while the "
     "requestor's grant counts. An error by its priority alone.",
     "event {1} asks for image mode {2}"},
    {log_line::image_no_engine, log_subject::image, log_priority::error, true, "No Set Funtion",
     "The image engine was to be switched off and the hardware library's operation is not bound.",
     "the image engine cannot be switched off: the hardware library's operation is not bound"},
    {log_line::no_handle, log_subject::thermal, log_priority::error, true, "No handle",
     "The hardware library could not be opened for the thermal engine or for automode's kernel "
     "node; the lines before say why.",
     "the thermal engine or automode's kernel node has no hardware library"},
    {log_line::thermal_unsupported, log_subject::thermal, log_priority::info, true,
     "This device doesn't support thermal engine",
     "The thermal engine could not be bound, so that thermal configurations and low power mode are "
     "off; or, from automode, its kernel node could not. The lines before say what is missing.",
     "the thermal engine, or automode's kernel node, cannot be used"},
    {log_line::thermal_thread, log_subject::thermal, log_priority::error, true,
     "Error to initialzed sync notify thread.",
     "The thread that waits for the thermal engine could not be started: no thermal configuration "
     "is switched and low power mode is off.",
     "thermal configurations are off: nothing waits for the thermal engine"},
    {log_line::thermal_check, log_subject::thermal, log_priority::info, false,
     "Thermal Config Check Thread Start",
     "The thermal engine is asked every second, 300 times at most, how many descriptors it has; "
     "once the number has stayed for eleven seconds they count as loaded, and event 70 follows.",
     "the wait for the thermal engine begins"},
    {log_line::thermal_not_bound, log_subject::thermal, log_priority::error, true,
     "Thermal Interface is not initialized. Init it first.",
     "A thermal configuration was to be switched and the thermal engine is not bound; the request "
     "is dropped. Start-up's lines say what is missing.",
     "a switch of a thermal configuration is dropped: there is no thermal engine"},
    {log_line::thermal_not_loaded, log_subject::thermal, log_priority::info, false,
     "Thermal Configuration is not loaded yet.",
     "A thermal configuration was to be switched before event 70; the request is dropped. Common "
     "in the first seconds after a start; when it goes on, the thermal engine has no descriptors.",
     "a switch of a thermal configuration is dropped: the thermal engine has not loaded its "
     "descriptors"},
    {log_line::config_symbol, log_subject::thermal, log_priority::error, true, "dlsym failed!, %s",
     "The custom-configuration library lacks an entry point, and the loader's reason. No activity "
     "has a thermal configuration of its own.",
     "the custom-configuration library lacks an entry point: {1}"},
    {log_line::config_unbound, log_subject::thermal, log_priority::error, true,
     "dlsym not finished!",
     "An activity's configuration was asked for while the custom-configuration library is not "
     "bound.",
     "an activity's configuration cannot be looked up: its library is not bound"},
    {log_line::config_set, log_subject::thermal, log_priority::info, false,
     "config set complete : %s, %s",
     "The activity in front has a configuration of its own, which holds now: its action "
     "(TCONF_ENABLE switches a thermal configuration on, any other does nothing) and the action's "
     "argument.",
     "the activity in front sets {1} {2}"},
    {log_line::config_failed, log_subject::thermal, log_priority::info, true,
     "config set failed : %s, %s",
     "The configuration of the activity in front, its action and the argument, could not be "
     "switched on: the thermal engine refused it, has not loaded its descriptors yet or is not "
     "there. The one before is off and is switched off once more with the next activity.",
     "the activity's configuration {1} {2} could not be switched on"},
    {log_line::config_stuck, log_subject::thermal, log_priority::info, true, "restoring failed",
     "The configuration of the activity before could not be switched off; it stays the current "
     "one, and the new activity's is not set.",
     "the configuration of the activity before could not be switched off, so the new one is not "
     "set"},
};

}  // namespace

constinit const std::span<const log_row> log_resource_lines = rows;
