// Lines of start-up, the vendor's libraries and events.
#include "tools/recording/tables.h"

namespace {

constexpr log_row rows[] = {
    {log_line::started, log_subject::start, log_priority::error, false,
     "Halvane Start Successfully.",
     "Every step of start-up has been taken and the daemon serves. An error by its priority alone.",
     "the daemon has started and serves"},
    {log_line::no_event_manager, log_subject::start, log_priority::error, true,
     "Failed to init event manager..",
     "The lists of event callbacks could not be made, as memory ran out. The daemon ends with "
     "status 255.",
     "the daemon ends: it could not make its lists of events"},
    {log_line::no_fps_manager, log_subject::start, log_priority::error, true,
     "Failed to init fps manager..",
     "The hardware library is missing, lacks its frame-rate control (the line before says so), or "
     "that control answered a negative value. No frame rate is ever set and the frame-rate service "
     "hears nothing; mend the library and start the daemon again.",
     "no frame rate is ever set: the frame-rate manager did not start"},
    {log_line::no_merlak, log_subject::start, log_priority::error, true,
     "This device does not support merlak.",
     "The merlak service is told nothing. In this build the step cannot fail.",
     "the merlak service is told nothing: its notifications could not be set up"},
    {log_line::no_ie_manager, log_subject::start, log_priority::error, true,
     "Failed to init ie manager..",
     "The hardware library is missing, lacks its image-engine control (the line before says so), "
     "or that control answered a negative value. No image mode is ever set; mend the library and "
     "start the daemon again.",
     "no image mode is ever set: the image-engine manager did not start"},
    {log_line::no_clock_manager, log_subject::start, log_priority::error, true,
     "Failed to init fia clock manager..",
     "The list of frequency resources could not be built; the line before says why. There is no "
     "frame interval analysis, so no frequency is ever capped.",
     "no frequency is ever capped: the list of frequencies could not be built"},
    {log_line::no_server, log_subject::start, log_priority::error, true, "Failed to init server..",
     "The socket for clients could not be opened or has no thread; the line before says which. The "
     "daemon ends with status 255; look for another one that runs.",
     "the daemon ends: it could not serve clients"},
    {log_line::no_kernel_monitor, log_subject::start, log_priority::error, true,
     "Failed to init kernel event monitor..",
     "Said of two steps: the kernel event monitor has no thread, or the handlers of the clients "
     "were not registered, which cannot fail in this build. The daemon ends with status 255.",
     "the daemon ends: panel and frame intervals could not be watched, or clients' handlers not "
     "registered"},
    {log_line::no_activity_trigger, log_subject::start, log_priority::info, true,
     "No Supporting AT",
     "Well-known apps are not recognised by their window, as memory ran out; the line before says "
     "so.",
     "known apps are not recognised by their window"},
    {log_line::no_running_app, log_subject::start, log_priority::error, true,
     "Failed to init running app manager..",
     "The record of what is in front could not be made, as memory ran out. The daemon ends with "
     "status 255.",
     "the daemon ends: it could not keep track of what is in front"},
    {log_line::no_policy, log_subject::start, log_priority::error, true,
     "Failed to init policy manager...",
     "The policy has no thread. The daemon ends with status 255.",
     "the daemon ends: the policy has no thread"},
    {log_line::no_profile_controller, log_subject::start, log_priority::info, true,
     "No Supporting PC",
     "No performance profile is ever held, as memory ran out; the line before says where.",
     "no performance profile is ever held: the profile controller did not start"},
    {log_line::no_thermal_control, log_subject::start, log_priority::info, true, "No Supporting TS",
     "No thermal configuration follows what is in front. In this build the step cannot fail.",
     "no thermal configuration follows what is in front: thermal control did not start"},
    {log_line::no_osprin, log_subject::start, log_priority::info, true, "No support osprin control",
     "The hardware library is missing or lacks one of its three osprin operations; the line before "
     "says which. Games go without osprin control.",
     "games go without osprin control: the hardware library does not have it"},
    {log_line::no_automode, log_subject::start, log_priority::info, true,
     "No support automode control", "Automode is off. In this build the step cannot fail.",
     "automode is off: it did not start"},
    {log_line::library_held, log_subject::library, log_priority::error, false,
     "handle already allocated",
     "The hardware library is open already and is used again; a complete start says so five times. "
     "An error by its priority alone.",
     nullptr},
    {log_line::library_32, log_subject::library, log_priority::error, false, "lib32: %s",
     "The hardware library could not be loaded from /vendor/lib, and the loader's reason. It is "
     "looked for in /vendor/lib64 next, so this alone is no failure.",
     nullptr},
    {log_line::library_64, log_subject::library, log_priority::error, true, "lib64: %s",
     "The hardware library could not be loaded from /vendor/lib64 either, and the loader's reason. "
     "Frame rates, image modes, thermal configurations, osprin control and frequency caps are off "
     "until libhwresource.so is in place and the daemon has been started again.",
     "the hardware library cannot be loaded: {1}"},
    {log_line::custom_library_32, log_subject::library, log_priority::error, false,
     "%s/vendor/lib/libdvxcc.so%s",
     "The loader's reason why the custom-configuration library could not be loaded from "
     "/vendor/lib. It is looked for in /vendor/lib64 next, so this alone is no failure.",
     nullptr},
    {log_line::custom_library_64, log_subject::library, log_priority::error, true,
     "%s/vendor/lib64/libdvxcc.so%s",
     "The loader's reason why the custom-configuration library could not be loaded from "
     "/vendor/lib64 either. No activity has a thermal configuration of its own until it is in "
     "place and the daemon has been started again.",
     "the custom-configuration library cannot be loaded, so no activity has a thermal "
     "configuration of its own"},
    {log_line::symbol_missing, log_subject::library, log_priority::error, true,
     "Failed to dlsym %s : %s",
     "The hardware library lacks this entry point, and the loader's reason. The feature that wants "
     "it is off; it needs a library that has it.",
     "the hardware library has no {1}: {2}"},
    {log_line::file_not_written, log_subject::library, log_priority::error, true,
     "File [%s] Open Failed : %d",
     "A library had the daemon write to a file that could not be opened: its path and a negative "
     "errno value (-2: there is none, -13: not allowed).",
     "a library could not write to {1} (errno {2})"},
    {log_line::callback_registered, log_subject::event, log_priority::debug_events, false,
     "CB[%s] is registered for EV[%d]",
     "A feature, by the name under which it registers, will hear of the event of this number.",
     nullptr},
    {log_line::event_raised, log_subject::event, log_priority::debug_events, false, "EV : %d",
     "The event of this number is raised; its callbacks run next, on this thread.",
     "event {1} is raised"},
    {log_line::callback_runs, log_subject::event, log_priority::debug_events, false,
     "Callback for %s action start",
     "The callback of this registrant runs now; what it says follows.", nullptr},
    {log_line::event_unknown, log_subject::event, log_priority::error, true,
     "There is no event for %d",
     "A callback was to be registered for an event of this number, which does not exist or has no "
     "list yet. That callback never runs.",
     "a callback for event {1}, which there is not, will never run"},
    {log_line::callback_memory, log_subject::event, log_priority::error, true,
     "Failed to allocated Memory",
     "Memory ran out while a callback was registered: its feature will not hear of that event.",
     "a feature will not hear of an event: no memory for its callback"},
    {log_line::event_memory, log_subject::event, log_priority::error, true,
     "Failed to allocate event state",
     "Memory ran out for the lists of events; start-up fails next.",
     "no memory for the lists of events"},
    {log_line::event_trigger, log_subject::event, log_priority::info, false, "EVT %d registered",
     "A callback that was queued for the event of this number before start-up's last step has been "
     "registered behind all others.",
     nullptr},
};

}  // namespace

constinit const std::span<const log_row> log_start_lines = rows;
