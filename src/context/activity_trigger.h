// The activity trigger: recognises well-known apps by the name of the window in front and raises
// category events for them, whatever the power HAL reports.
//
// Start-up builds the list; afterwards the client listener thread alone uses it. Nothing is locked.
#pragma once

// Builds the list and registers for window changes. 0, or -ENOMEM with a log line and without a
// registration.
int init_activity_trigger(void);
