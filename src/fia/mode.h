// Where the analyser stands: its mode, the record that it works on, and how often a measurement has
// been tried. Nobody else writes these fields. Called with `fia_mutex` held.
#pragma once

#include "fia/records.h"

// Enters PM on the current entry.
void fia_enter_measuring(void);

// Enters AM on the record in use.
void fia_enter_active(void);

// Leaves PM or AM.
void fia_enter_suspended(void);

// Works on this record, the entry or one of its scenes, from now on; null: on none.
void fia_use_record(fia_activity *record);

// Allows a measurement its full number of retries again.
void fia_allow_retries(void);

// Counts one retry. How many there have been.
int32_t fia_count_retry(void);

// Notes that a measurement was started from AM, or that one has been completed.
void fia_note_restart(bool from_active);
