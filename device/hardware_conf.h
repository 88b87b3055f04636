// hardware.conf, what a virtual device's libraries answer: the names that it may use, and what is
// wrong with one. The stand-ins read the file themselves, at each call, and pass over what they do
// not know; this is for people's typos.
#pragma once

#include <string>
#include <vector>

// An entry point of a stand-in library.
struct device_call {
    const char *library;  // file name
    const char *name;
    bool by_argument;  // may be answered by its first argument, a text: NAME.ARGUMENT
};

extern const std::vector<device_call> device_calls_known;

// What the libraries cannot use in the file of the device at `root`, one text a line of it, with
// its number; empty when all is well or there is no file.
std::vector<std::string> device_check_conf(const std::string &root);
