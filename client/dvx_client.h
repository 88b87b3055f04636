/* How a platform service talks to dvxd: one message of 284 bytes over one connection to the local
 * socket "dvx-client". There is no reply; the daemon closes the connection once the message has had
 * its whole effect.
 *
 *     struct dvx_message message;
 *     dvx_message_init(&message, "powerhal", DVX_CODE_WINDOW);
 *     dvx_message_set_text(&message, "com.android.chrome");
 *     if (dvx_message_send(&message) < 0) ...
 *
 * Any thread may call; nothing is kept between calls. C11 or C++11.
 */
#pragma once

#include <errno.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#ifdef __cplusplus
extern "C" {
#define DVX_STATIC_ASSERT static_assert
#else
#define DVX_STATIC_ASSERT _Static_assert
#endif

#define DVX_CLIENT_SOCKET "dvx-client" /* in the abstract namespace */

#define DVX_CLIENT_NAME_SIZE 20 /* at most 19 characters and a NUL */
#define DVX_PAYLOAD_SIZE 256
#define DVX_PAYLOAD_VALUES 64

struct dvx_message {
    char client[DVX_CLIENT_NAME_SIZE]; /* who sends, padded with NUL */
    int32_t unused;                    /* 0 */
    int32_t code;                      /* what is meant; see below */
    union {
        int32_t values[DVX_PAYLOAD_VALUES];
        char text[DVX_PAYLOAD_SIZE]; /* at most 255 characters and a NUL */
    } payload;
};

DVX_STATIC_ASSERT(sizeof(struct dvx_message) == 284, "one message is 284 bytes");
DVX_STATIC_ASSERT(offsetof(struct dvx_message, client) == 0, "offset of client");
DVX_STATIC_ASSERT(offsetof(struct dvx_message, unused) == 20, "offset of unused");
DVX_STATIC_ASSERT(offsetof(struct dvx_message, code) == 24, "offset of code");
DVX_STATIC_ASSERT(offsetof(struct dvx_message, payload) == 28, "offset of payload");

/* Codes, by the client whose they are. "on" is a value that is not 0. */
enum dvx_code {
    /* "powerhal" */
    DVX_CODE_GAME = 0,           /* values: tuner mode, game on, frames per second, of-value */
    DVX_CODE_BROWSER = 1,        /* value: a browser is in front */
    DVX_CODE_SNS = 2,            /* value: a social app is in front */
    DVX_CODE_GEO = 3,            /* value: a navigation app is in front */
    DVX_CODE_WINDOW = 4,         /* text: name of the window in front */
    DVX_CODE_APP = 5,            /* text: package, or package/class */
    DVX_CODE_ACTIVITY = 6,       /* text: package/class */
    DVX_CODE_GAME_OPTIMIZER = 7, /* value: the Game Optimizer is on */
    DVX_CODE_INTERACTION = 8,    /* the screen was touched */
    DVX_CODE_ROTATION = 9,       /* the screen was rotated */
    DVX_CODE_FPS_LOCK = 10,      /* value: the frame rate is locked */
    DVX_CODE_SOFT_KEY = 11,      /* a soft key was pressed */
    DVX_CODE_ENCODE = 12,        /* value: the camera records */
    DVX_CODE_INCOMING_CALL = 13, /* value: a call comes in */
    DVX_CODE_3RD_ENCODE = 14,    /* value: another app's camera records */
    DVX_CODE_HOME = 15, /* text: state (1 shown, 2 with live wallpaper, else left) ":" name */
    DVX_CODE_FPS = 16,  /* "dgpc", value: frames per second, 0 or less: none */
    DVX_CODE_TIMED_MITIGATION = 17, /* "tmr", value: milliseconds */
    DVX_CODE_VIDEO_DECODE = 18,     /* "mediahal", value: a video is decoded */
    DVX_CODE_VR = 21,               /* "vrhal", value: VR mode is on */
    DVX_CODE_ANY = 0, /* "automode", value: 0 off, 1 on, 2 touch, 3 resume, 4 game exit;
                         "lowpowermode", values: on, mode (1 or 2), cap frame rate */
};

/* Copies a text to a zeroed field of `size` bytes, cut so that a NUL stays behind it. */
static inline void dvx_copy_text(char *field, size_t size, const char *text) {
    const char *end = (const char *)memchr(text, 0, size - 1);
    memcpy(field, text, end != NULL ? (size_t)(end - text) : size - 1);
}

/* Starts a message without payload. A longer client name is cut. */
static inline void dvx_message_init(struct dvx_message *message, const char *client, int32_t code) {
    memset(message, 0, sizeof(*message));
    dvx_copy_text(message->client, sizeof(message->client), client);
    message->code = code;
}

/* Sets the payload to a text; a longer one is cut at 255 characters. */
static inline void dvx_message_set_text(struct dvx_message *message, const char *text) {
    memset(&message->payload, 0, sizeof(message->payload));
    dvx_copy_text(message->payload.text, sizeof(message->payload.text), text);
}

/* Connects to the daemon: a descriptor, or a negative errno value. */
static inline int dvx_client_connect(void) {
    struct sockaddr_un address;
    const size_t length = strlen(DVX_CLIENT_SOCKET);
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return -errno;
    memset(&address, 0, sizeof(address));
    address.sun_family = AF_UNIX;
    memcpy(address.sun_path + 1, DVX_CLIENT_SOCKET, length);
    if (connect(fd, (const struct sockaddr *)&address,
                (socklen_t)(offsetof(struct sockaddr_un, sun_path) + 1 + length)) != 0) {
        const int error = errno;
        close(fd);
        return -error;
    }
    return fd;
}

/* Sends a message over a connection of its own: 0, or a negative errno value. It returns when the
 * message is on its way, not when it has had its effect. */
static inline int dvx_message_send(const struct dvx_message *message) {
    ssize_t sent;
    int error;
    const int fd = dvx_client_connect();
    if (fd < 0)
        return fd;
    sent = send(fd, message, sizeof(*message), MSG_NOSIGNAL);
    error = sent < 0 ? errno : EIO;
    close(fd);
    return sent == (ssize_t)sizeof(*message) ? 0 : -error;
}

/* The same, and waits until the daemon has closed the connection, that is until the message has had
 * its whole effect. */
static inline int dvx_message_send_and_wait(const struct dvx_message *message) {
    ssize_t count;
    char reply;
    int error;
    const int fd = dvx_client_connect();
    if (fd < 0)
        return fd;
    count = send(fd, message, sizeof(*message), MSG_NOSIGNAL);
    error = count < 0 ? errno : EIO;
    if (count == (ssize_t)sizeof(*message)) {
        while ((count = recv(fd, &reply, sizeof(reply), 0)) < 0 && errno == EINTR) {
        }
        error = count < 0 ? errno : 0;
    }
    close(fd);
    return -error;
}

#undef DVX_STATIC_ASSERT
#ifdef __cplusplus
}
#endif
