// The life of the frame interval analyser: its start on a thread of its own, the four reasons to be
// suspended, suspend and resume.
//
// The lock callbacks run on whatever thread raises their event. They hold `fia_lock_mutex`, which
// guards the lock bits, and take `fia_mutex` inside it, never the other way round.
#pragma once

// Binds the library and starts the analyser's thread. 0, or -EINVAL with a log line.
int init_fia(void);

// The start of the analyser: builds the records, registers the callbacks and publishes. 0, or a
// negative value or a library's answer with a log line; what was built is for fia_stop_analyser.
int fia_start_analyser(void);

// Takes down what a start that failed has built; nobody may use the records any more.
void fia_stop_analyser(void);

// The analyser's thread: starts, then idles.
void *frame_interval_analyzer(void *);

// Leaves PM or AM: saves the levels reached, releases every cap. With `fia_lock_mutex` held.
void fia_suspend(void);

// Leaves the suspended mode when no reason is left, and measures the activity in front. With
// `fia_lock_mutex` held.
void fia_resume(void);
