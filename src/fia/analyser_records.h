// Building the analyser's records, and taking them down again after a start-up that failed. The
// analyser's thread alone calls, before the records are published.
#pragma once

// Builds the state, the activity table and the statistics. 0, or a negative errno value with a log
// line; what was built stays for fia_free_records.
int fia_create_records(void);

// Frees whatever there is; fia_free_activities first, as the library is told in between.
void fia_free_activities(void);
void fia_free_records(void);
