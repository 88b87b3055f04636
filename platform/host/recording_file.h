// The file of a recording: a regular file of its own, in which whole lines stand. One that takes no
// more ends the recording, and the daemon goes on.
//
// Threads write while they are at a happening and while they are at none; the file's lock is the
// innermost.
#pragma once

#include <string>

// Opens the file, in place of one that is there and that somebody may be reading; nothing is waited
// for. False, with a line on standard error, where it cannot be had. Once, before anybody writes.
bool recording_file_open(const char *path);

// Appends lines, each with its end: all of them or none. Any thread may call.
void recording_file_write(const std::string &lines);
