/* System properties of the platform, as far as the daemon uses them. */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/* Sizes of a name and of a value, their terminating NUL included. */
#define PROPERTY_KEY_MAX 32
#define PROPERTY_VALUE_MAX 92

/* Copies the value of `key` to `value` (PROPERTY_VALUE_MAX characters), or `default_value` where
 * the property is unset or empty; a null default leaves the value empty. Returns the length of what
 * was copied. Any thread may call. */
int property_get(const char *key, char *value, const char *default_value);

/* Sets a property. 0, or -1 for a name or a value outside the limits or a value that could not be
 * stored; the old value stays then. Any thread may call. */
int property_set(const char *key, const char *value);

#ifdef __cplusplus
}
#endif
