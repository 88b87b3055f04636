/* Stand-in for the custom-configuration library. An activity's configuration stands in
 * hardware.conf: "get_custom_config.ACTIVITY = NAME VALUE". */
#include <string.h>

#include "standin.h"

struct custom_config {
    char config_name[256];
    char config_value[256];
};

int init_white_list(void);
int get_custom_config(const char *activity, struct custom_config *out);

int init_white_list(void) {
    standin_record("init_white_list", "%s", "");
    return standin_answer("init_white_list", 0);
}

int get_custom_config(const char *activity, struct custom_config *out) {
    char text[sizeof(*out)];
    standin_record("get_custom_config", " %s", activity);
    if (standin_text("get_custom_config", activity, text, sizeof(text)) < 0)
        return 0;
    memset(out, 0, sizeof(*out));
    char *value = strchr(text, ' ');
    if (value != NULL) {
        *value++ = '\0';
        memcpy(out->config_value, value, strnlen(value, sizeof(out->config_value) - 1));
    }
    memcpy(out->config_name, text, strnlen(text, sizeof(out->config_name) - 1));
    return 1;
}
