#include "fia/mode.h"

void fia_enter_measuring(void) {
    fia.data->cur = fia_current_entry();
    fia.data->mode = fia_mode_pm;
}

void fia_enter_active(void) {
    fia.data->mode = fia_mode_am;
}

void fia_enter_suspended(void) {
    fia.data->mode = fia_mode_suspended;
}

void fia_use_record(fia_activity *record) {
    fia.data->cur = record;
}

void fia_allow_retries(void) {
    fia.data->pm_retry = 0;
}

int32_t fia_count_retry(void) {
    return ++fia.data->pm_retry;
}

void fia_note_restart(bool from_active) {
    fia.data->restarted = from_active ? 1 : 0;
}
