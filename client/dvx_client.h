/* How a platform service talks to dvxd: one message of 284 bytes over one connection to the local
 * socket "dvx-client". There is no reply; the daemon closes the connection once the message has had
 * its whole effect. It serves one connection at a time and gives a client that stays silent half a
 * second, so send right after connecting, as the operations below do.
 *
 *     struct dvx_message message;
 *     dvx_message_init(&message, DVX_CLIENT_POWERHAL, DVX_CODE_WINDOW);
 *     dvx_message_set_text(&message, "com.android.chrome");
 *     if (dvx_message_send(&message, DVX_TIMEOUT_HAL_MS) < 0) ...
 *
 * Any thread may call; nothing is kept between calls. C99 or C++11.
 */
#pragma once

#include <errno.h>
#include <poll.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <time.h>
#include <unistd.h>

#ifdef __cplusplus
extern "C" {
#endif

#define DVX_VERSION "0.9.0"

#define DVX_CLIENT_SOCKET "dvx-client" /* in the abstract namespace */

/* Who may send; the codes below are grouped by them. */
#define DVX_CLIENT_POWERHAL "powerhal"
#define DVX_CLIENT_DGPC "dgpc"
#define DVX_CLIENT_TMR "tmr"
#define DVX_CLIENT_MEDIAHAL "mediahal"
#define DVX_CLIENT_AUTOMODE "automode"
#define DVX_CLIENT_LOWPOWERMODE "lowpowermode"
#define DVX_CLIENT_VRHAL "vrhal"

/* How long a HAL should let itself be kept waiting, as in its touch path: a message takes a tenth
 * of a millisecond, and one that a busy daemon does not take in this time is better lost. */
#define DVX_TIMEOUT_HAL_MS 20

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

/* The layout is the protocol: an array of a negative size refuses another one. */
typedef char dvx_assert_message_size[sizeof(struct dvx_message) == 284 ? 1 : -1];
typedef char dvx_assert_client_offset[offsetof(struct dvx_message, client) == 0 ? 1 : -1];
typedef char dvx_assert_unused_offset[offsetof(struct dvx_message, unused) == 20 ? 1 : -1];
typedef char dvx_assert_code_offset[offsetof(struct dvx_message, code) == 24 ? 1 : -1];
typedef char dvx_assert_payload_offset[offsetof(struct dvx_message, payload) == 28 ? 1 : -1];

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

/* Copies a text to a zeroed field of `size` bytes, cut so that a NUL stays behind it. Nothing
 * behind the text's end is touched, nor claimed to be there, as fortified C libraries stop a
 * process that does. */
static inline void dvx_copy_text(char *field, size_t size, const char *text) {
    size_t i;
    for (i = 0; i + 1 < size && text[i] != '\0'; ++i)
        field[i] = text[i];
}

/* Starts a message without payload. 0, or -EINVAL for a client name of more than 19 characters; the
 * message is all zero then, and no client's. */
static inline int dvx_message_init(struct dvx_message *message, const char *client, int32_t code) {
    memset(message, 0, sizeof(*message));
    dvx_copy_text(message->client, sizeof(message->client), client);
    if (strcmp(message->client, client) != 0) {
        memset(message->client, 0, sizeof(message->client));
        return -EINVAL;
    }
    message->code = code;
    return 0;
}

/* Sets the payload to a text; a longer one is cut at 255 characters. */
static inline void dvx_message_set_text(struct dvx_message *message, const char *text) {
    memset(&message->payload, 0, sizeof(message->payload));
    dvx_copy_text(message->payload.text, sizeof(message->payload.text), text);
}

/* Milliseconds of a clock that limits are counted on. */
static inline int64_t dvx_now_ms(void) {
#ifdef CLOCK_MONOTONIC
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (int64_t)now.tv_sec * 1000 + now.tv_nsec / 1000000;
#else /* plain C99 shows only this one; a clock that is set shortens or stretches a limit */
    struct timeval now;
    gettimeofday(&now, NULL);
    return (int64_t)now.tv_sec * 1000 + now.tv_usec / 1000;
#endif
}

/* Waits until a byte or the end can be read from `fd`, or, without one (-1), for a millisecond; not
 * beyond `deadline_ms`, nor at all once it has passed; negative: no limit. 1 when there is
 * something to read, else 0. */
static inline int dvx_wait(int fd, int64_t deadline_ms) {
    struct pollfd wait;
    int64_t left_ms = -1;
    wait.fd = fd;
    wait.events = POLLIN;
    wait.revents = 0;
    if (deadline_ms >= 0) {
        left_ms = deadline_ms - dvx_now_ms();
        left_ms = left_ms < 0 ? 0 : left_ms > INT32_MAX ? INT32_MAX : left_ms;
    }
    if (fd < 0 && left_ms != 0)
        left_ms = 1;
    return poll(&wait, 1, (int)left_ms) > 0 ? 1 : 0;
}

/* When a limit that begins now is over; -1 for a negative one, which is none. */
static inline int64_t dvx_deadline_ms(int timeout_ms) {
    return timeout_ms < 0 ? -1 : dvx_now_ms() + timeout_ms;
}

/* Whether a deadline has passed. */
static inline int dvx_is_over(int64_t deadline_ms) {
    return deadline_ms >= 0 && dvx_now_ms() >= deadline_ms;
}

/* Connects until a deadline; see dvx_client_connect. */
static inline int dvx_client_connect_until(int64_t deadline_ms) {
    struct sockaddr_un address;
    const size_t length = strlen(DVX_CLIENT_SOCKET);
    const socklen_t size = (socklen_t)(offsetof(struct sockaddr_un, sun_path) + 1 + length);
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd < 0)
        return -errno;
    memset(&address, 0, sizeof(address));
    address.sun_family = AF_UNIX;
    memcpy(address.sun_path + 1, DVX_CLIENT_SOCKET, length);
    while (connect(fd, (const struct sockaddr *)&address, size) != 0) {
        const int error = errno;
        if ((error != EAGAIN && error != EINTR) || dvx_is_over(deadline_ms)) {
            close(fd);
            return -error;
        }
        dvx_wait(-1, deadline_ms); /* the queue is full, and cannot be waited for */
    }
    return fd;
}

/* Connects to the daemon: a descriptor that does not block; -EAGAIN when the daemon's queue stayed
 * full for `timeout_ms`, or another negative errno value. A negative timeout is none. */
static inline int dvx_client_connect(int timeout_ms) {
    return dvx_client_connect_until(dvx_deadline_ms(timeout_ms));
}

/* Sends a message over a new connection, which the caller closes: its descriptor, or a negative
 * errno value. */
static inline int dvx_message_start(const struct dvx_message *message, int64_t deadline_ms) {
    ssize_t sent;
    int error;
    const int fd = dvx_client_connect_until(deadline_ms);
    if (fd < 0)
        return fd;
    sent = send(fd, message, sizeof(*message), MSG_NOSIGNAL);
    if (sent == (ssize_t)sizeof(*message))
        return fd;
    error = sent < 0 ? errno : EIO;
    close(fd);
    return -error;
}

/* Sends a message over a connection of its own. 0 when it is on its way, whatever becomes of it;
 * -EAGAIN when a daemon that is busy or stopped did not take it within `timeout_ms`; another
 * negative errno value, -ECONNREFUSED above all, when there is no daemon. A negative timeout is
 * none. */
static inline int dvx_message_send(const struct dvx_message *message, int timeout_ms) {
    const int fd = dvx_message_start(message, dvx_deadline_ms(timeout_ms));
    if (fd < 0)
        return fd;
    close(fd);
    return 0;
}

/* The same, and waits until the daemon has closed the connection, that is until the message has had
 * its whole effect; -ETIMEDOUT when it was sent but had not within `timeout_ms`: it may have it
 * later. What the daemon makes of a message it does not say. */
static inline int dvx_message_send_and_wait(const struct dvx_message *message, int timeout_ms) {
    const int64_t deadline_ms = dvx_deadline_ms(timeout_ms);
    ssize_t count;
    char reply;
    int error;
    const int fd = dvx_message_start(message, deadline_ms);
    if (fd < 0)
        return fd;
    for (;;) {
        count = recv(fd, &reply, sizeof(reply), 0);
        error = count < 0 ? errno : 0;
        if (error != EAGAIN && error != EINTR)
            break;
        error = ETIMEDOUT;
        if (dvx_wait(fd, deadline_ms) == 0 && dvx_is_over(deadline_ms))
            break;
    }
    close(fd);
    return -error;
}

#ifdef __cplusplus
}
#endif
