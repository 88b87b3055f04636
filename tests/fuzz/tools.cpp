// What dvxctl reads: frame files and the daemon's log.
#include <sstream>

#include "tools/frames.h"
#include "tools/timeline.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    for (const char *column : {"", "ms"}) {
        std::istringstream frames(text);
        read_frames(frames, column, 1000);
    }
    std::istringstream log(text);
    for (std::string line; std::getline(log, line);)
        parse_daemon_line(line, 0);
    return 0;
}
