// Standard input, output and error of a program.
#pragma once

// Opens /dev/null in place of those that were closed when the program began, so that no file, node
// or socket of its own gets their numbers. Called before anything else is opened.
void standard_files_take_up(void);
