// Playing scenarios: one after the other, each on a daemon of its own, with what is expected held
// against what comes.
#pragma once

#include <string>

#include "tools/scenario/players.h"
#include "tools/scenario/scenario.h"

// Who is told of what happens while a scenario is played; any of them may be null.
struct audience {
    void (*step)(const scenario_step &step);  // before it is played, but for the story's lines
    void (*story)(const std::string &text);
    void (*record)(const timeline_entry &entry);
    void (*part_over)();  // at the next line of the story, and at the end
};

// Plays one scenario, from the start of its daemon to its end. Empty, or what did not hold, in
// several lines.
std::string play_scenario(const player &by, const scenario &what, const audience &told);

// Plays the scenarios of a file, or of them the one named `only` where that is not empty: in the
// simulator, each in a process of its own, or, with `speed` above 0, on a fresh device at `root`.
// With `show` each line is printed with what followed it. The exit status: 0 when all of them held,
// 1, or 2 for a file that cannot be read.
int play_file(const std::string &path, const std::string &only, const std::string &root,
              double speed, bool show);
