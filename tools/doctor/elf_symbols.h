// What a shared library offers, read from its file: nothing of it runs.
#pragma once

#include <set>
#include <string>

struct elf_symbols {
    std::string error;  // why nothing could be read; empty: all is well
    bool is_there = true;
    std::string processor;
    bool is_64_bit = false;
    std::set<std::string> defined;  // names of dynamic symbols that others may bind
};

// Reads a library or a program.
elf_symbols elf_read(const std::string &path);
