#include "tools/frames/frame_source.h"

#include <errno.h>
#include <fcntl.h>
#include <iconv.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace {

constexpr size_t piece_bytes = 256 << 10;
constexpr size_t line_bytes_max = 1 << 20;
constexpr char bom_utf8[] = "\xef\xbb\xbf";
constexpr char bom_little[] = "\xff\xfe";
constexpr char bom_big[] = "\xfe\xff";

// Decodes whole characters of `raw` to the end of `text`; half a character waits for its rest, and
// what is none becomes U+FFFD.
void decode_utf16(frame_source *source) {
    constexpr char replacement[] = "\xef\xbf\xbd";
    const iconv_t decoder = iconv_open(
        "UTF-8", source->encoding == frame_encoding::utf16_little ? "UTF-16LE" : "UTF-16BE");
    char *at = source->raw.data();
    size_t left = source->raw.size();
    while (left > 1) {
        char decoded[4096];
        char *end = decoded;
        size_t room = sizeof(decoded);
        const bool whole = iconv(decoder, &at, &left, &end, &room) != static_cast<size_t>(-1);
        const int error = whole ? 0 : errno;
        source->text.append(decoded, end);
        if (error == EINVAL && !source->ended)
            break;
        if ((error == EILSEQ || error == EINVAL) && left > 1) {
            source->text += replacement;
            at += 2;
            left -= 2;
        }
    }
    iconv_close(decoder);
    source->raw.erase(0, source->raw.size() - left);
}

// Without a byte order mark, UTF-16 shows by the empty halves of its first two letters.
void find_encoding(frame_source *source) {
    std::string &raw = source->raw;
    const bool two_letters = raw.size() >= 4;
    size_t mark = 0;
    if (raw.starts_with(bom_utf8)) {
        mark = strlen(bom_utf8);
    } else if (raw.starts_with(bom_little) || raw.starts_with(bom_big)) {
        source->encoding =
            raw.starts_with(bom_little) ? frame_encoding::utf16_little : frame_encoding::utf16_big;
        mark = 2;
    } else if (two_letters && raw[0] != 0 && raw[1] == 0 && raw[2] != 0 && raw[3] == 0) {
        source->encoding = frame_encoding::utf16_little;
    } else if (two_letters && raw[0] == 0 && raw[1] != 0 && raw[2] == 0 && raw[3] != 0) {
        source->encoding = frame_encoding::utf16_big;
    }
    raw.erase(0, mark);
    source->begun = true;
}

bool is_binary(std::string_view text) {
    constexpr std::string_view controls(
        "\0\1\2\3\4\5\6\7\x0e\x0f\x10\x11\x12\x13\x14\x15\x16\x17\x18\x19\x1a", 21);
    return text.find_first_of(controls) != std::string_view::npos;
}

// Reads one more piece; false when there is none.
bool read_piece(frame_source *source) {
    if (!source->error.empty() || (source->ended && source->raw.empty()))
        return false;
    if (source->fd >= 0 && !source->ended) {
        const size_t size = source->raw.size();
        source->raw.resize(size + piece_bytes);
        ssize_t got;
        do {
            got = read(source->fd, source->raw.data() + size, piece_bytes);
        } while (got < 0 && errno == EINTR);
        source->raw.resize(size + static_cast<size_t>(std::max<ssize_t>(got, 0)));
        if (got < 0)
            source->error = strerror(errno);
        source->ended = got <= 0;
    }
    if (!source->begun && (source->raw.size() >= 4 || source->ended))
        find_encoding(source);
    if (!source->begun)
        return source->error.empty();
    source->text.erase(0, source->at);
    source->at = 0;
    const size_t before = source->text.size();
    if (source->encoding == frame_encoding::utf8) {
        source->text += source->raw;
        source->raw.clear();
    } else {
        decode_utf16(source);
        if (source->ended)
            source->raw.clear();  // half a character
    }
    if (is_binary(std::string_view(source->text).substr(before))) {
        source->error = "a binary file, not a frame file";
        source->text.resize(before);
    }
    return source->error.empty();
}

}  // namespace

frame_source::~frame_source() {
    if (fd > STDIN_FILENO)
        close(fd);
}

void frame_source_open(frame_source *source, const std::string &path) {
    source->fd = path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status;
    if (source->fd < 0 || fstat(source->fd, &status) != 0)
        source->error = strerror(errno);
    else if (S_ISDIR(status.st_mode))
        source->error = "a directory, not a file";
}

void frame_source_take(frame_source *source, const std::string &content) {
    source->raw = content;
    source->ended = true;
}

std::string_view frame_source_start(frame_source *source) {
    while (source->text.size() < piece_bytes && read_piece(source)) {
    }
    return source->text;
}

bool frame_source_next(frame_source *source, std::string *line) {
    if (!source->ahead.empty()) {
        *line = std::move(source->ahead.front());
        source->ahead.pop_front();
        ++source->line;
        return true;
    }
    size_t seen = source->at;
    size_t end;
    while ((end = source->text.find('\n', seen)) == std::string::npos) {
        const size_t pending = source->text.size() - source->at;
        if (pending > line_bytes_max || !read_piece(source))
            break;
        seen = source->at + pending;
    }
    if (!source->error.empty())
        return false;
    const bool is_last = end == std::string::npos;
    if (is_last)
        end = source->text.size();
    if (end - source->at > line_bytes_max) {
        source->error = "line " + std::to_string(source->line + 1) + ": longer than 1 MiB";
        return false;
    }
    if (is_last && end == source->at)
        return false;
    source->open_end = is_last;
    line->assign(source->text, source->at, end - source->at);
    while (line->ends_with('\r'))
        line->pop_back();
    source->at = is_last ? end : end + 1;
    ++source->line;
    return true;
}

bool frame_source_is_cut(const frame_source &source) {
    return source.open_end && source.ahead.empty();
}

std::vector<std::string> frame_source_peek(frame_source *source, size_t count) {
    std::vector<std::string> lines;
    const size_t before = source->line;
    std::string line;
    while (lines.size() < count && frame_source_next(source, &line))
        lines.push_back(line);
    source->ahead.assign(lines.begin(), lines.end());
    source->line = before;
    return lines;
}

bool frame_source_rest(frame_source *source, size_t limit, std::string *text) {
    while (source->text.size() - source->at <= limit && read_piece(source)) {
    }
    if (source->error.empty() && source->text.size() - source->at > limit)
        source->error = "longer than " + std::to_string(limit >> 20) + " MiB";
    *text = std::move(source->text);
    text->erase(0, source->at);
    source->text.clear();
    source->at = 0;
    return source->error.empty();
}
