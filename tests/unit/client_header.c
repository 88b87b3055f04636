/* The header for services in plain C99, over a C library that knows how large its arguments are and
 * stops a process that claims more of them, as a phone's does. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define SIZED __attribute__((pass_object_size(0)))
#define FORTIFIED static inline __attribute__((unused))

static __attribute__((noinline)) void claim(const char *operation, size_t size, size_t object) {
    if (size <= object)
        return;
    fprintf(stderr, "%s: prevented access to %zu bytes of %zu\n", operation, size, object);
    abort();
}

FORTIFIED void *sized_memchr(const void *const text SIZED, int byte, size_t size) {
    claim("memchr", size, __builtin_object_size(text, 0));
    return memchr(text, byte, size);
}

FORTIFIED void *sized_memcpy(void *const to SIZED, const void *const from SIZED, size_t size) {
    claim("memcpy to", size, __builtin_object_size(to, 0));
    claim("memcpy from", size, __builtin_object_size(from, 0));
    return memcpy(to, from, size);
}

FORTIFIED void *sized_memset(void *const to SIZED, int byte, size_t size) {
    claim("memset", size, __builtin_object_size(to, 0));
    return memset(to, byte, size);
}

FORTIFIED size_t sized_strnlen(const char *const text SIZED, size_t size) {
    size_t length = 0;
    claim("strnlen", size, __builtin_object_size(text, 0));
    while (length < size && text[length] != '\0')
        ++length;
    return length;
}

#define memchr sized_memchr
#define memcpy sized_memcpy
#define memset sized_memset
#define strnlen sized_strnlen

#include "client/dvx_client.h"

static int failures = 0;

static void expect(int holds, const char *what) {
    if (holds)
        return;
    fprintf(stderr, "not so: %s\n", what);
    ++failures;
}

int main(void) {
    struct dvx_message message;
    char long_text[300];
    memset(long_text, 'n', sizeof(long_text));
    long_text[sizeof(long_text) - 1] = '\0';

    expect(dvx_message_init(&message, DVX_CLIENT_POWERHAL, DVX_CODE_WINDOW) == 0, "a client");
    expect(strcmp(message.client, "powerhal") == 0 && message.client[19] == '\0', "its name");
    dvx_message_set_text(&message, "com.android.chrome");
    expect(strcmp(message.payload.text, "com.android.chrome") == 0, "a short text");
    dvx_message_set_text(&message, long_text);
    expect(strlen(message.payload.text) == 255, "a long text is cut");
    dvx_message_set_text(&message, "");
    expect(message.payload.values[63] == 0 && message.payload.text[0] == '\0', "a text is zeroed");

    expect(dvx_message_init(&message, "a-name-of-nineteen-", 7) == 0, "19 characters");
    expect(dvx_message_init(&message, "a-name-of-20-letters", 7) == -EINVAL, "20 characters");
    expect(message.client[0] == '\0' && message.code == 0, "what is refused is nobody's");
    return failures == 0 ? 0 : 1;
}
