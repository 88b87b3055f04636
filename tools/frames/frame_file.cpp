#include "tools/frames/frame_file.h"

#include "tools/frames/frame_formats.h"
#include "tools/frames/frame_source.h"
#include "tools/frames/frame_table.h"
#include "tools/frames/frame_values.h"

namespace {

// Reads a source whose format shows by what it begins with.
void read_known(frame_source *source, const frame_options &options, frame_gathered *all) {
    const std::string_view start = frame_trimmed(frame_source_start(source));
    if (!source->error.empty())
        return;
    if (start.empty() && source->ended) {
        all->error = "an empty file";
        return;
    }
    const bool is_json = start.starts_with('{') || start.starts_with('[');
    if (is_json && frame_is_recording(start))
        return frame_read_recording(source, options, all);
    if (is_json)
        return frame_read_capframex(source, options, all);
    const std::vector<std::string> head = frame_source_peek(source, frame_header_lines);
    if (frame_is_gfxinfo(head))
        return frame_read_gfxinfo(source, options, all);
    if (frame_is_surfaceflinger(head))
        return frame_read_surfaceflinger(source, options, all);
    const frame_table table = frame_table_find(head, options);
    if (!table.error.empty() && frame_is_numbers(head))
        return frame_read_numbers(source, options, all);
    if (table.error.empty())
        return frame_table_read(source, table, all);
    all->error = table.error;
}

frame_file read_source(frame_source *source, const frame_options &options) {
    frame_gathered all;
    read_known(source, options, &all);
    if (!source->error.empty())
        all.error = source->error;
    return frame_gathered_finish(&all, options);
}

}  // namespace

frame_file frame_file_read(const std::string &path, const frame_options &options) {
    frame_source source;
    frame_source_open(&source, path);
    return read_source(&source, options);
}

frame_file frame_file_read_text(const std::string &content, const frame_options &options) {
    frame_source source;
    frame_source_take(&source, content);
    return read_source(&source, options);
}
