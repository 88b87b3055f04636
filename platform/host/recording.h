// Recording on the host: DVXD_RECORD names a file to which each happening goes as JSON lines, first
// what was taken, with what the platform answered on the way where that cannot be told, then what
// came out. docs/recordings.md has the format. The platform's operations report here; what a thread
// says while it is at no happening is noted by itself.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/recording.h"

// Whether this process records. The first call opens the file.
bool recording_is_on(void);

// What came out: a line of the log, a property that was set, a library's call, a message to another
// service.
void recording_note_log(int priority, const char *tag, const char *text);
void recording_note_property(const char *name, const char *value);
void recording_note_call(const char *call);
void recording_note_message(const void *bytes, size_t size);

// What was asked of the platform and answered. Each counts as one question of its happening; the
// answer is noted where a replay could not know it.
void recording_note_clock(int64_t now_ns);
void recording_note_lookup(const char *name, const char *value);  // of a property, as it is set
void recording_note_answer(const char *name, const char *text);   // of a library; null: none
void recording_note_library(const char *name, bool found);        // or an entry point
void recording_note_connect(const char *socket, int error);       // 0 or an errno value
void recording_note_sent(long result, size_t size);

// Has a stand-in library of the device report its calls, one that is open, or RTLD_DEFAULT for
// those that the program is linked with.
void recording_observe_library(void *library);
