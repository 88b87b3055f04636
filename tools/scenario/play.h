// Playing scenarios: one after the other, each on a daemon of its own, with what is expected held
// against what comes.
#pragma once

#include <functional>
#include <string>

#include "tools/scenario/scenario.h"
#include "tools/scenario/target.h"

// Who is told of what happens while a scenario is played; any of them may be empty.
struct audience {
    std::function<void(const scenario_step &step)> on_step;  // before it is played
    std::function<void(const std::string &text)> on_story;
    std::function<void(const record &came)> on_record;
    std::function<void()> on_part_over;  // at the next line of the story, and at the end
};

// Plays one scenario, from the start of its daemon to its end. Empty, or what did not hold, in
// several lines.
std::string play_scenario(const target &on, const scenario &played, const audience &told);

// Plays the scenarios of a file, or of them the one named `only` where that is not empty: in the
// simulator, each in a process of its own, or, with `speed` above 0, on a fresh device at `root`.
// With `show` each line is printed with what followed it. The exit status: 0 when all of them held,
// 1, or 2 for a file that cannot be read.
int play_file(const std::string &path, const std::string &only, const std::string &root,
              double speed, bool show);
