// Worker threads: created once, named for `top -H`, never joined.
#pragma once

// Starts a thread running `body`. `name` has at most 15 characters. 0, or a positive errno value.
int thread_start(const char *name, void *(*body)(void *));
