// The lab's runs as recordings.
#pragma once

#include <string>
#include <vector>

#include "tools/base/output_file.h"
#include "tools/lab/plan.h"
#include "tools/lab/run.h"
#include "tools/recording/happening.h"
#include "tools/recording/recording.h"

// The lab's clock when a run begins.
inline constexpr int64_t lab_boot_ns = 1000 * INT64_C(1000000000);

// The file of one of a game's runs; its name has `run` behind the game's.
output_file run_recording_open(const lab_setup &setup, const game_work &game, const char *run);

// The header of a run with these figures.
recording_header run_recording_header(const simulated_figures &figures);

// A game that comes to the front, and a frame's interval at its end.
std::vector<happening> run_coming(const std::string &game);
happening run_interval(double interval_us, double time_us);

// Plays a game without the daemon, and records it: without caps, or, where a plan has some, under
// that until it ends. Empty, or why it could not be written.
std::string run_record_alone(const lab_setup &setup, const game_work &game, uint64_t seed,
                             const hold_plan &plan, const char *run);
