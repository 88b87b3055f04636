// A file that is read as a whole: mapped where it can be, so that its size costs nothing.
#pragma once

#include <memory>
#include <string>
#include <string_view>

struct whole_file {
    std::string_view text;  // for as long as this record, or one that it was moved to
    std::string error;      // empty, or why it cannot be read
    std::shared_ptr<const void> mapped;
    std::unique_ptr<std::string> piped;
};

// Opens a file, "-" for standard input, of which at most 1 GiB is taken.
whole_file whole_file_open(const std::string &path);
