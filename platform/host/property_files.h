// System properties as files, one a property, in a directory: how a host stands in for them, for
// the daemon and for the tools that look at its device. Any thread may call.
#pragma once

#include <cstddef>

// Reads the value of `key` into `value` (PROPERTY_VALUE_MAX characters), cut to what a property can
// hold. Its length; 0 with an empty value when there is none.
size_t property_file_read(const char *directory, const char *key, char *value);

// Replaces the value of `key` atomically. 0, or -1 for a name or a value outside the limits or a
// value that could not be stored; the old value stays then.
int property_file_write(const char *directory, const char *key, const char *value);
