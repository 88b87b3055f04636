#include "tools/base/files.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace fs = std::filesystem;

std::string read_file(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream content;  // reading an attribute may fail, which iterators throw
    content << file.rdbuf();
    return content.str();
}

int64_t file_size(const std::string &path) {
    std::error_code error;
    const auto size = fs::file_size(path, error);
    return error ? 0 : static_cast<int64_t>(size);
}

std::vector<std::string> read_lines(const std::string &path, int64_t *offset) {
    std::vector<std::string> lines;
    std::error_code error;
    if (static_cast<int64_t>(fs::file_size(path, error)) < *offset && !error)
        *offset = 0;  // begun anew
    std::ifstream file(path, std::ios::binary);
    file.seekg(*offset);
    const std::string content{std::istreambuf_iterator<char>(file),
                              std::istreambuf_iterator<char>()};
    size_t start = 0;
    for (size_t end = content.find('\n'); end != std::string::npos;
         end = content.find('\n', start)) {
        lines.push_back(content.substr(start, end - start));
        start = end + 1;
    }
    *offset += static_cast<int64_t>(start);
    return lines;
}

std::string sibling_program(const std::string &name) {
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).parent_path().string() + "/" + name;
}
