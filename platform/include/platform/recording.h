// The happenings that the daemon takes up, one after the other: what a recording of it is made of.
// A host that is told to (DVXD_RECORD) lets one thread at a time work at one, so that the order in
// which they are noted is the order that was; else, and on a phone, nothing is waited for or noted.
#pragma once

enum recorded_kind {
    recorded_load,      // what comes before main
    recorded_start,     // start-up
    recorded_analyser,  // the analyser's own start, on its thread
    recorded_message,   // a client's, dvx_message
    recorded_panel,     // a report of the panel's node, text
    recorded_interval,  // a report of the interval's node, text
    recorded_timers,    // a round of the timer thread
    recorded_thermal,   // a poll of the thermal engine
};
constexpr int recorded_kinds = 8;

// Begins a happening on the calling thread, which is at none. `taken` is the message or the report,
// where the kind has one; it stays where it is until the end.
void recording_begin(recorded_kind kind, const void *taken = nullptr);

// Ends it. Where nothing has happened in it, it is not noted.
void recording_end(bool happened = true);
