#include "tools/frames.h"

#include <stdlib.h>
#include <time.h>
#include <unistd.h>

#include <cmath>

#include "device/virtual_device.h"
#include "platform/clock.h"

namespace {

std::vector<std::string> split_columns(const std::string &line) {
    std::vector<std::string> columns;
    size_t start = 0;
    for (;;) {
        const size_t end = line.find(',', start);
        std::string column = line.substr(start, end - start);
        if (column.size() >= 2 && column.front() == '"' && column.back() == '"')
            column = column.substr(1, column.size() - 2);
        columns.push_back(column);
        if (end == std::string::npos)
            return columns;
        start = end + 1;
    }
}

// Whether all of `text` is one number that is an interval in microseconds.
bool parse_interval(const std::string &text, double unit_us, int64_t *interval_us) {
    char *end = nullptr;
    const double value = strtod(text.c_str(), &end) * unit_us;
    const std::string rest = end;
    if (end == text.c_str() || rest.find_first_not_of(" \t\r") != std::string::npos ||
        !(std::fabs(value) <= INT32_MAX))
        return false;
    *interval_us = std::llround(value);
    return true;
}

}  // namespace

frame_file read_frames(std::istream &input, const std::string &column, double unit_us) {
    frame_file frames;
    std::string line;
    size_t index = 0;
    bool header = !column.empty();
    for (int number = 1; std::getline(input, line); ++number) {
        if (line.find_first_not_of(" \t\r") == std::string::npos)
            continue;
        if (line.back() == '\r')
            line.pop_back();
        const std::vector<std::string> columns = split_columns(line);
        if (header) {
            while (index < columns.size() && columns[index] != column)
                ++index;
            if (index == columns.size()) {
                frames.error = "no column '" + column + "' in line " + std::to_string(number);
                return frames;
            }
            header = false;
            continue;
        }
        const std::string text = column.empty()           ? line
                                 : index < columns.size() ? columns[index]
                                                          : "";
        int64_t interval_us;
        if (!parse_interval(text, unit_us, &interval_us)) {
            frames.error = "line " + std::to_string(number) + ": not an interval: '" + text + "'";
            return frames;
        }
        frames.intervals_us.push_back(interval_us);
    }
    return frames;
}

int play_frames(const std::string &root, const std::vector<int64_t> &intervals_us, double speed) {
    const int fd = device_open_node(root, device_interval_node);
    if (fd < 0)
        return fd;
    int result = 0;
    double due_ns = static_cast<double>(clock_monotonic_ns());
    for (const int64_t interval_us : intervals_us) {
        if (speed > 0 && interval_us > 0) {
            due_ns += static_cast<double>(interval_us) * 1000.0 / speed;
            const int64_t due = static_cast<int64_t>(due_ns);
            const timespec wake = {static_cast<time_t>(due / 1000000000),
                                   static_cast<long>(due % 1000000000)};
            clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &wake, nullptr);
        }
        result = device_report_interval(fd, interval_us);
        if (result != 0)
            break;
    }
    close(fd);
    return result;
}
