// The virtual device: a directory that stands for "/" of a phone, with the stand-in vendor
// libraries, named pipes as kernel nodes, and files that show what was asked of the hardware. Tools
// and tests; one thread a device.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Files of a device root, below it.
inline constexpr char device_marker[] = "/.dvx-device";  // hardware.conf as the tools wrote it last
inline constexpr char device_calls_log[] = "/calls.log";        // what the libraries were asked
inline constexpr char device_messages_log[] = "/messages.log";  // what dvxctl sent
inline constexpr char device_daemon_log[] = "/dvxd.log";        // standard error of the daemon
inline constexpr char device_recording[] = "/recording.jsonl";  // what the daemon notes
inline constexpr char device_previous_recording[] = "/recording.previous.jsonl";
inline constexpr char device_daemon_pid[] = "/dvxd.pid";
inline constexpr char device_services_log[] = "/services.log";  // what the daemon told services
inline constexpr char device_services_pid[] = "/services.pid";
inline constexpr char device_services_error[] = "/services.err";
inline constexpr char device_conf[] = "/hardware.conf";  // what the libraries answer
inline constexpr char device_panel_node[] = "/sys/class/power/sben/sben_event";
inline constexpr char device_interval_node[] = "/sys/class/power/fbcn/fbcn_intv";

// The image of the device that belongs to this program: ../device beside its directory.
std::string device_image_path(void);

// Whether the device's hardware.conf is somebody's own, and not as the tools wrote it last.
bool device_conf_is_own(const std::string &root);

// Lays out a fresh device below `root`, whose earlier device it replaces but for its last recording
// and, where it is to be kept, a hardware.conf of somebody's own. An empty text, or what went
// wrong; a directory that holds something else is left alone.
std::string device_create(const std::string &root, const std::string &image,
                          bool keep_conf = false);

// Makes room for the recording of another daemon: the last one becomes the previous one.
void device_keep_recording(const std::string &root);

// Whether a device has been laid out at `root`.
bool device_exists(const std::string &root);

// A system property of the device: its value, empty where it is not set; and setting it, false for
// a name or a value that no property can have or that could not be stored.
std::string device_property(const std::string &root, const std::string &name);
bool device_set_property(const std::string &root, const std::string &name,
                         const std::string &value);

// Makes one symbol of a device's library unfindable. False when the library has none of that name.
bool device_hide_symbol(const std::string &library, const std::string &symbol);

// Opens a node of the device for writing reports, each kept apart from the next. A descriptor, or a
// negative errno value; -ENXIO when no daemon reads it.
int device_open_node(const std::string &root, const char *node);

// Reports the panel's power. 0 or a negative errno value.
int device_report_panel(const std::string &root, bool on);

// Reports one frame interval in microseconds; waits while the daemon is behind. 0 or a negative
// errno value.
int device_report_interval(int node_fd, int64_t interval_us);

// Starts `dvxd` on the device, its log going to the device's file. With `die_with_me` it ends when
// this program does. Its process id, or a negative errno value. `device_wait_until_started` answers
// once the daemon serves.
int device_start_daemon(const std::string &root, const std::string &daemon,
                        bool die_with_me = false);

// Starts the stand-ins of the three services that the daemon talks to.
int device_start_services(const std::string &root, bool die_with_me = false);

// Waits until the daemon has logged that it serves, for at most `timeout_ms`; failed: it has ended.
enum device_start_result { device_started, device_start_failed, device_start_timeout };
device_start_result device_wait_until_started(const std::string &root, int pid, int timeout_ms);

// The process id of the device's daemon, or of its stand-in services; 0 when there is none.
int device_daemon_process(const std::string &root);
int device_services_process(const std::string &root);

// Appends a line to a file of the device with the time of the monotonic clock before it, in
// nanoseconds. What could forge a line is replaced; the text as it was noted.
std::string device_append_note(const std::string &path, std::string text);

// Lets a library call answer `value` from now on: "NAME" or "NAME.ARGUMENT" in the device's file.
void device_set_answer(const std::string &root, const std::string &name, const std::string &value);
