/* What all stand-in vendor libraries do: record each call and answer what the device's file says.
 *
 * A call is one line "MONOTONIC_NS TID NAME ARG..." appended to $DVXD_ROOT/calls.log with one
 * write. The answer is 0, or what $DVXD_ROOT/hardware.conf says, read at each call: "NAME = VALUE",
 * or "NAME.ARG = VALUE" for calls whose first argument is that text. "NAME.delay_ms = MS" makes a
 * call slow. In a process that simulates a daemon, both are the simulator's. Any thread may call.
 */
#pragma once

/* Has every call and every answer told to whoever records besides; null: none. */
void standin_observe(void (*note_call)(const char *call),
                     void (*note_answer)(const char *name, const char *text));

/* Records a call; `format` and what follows write its arguments, each after a blank. */
void standin_record(const char *name, const char *format, ...)
    __attribute__((format(printf, 2, 3)));

/* What the call answers. `argument` is its first argument where that is a text, else null. */
int standin_answer(const char *name, const char *argument);

/* The text behind "NAME.ARG = " in hardware.conf. Its length, or -1 when there is no such line. */
int standin_text(const char *name, const char *argument, char *text, unsigned long size);
