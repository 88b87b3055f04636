// A file that a command writes. Nothing of it is at its path until the whole of it is, so what
// stood there before is lost only to what was asked for.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct output_file {
    std::string path;   // as people gave it
    std::string error;  // empty, or why it cannot be written, its path before it
    size_t size = 0;    // bytes that have been taken

    int fd = -1;
    std::string target;   // where it goes: `path` with its links followed; empty: `fd` is that
    std::string beside;   // where it lies meanwhile; empty: it has no name yet
    std::string pending;  // taken and not yet written
};

// Opens a file for writing, beside where it is to go. One of `inputs`, which are about to be read,
// or a file that a running daemon writes, has an error; a device or a pipe is written as it is.
output_file output_open(const std::string &path, const std::vector<std::string> &inputs = {});

// Takes more of the file. False where it takes no more.
bool output_write(output_file *file, std::string_view text);

// Brings the whole of it to its path. Empty, or why it is not there; nothing is left behind then. A
// file with an error stays away.
std::string output_finish(output_file *file);

// Gives the file up; what stood at its path stays.
void output_abandon(output_file *file);

// Opens a file that grows line by line over a long time, and of which the first `kept` bytes stay.
// A program that has it open so already is an error.
output_file output_continue(const std::string &path, size_t kept,
                            const std::vector<std::string> &inputs = {});

// Appends a line at once. False, with the error, where it does not fit whole: nothing of it stays.
bool output_append(output_file *file, const std::string &line);

// Opens, writes and finishes. Empty, or why it cannot be written.
std::string output_whole(const std::string &path, std::string_view text,
                         const std::vector<std::string> &inputs = {});

// Why a file that is to be changed is not one to change: an input, or a running daemon's. Empty
// where it is.
std::string output_check(const std::string &path, const std::vector<std::string> &inputs);
