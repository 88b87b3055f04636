/* Local sockets of the platform, as far as the daemon uses them. */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

#define ANDROID_SOCKET_NAMESPACE_ABSTRACT 0

/* A socket of `type` that is bound to `name` and listens, or -1 with errno set. */
int socket_local_server(const char *name, int namespace_id, int type);

/* A socket of `type` that is connected to `name`, or -1 with errno set by what failed. */
int socket_local_client(const char *name, int namespace_id, int type);

#ifdef __cplusplus
}
#endif
