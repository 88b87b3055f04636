// The activity table and the scene memory: what was learned of each activity, so that a known scene
// need not be measured again. This module remembers and compares; whoever calls changes the mode.
// Called with `fia_mutex` held.
#pragma once

#include "fia/records.h"

// The slot that a name hashes to, 0 to 22.
int32_t fia_name_hash(const char *name);

// Index of the valid entry of that name, or -1.
int32_t fia_is_activity_in_list(int32_t hash, const char *name);

// Makes the entry at `index` the current activity's.
void fia_use_activity(int32_t index);

// Gives the activity an entry, at the expense of another where all are in use, and makes it
// current. The entry's index.
int32_t fia_save_activity(int32_t hash, const char *name);

// Removes the scene that follows `record`, an entry or a scene; the caller counts.
void fia_remove_scene(fia_activity *record);

// Removes all scenes of an entry.
void fia_remove_all_scenes(fia_activity *entry);

// Counts, for each scene of the current activity, whether an interval in `bucket` with this
// variance belongs to it.
void fia_count_scene_hits(uint32_t bucket, uint64_t var);

// The scene that has matched best since the last selection and well enough, or null. Starts the
// next round of counting.
fia_activity *fia_select_scene(void);

// Appends the current entry's measurement to its scenes, the oldest giving way to a sixth. The new
// scene, or null with a log line when memory runs out; the chain is as it was then.
fia_activity *fia_store_scene(void);

// 1 if the moving averages have left the profile in use, which allows a new measurement all its
// retries; else 0.
int32_t fia_is_scene_changed(void);
