// The life of the frame interval analyser: its start on a thread of its own, the four reasons to be
// suspended, suspend and resume.
//
// The lock callbacks run on whatever thread raises their event. They hold `fia_lock_mutex`, which
// guards the lock bits, and take `fia_mutex` inside it, never the other way round.
#pragma once

// Binds the library and starts the analyser's thread. 0, or -EINVAL with a log line.
int init_fia(void);

// The analyser's thread: builds the records, registers the callbacks, then idles.
void *frame_interval_analyzer(void *);

// Leaves PM or AM: saves the levels reached, releases every cap. With `fia_lock_mutex` held.
void fia_suspend(void);

// Leaves the suspended mode when no reason is left, and measures the activity in front. With
// `fia_lock_mutex` held.
void fia_resume(void);
