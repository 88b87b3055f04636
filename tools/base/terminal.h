// What standard output is, and sentences that suit it.
#pragma once

#include <stddef.h>

#include <string>

// Columns of the terminal that standard output is; 0 where it is none.
size_t terminal_columns();

// Whether standard output is a terminal that wants colours.
bool wants_colour();

// The text with its lines broken at blanks so that each is at most `columns` wide; what goes on is
// indented by `indent`. A word that is wider stands on a line of its own. As it is for 0 columns.
std::string folded(const std::string &text, size_t indent, size_t columns);

// Prints a line, folded to the terminal's columns where standard output is one.
void print_folded(const std::string &line, size_t indent);
