// Custom configurations: a vendor library names, for some activities, an action that holds while
// the activity is in front. Loaded at start-up; used on the client listener thread alone, without a
// lock.
#pragma once

// Loads the library. 0; -ENOENT, -EINVAL or -1, with a log line but for the last.
int custom_config_init(void);

// Replaces the configuration of the activity before by that of this one. 0, also when a switch
// failed, which is logged and leaves the configuration before current; -EINVAL without a library.
int set_custom_config(const char *activity);
