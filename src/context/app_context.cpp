#include "context/app_context.h"

#include <pthread.h>

#include "core/text.h"

namespace {

struct app_name {
    char text[app_name_size];
};

constinit struct {
    pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
    app_name window = {};
    app_name activity = {};
    app_name full_activity = {};
    app_name home_activity = {};
} context;

void set_name(app_name *name, const char *text) {
    pthread_mutex_lock(&context.lock);
    copy_text(name->text, text);
    pthread_mutex_unlock(&context.lock);
}

}  // namespace

const char *get_current_window_name(void) {
    return context.window.text;
}

const char *get_current_activity_name(void) {
    return context.activity.text;
}

const char *get_full_activity_name(void) {
    return context.full_activity.text;
}

const char *get_home_activity_name(void) {
    return context.home_activity.text;
}

void copy_current_window_name(char *name, size_t size) {
    pthread_mutex_lock(&context.lock);
    copy_text(name, size, context.window.text);
    pthread_mutex_unlock(&context.lock);
}

void set_current_window_name(const char *name) {
    set_name(&context.window, name);
}

void set_current_activity_name(const char *name) {
    set_name(&context.activity, name);
}

void set_full_activity_name(const char *name) {
    set_name(&context.full_activity, name);
}

void set_home_activity_name(const char *name) {
    set_name(&context.home_activity, name);
}

const char *cut_full_activity_name(void) {
    pthread_mutex_lock(&context.lock);
    char *cursor = context.full_activity.text;
    const char *first = next_token(&cursor, '/');
    pthread_mutex_unlock(&context.lock);
    return first;
}
