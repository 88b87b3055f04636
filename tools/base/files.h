// Small files, read as a whole or line by line, and what lies beside this program.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// A whole file, an attribute of the kernel too; empty where it cannot be read.
std::string read_file(const std::string &path);

// How many bytes a file has; 0 where there is none.
int64_t file_size(const std::string &path);

// The lines of a text file from `*offset` on, which moves behind the last whole line. One that has
// become shorter is read from its beginning.
std::vector<std::string> read_lines(const std::string &path, int64_t *offset);

// The path of a program, or of another file, beside this program.
std::string sibling_program(const std::string &name);
