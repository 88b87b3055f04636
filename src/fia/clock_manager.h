// The clock manager: the level of each frequency resource, moved one resource at a time in a fixed
// rotation, within a budget for the CPU clusters together.
//
// Start-up (main) builds the list; afterwards the frame interval analyser alone calls, with
// `fia_mutex` held once its records are published. Nothing is locked here. Arrays of levels are in
// list order: TMK_CLUSTER1, TMK_CLUSTER0, TMK_GPU.
#pragma once

#include <cstdint>

// Binds the library and builds the list. 0, or -EINVAL with the list empty. Without a library it
// succeeds, and every set, scale and clear answers -EINVAL.
int init_fia_clock_manager(void);

// Logs the resources and their levels under debug group 7.
void print_support_clock_info(void);

// Number of resources.
int32_t fia_clock_get_freq_policy(void);

// 1 if no resource is lowered, else 0.
int32_t fia_clock_is_maxfreq(void);

// Writes the levels of the first `count` resources. 0, or -EINVAL when there are not so many; those
// that there are have been written then.
int fia_clock_get_freq(int32_t count, uint32_t *levels);

// Applies `count` levels. 0, or -EINVAL at the first that is refused; those before it stay applied.
int fia_clock_set_freq(int32_t count, const uint32_t *levels);

// Moves `step` levels: up (more frequency) when positive, down when negative; 0 counts a hit at the
// present level. 0, also when nothing can move any further; -EINVAL when a step is refused.
int fia_clock_scale_freq(int32_t step);

// Releases every cap. 0 or -EINVAL.
int fia_clock_clear_freq(void);
