// Lines of clients, kernel reports and what is in front.
#include "tools/recording/tables.h"

namespace {

constexpr log_row rows[] = {
    {log_line::client_registered, log_subject::client, log_priority::info, false,
     "Callback function for client <%s> is registered", "Messages of this client will be served.",
     nullptr},
    {log_line::client_twice, log_subject::client, log_priority::error, true,
     "The callback of the client %s is registered already.",
     "A second handler for this client was refused; the first one stays.",
     "a second handler for the client {1} is refused"},
    {log_line::client_memory, log_subject::client, log_priority::error, true,
     "Failed to allocate memory",
     "Memory ran out while a client was registered: its messages will be rejected.",
     "a client's messages will be rejected: no memory to register it"},
    {log_line::socket_failed, log_subject::client, log_priority::error, true,
     "fail to create socket",
     "The local socket \"dvx-client\" could not be had, most often because another daemon has it; "
     "start-up fails next.",
     "the socket for clients could not be had"},
    {log_line::listen_failed, log_subject::client, log_priority::error, true, "listen error",
     "The socket for clients does not listen; start-up fails next.",
     "the socket for clients does not listen"},
    {log_line::listener_thread, log_subject::client, log_priority::error, true,
     "Unable to create pthread to listen",
     "The client listener's thread could not be started; start-up fails next.",
     "the client listener has no thread"},
    {log_line::select_failed, log_subject::client, log_priority::error, true, " %s select error",
     "Waiting for clients has failed, in the operation named, and the listener's thread has ended: "
     "no message is taken any more. Start the daemon again.",
     "no message is taken any more: waiting for clients has failed"},
    {log_line::receive_failed, log_subject::client, log_priority::error, true, "%s recv failed",
     "A client connected and no message came: it closed or failed, or was silent for half a "
     "second. The name is the operation's, not the client's.",
     "a client connected and sent no message"},
    {log_line::client_unknown, log_subject::client, log_priority::error, true,
     "Current Device doesn't support %s handlers.",
     "A message from a sender of this name, which is no client of the daemon; it has no effect. "
     "Look at the name that the sender uses.",
     "a message of {1} has no effect: there is no such client"},
    {log_line::powerhal_code, log_subject::client, log_priority::error, true,
     "Power HAL Handler: Code <%d> is not supported.",
     "A message of the power HAL with this code, which is not one of 0 to 15; it has no effect.",
     "a message of the power HAL has no effect: it has no code {1}"},
    {log_line::dgpc_code, log_subject::client, log_priority::error, true,
     "DGPC Handler: Code <%d> is not supported.",
     "A message of the client dgpc with this code, which is not 16; it has no effect.",
     "a message of dgpc has no effect: it has no code {1}"},
    {log_line::tmr_code, log_subject::client, log_priority::error, true,
     "TMR Handler : Code <%d> is not supported.",
     "A message of the client tmr with this code, which is not 17; it has no effect.",
     "a message of tmr has no effect: it has no code {1}"},
    {log_line::mediahal_code, log_subject::client, log_priority::error, true,
     "Media HAL Handler: Code <%d> is not supported.",
     "A message of the media HAL with this code, which is not 18; it has no effect.",
     "a message of the media HAL has no effect: it has no code {1}"},
    {log_line::vrhal_code, log_subject::client, log_priority::error, true,
     "VR HAL Handler: Code <%d> is not supported.",
     "A message of the VR HAL with this code, which is not 21; it has no effect.",
     "a message of the VR HAL has no effect: it has no code {1}"},
    {log_line::monitor_thread, log_subject::monitor, log_priority::error, true,
     "Error initializing sync notify Thread",
     "The thread that waits on the kernel's nodes could not be started; start-up fails next.",
     "the kernel event monitor has no thread"},
    {log_line::polling_failed, log_subject::monitor, log_priority::error, true, "error in polling",
     "Waiting on the kernel's nodes has failed and the monitor's thread has ended: neither the "
     "panel nor frame intervals are seen any more. Start the daemon again.",
     "panel and frame intervals are not seen any more: waiting on the kernel's nodes has failed"},
    {log_line::trigger_listed, log_subject::app, log_priority::info, false,
     "Activity Trigger : A[%c]",
     "One more app is recognised by its window: the first letter of its package.", nullptr},
    {log_line::trigger_memory, log_subject::app, log_priority::error, true,
     "Memory allocation failed for activity trigger configuration.",
     "Memory ran out for the list of known apps; none is recognised by its window.",
     "known apps are not recognised by their window: no memory for their list"},
    {log_line::running_app_memory, log_subject::app, log_priority::error, true,
     "Failed to initialize event_listener",
     "Memory ran out for the record of what is in front; start-up fails next.",
     "no memory for the record of what is in front"},
    {log_line::app_in_front, log_subject::app, log_priority::debug_powerhal, false, "CA : %s",
     "The app in front, by its package, as the power HAL reports it; event 10 follows.",
     "{1} is the app in front"},
    {log_line::window_in_front, log_subject::app, log_priority::debug_powerhal, false, "CW : %s",
     "The window in front, which is another one than before; event 12 follows.",
     "{1} is the window in front"},
    {log_line::trigger_left, log_subject::app, log_priority::debug_features, false,
     "Clear of callback for %s",
     "The window of this known app is in front no more; the event that says so follows.",
     "the known app {1} is in front no more"},
    {log_line::running_app, log_subject::app, log_priority::info, false,
     "System FW:%d IC:%d SO:%d GT:%d CAPP:%d APP:%x",
     "The app mode is worked out from these, anew after each report: FW 1 when window and activity "
     "in front differ, IC 1 during an incoming call, SO 1 when the screen is off, GT 1 when games "
     "run under the tuner, CAPP the mode until now (-1 none, 0 game, 1 tuned game, 2 navigation, 3 "
     "browser, 4 social, 5 gallery, 8 home), APP the kinds of app in front, a hexadecimal mask of "
     "bits numbered as the modes. The mode is the one bit that is set; none with several bits, the "
     "screen off or the app covered (events 40 and 41).",
     "the app mode, until now {5|game|tuned game|navigation|browser|social|gallery|6|7|home|none}, "
     "is worked out anew: kinds of app 0x{6}, {1|window and activity agree|window and activity "
     "differ}, {2|no call|a call}, screen {3|on|off}, tuner {4|off|on}"},
};

}  // namespace

constinit const std::span<const log_row> log_client_lines = rows;
