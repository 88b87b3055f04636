// Allocations that fail when told, in a program that has a daemon in it.
#pragma once

// Lets the allocation after `count` others fail, once; a negative count: none. Only allocations
// that can answer null are counted, those of the daemon.
void fail_allocation_after(int count);

// Whether the failure has happened.
bool allocation_has_failed(void);
