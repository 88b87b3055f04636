// Lines of start-up, the vendor's libraries and events.
#include "tools/recording/tables.h"

namespace {

constexpr log_row rows[] = {
    {line_started, subject_start, priority_error, false, "Halvane Start Successfully.",
     "Every step of start-up has been taken and the daemon serves. An error by its priority alone.",
     "the daemon has started and serves"},
    {line_no_event_manager, subject_start, priority_error, true, "Failed to init event manager..",
     "The lists of event callbacks could not be made, as memory ran out. The daemon ends with "
     "status 255.",
     "the daemon ends: it could not make its lists of events"},
    {line_no_fps_manager, subject_start, priority_error, true, "Failed to init fps manager..",
     "The hardware library is missing, lacks its frame-rate control (the line before says so), or "
     "that control answered a negative value. No frame rate is ever set and the frame-rate service "
     "hears nothing; mend the library and start the daemon again.",
     "no frame rate is ever set: the frame-rate manager did not start"},
    {line_no_merlak, subject_start, priority_error, true, "This device does not support merlak.",
     "The merlak service is told nothing. In this build the step cannot fail.",
     "the merlak service is told nothing: its notifications could not be set up"},
    {line_no_ie_manager, subject_start, priority_error, true, "Failed to init ie manager..",
     "The hardware library is missing, lacks its image-engine control (the line before says so), "
     "or that control answered a negative value. No image mode is ever set; mend the library and "
     "start the daemon again.",
     "no image mode is ever set: the image-engine manager did not start"},
    {line_no_clock_manager, subject_start, priority_error, true,
     "Failed to init fia clock manager..",
     "The list of frequency resources could not be built; the line before says why. There is no "
     "frame interval analysis, so no frequency is ever capped.",
     "no frequency is ever capped: the list of frequencies could not be built"},
    {line_no_server, subject_start, priority_error, true, "Failed to init server..",
     "The socket for clients could not be opened or has no thread; the line before says which. The "
     "daemon ends with status 255; look for another one that runs.",
     "the daemon ends: it could not serve clients"},
    {line_no_kernel_monitor, subject_start, priority_error, true,
     "Failed to init kernel event monitor..",
     "Said of two steps: the kernel event monitor has no thread, or the handlers of the clients "
     "were not registered, which cannot fail in this build. The daemon ends with status 255.",
     "the daemon ends: panel and frame intervals could not be watched, or clients' handlers not "
     "registered"},
    {line_no_activity_trigger, subject_start, priority_info, true, "No Supporting AT",
     "Well-known apps are not recognised by their window, as memory ran out; the line before says "
     "so.",
     "known apps are not recognised by their window"},
    {line_no_running_app, subject_start, priority_error, true,
     "Failed to init running app manager..",
     "The record of what is in front could not be made, as memory ran out. The daemon ends with "
     "status 255.",
     "the daemon ends: it could not keep track of what is in front"},
    {line_no_policy, subject_start, priority_error, true, "Failed to init policy manager...",
     "The policy has no thread. The daemon ends with status 255.",
     "the daemon ends: the policy has no thread"},
    {line_no_profile_controller, subject_start, priority_info, true, "No Supporting PC",
     "No performance profile is ever held, as memory ran out; the line before says where.",
     "no performance profile is ever held: the profile controller did not start"},
    {line_no_thermal_control, subject_start, priority_info, true, "No Supporting TS",
     "No thermal configuration follows what is in front. In this build the step cannot fail.",
     "no thermal configuration follows what is in front: thermal control did not start"},
    {line_no_osprin, subject_start, priority_info, true, "No support osprin control",
     "The hardware library is missing or lacks one of its three osprin operations; the line before "
     "says which. Games go without osprin control.",
     "games go without osprin control: the hardware library does not have it"},
    {line_no_automode, subject_start, priority_info, true, "No support automode control",
     "Automode is off. In this build the step cannot fail.", "automode is off: it did not start"},
    {line_library_held, subject_library, priority_error, false, "handle already allocated",
     "The hardware library is open already and is used again; a complete start says so five times. "
     "An error by its priority alone.",
     nullptr},
    {line_library_32, subject_library, priority_error, false, "lib32: %s",
     "The hardware library could not be loaded from /vendor/lib, and the loader's reason. It is "
     "looked for in /vendor/lib64 next, so this alone is no failure.",
     nullptr},
    {line_library_64, subject_library, priority_error, true, "lib64: %s",
     "The hardware library could not be loaded from /vendor/lib64 either, and the loader's reason. "
     "Frame rates, image modes, thermal configurations, osprin control and frequency caps are off "
     "until libhwresource.so is in place and the daemon has been started again.",
     "the hardware library cannot be loaded: {1}"},
    {line_custom_library_32, subject_library, priority_error, false, "%s/vendor/lib/libdvxcc.so%s",
     "The loader's reason why the custom-configuration library could not be loaded from "
     "/vendor/lib. It is looked for in /vendor/lib64 next, so this alone is no failure.",
     nullptr},
    {line_custom_library_64, subject_library, priority_error, true, "%s/vendor/lib64/libdvxcc.so%s",
     "The loader's reason why the custom-configuration library could not be loaded from "
     "/vendor/lib64 either. No activity has a thermal configuration of its own until it is in "
     "place and the daemon has been started again.",
     "the custom-configuration library cannot be loaded, so no activity has a thermal "
     "configuration of its own"},
    {line_symbol_missing, subject_library, priority_error, true, "Failed to dlsym %s : %s",
     "The hardware library lacks this entry point, and the loader's reason. The feature that wants "
     "it is off; it needs a library that has it.",
     "the hardware library has no {1}: {2}"},
    {line_file_not_written, subject_library, priority_error, true, "File [%s] Open Failed : %d",
     "A library had the daemon write to a file that could not be opened: its path and a negative "
     "errno value (-2: there is none, -13: not allowed).",
     "a library could not write to {1} (errno {2})"},
    {line_callback_registered, subject_event, priority_debug_events, false,
     "CB[%s] is registered for EV[%d]",
     "A feature, by the name under which it registers, will hear of the event of this number.",
     nullptr},
    {line_event_raised, subject_event, priority_debug_events, false, "EV : %d",
     "The event of this number is raised; its callbacks run next, on this thread.",
     "event {1} is raised"},
    {line_callback_runs, subject_event, priority_debug_events, false,
     "Callback for %s action start",
     "The callback of this registrant runs now; what it says follows.", nullptr},
    {line_event_unknown, subject_event, priority_error, true, "There is no event for %d",
     "A callback was to be registered for an event of this number, which does not exist or has no "
     "list yet. That callback never runs.",
     "a callback for event {1}, which there is not, will never run"},
    {line_callback_memory, subject_event, priority_error, true, "Failed to allocated Memory",
     "Memory ran out while a callback was registered: its feature will not hear of that event.",
     "a feature will not hear of an event: no memory for its callback"},
    {line_event_memory, subject_event, priority_error, true, "Failed to allocate event state",
     "Memory ran out for the lists of events; start-up fails next.",
     "no memory for the lists of events"},
    {line_event_trigger, subject_event, priority_info, false, "EVT %d registered",
     "A callback that was queued for the event of this number before start-up's last step has been "
     "registered behind all others.",
     nullptr},
};

}  // namespace

constinit const std::span<const log_row> log_start_lines = rows;
