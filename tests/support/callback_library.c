/* A hardware resource library that does nothing but call the daemon back, as vendors' libraries do.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int check_kernel_node(const char *path);
int read_line_from_file(const char *path, char *buffer, int size);
int read_prop_from_file(const char *path, char *buffer, const char *needle, int size);
int write_to_file(const char *path, const void *data, long long length);
int request_fbcn_en(int on);
int request_fbcn_i_thresh(unsigned long long upper, unsigned long long lower);

int init_hw_fps_control(void);
int request_fps(int fps);

int init_hw_fps_control(void) {
    char path[4096];
    char line[64] = "";
    snprintf(path, sizeof(path), "%s/callback.txt", getenv("DVXD_ROOT"));
    const int exists = check_kernel_node(path);
    const int written = write_to_file(path, "first\nsecond", 12);
    const int read = read_line_from_file(path, line, sizeof(line));
    const int found = read_prop_from_file(path, line, "second", sizeof(line));
    /* Not bound yet: the forwarders answer that they cannot. */
    const int forwarded = request_fbcn_en(1) < 0 && request_fbcn_i_thresh(0, 0) < 0;
    if (exists == 0 && written == 12 && read == 6 && found == 6 && forwarded)
        write_to_file(path, "called back!", 12);
    return 0;
}

int request_fps(int fps) {
    return fps;
}
