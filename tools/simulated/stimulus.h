// A course of happenings for the simulator, wherever they come from: a recording, a log, a game's
// intervals. Timers and the thermal engine's polls are the simulator's own.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "simulator/simulator.h"
#include "tools/recording/moment.h"
#include "tools/recording/recording.h"
#include "tools/recording/timeline.h"

enum course_kind {
    course_interval,
    course_report,  // of the interval's node, not a number
    course_message,
    course_panel,
    course_property,
    course_answer,
    course_connect,  // the next connections to a service fail, until the next happening
};

struct course_step {
    int64_t time_ns = 0;  // since the course's start
    course_kind kind = course_interval;
    int32_t number = 0;  // interval, errno value; of an answer: whether there is one
    size_t message = 0;  // of `messages`
    std::string name;
    std::string value;
};

struct course {
    simulator_setup setup;
    std::vector<course_step> steps;
    std::vector<dvx_message> messages;
    int64_t end_ns = 0;
    std::string error;                 // empty, or why there is no course
    std::vector<std::string> remarks;  // what it leaves open
};

// What a recording's daemon took up.
course course_of_recording(recording *file);

// The same from a log's text; one without a line of the daemon has an error.
course course_of_log_text(std::string_view text);

// The messages and panel reports that entries of a log tell of; time counts from `start_ns`.
course course_of_log(const std::vector<timeline_entry> &entries, int64_t start_ns);

// A game in front, at 60 frames per second, and its intervals.
course course_of_intervals(const std::vector<double> &intervals_us);

// Adds a message.
void course_add_message(course *what, int64_t time_ns, const dvx_message &message);

// Plays it; each moment of which something came goes to `sink`. Empty, or what went wrong.
std::string course_play(const course &what, const std::function<void(const moment &now)> &sink);
