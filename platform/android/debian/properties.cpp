// System properties over libbase's, whose store on a desk is the process's own and empty at first.
#include <android-base/properties.h>
#include <cutils/properties.h>
#include <string.h>

extern "C" int property_get(const char *key, char *value, const char *default_value) {
    const std::string found =
        android::base::GetProperty(key, default_value != nullptr ? default_value : "");
    const size_t length = found.copy(value, PROPERTY_VALUE_MAX - 1);
    value[length] = '\0';
    return static_cast<int>(length);
}

extern "C" int property_set(const char *key, const char *value) {
    return strlen(value) < PROPERTY_VALUE_MAX && android::base::SetProperty(key, value) ? 0 : -1;
}
