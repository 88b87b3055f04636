// The readers of the formats, one for each way to write frames down. Each takes the lines of a
// source from its first and gathers values; the front door (frame_file.h) chooses one.
#pragma once

#include "tools/frames/frame_source.h"
#include "tools/frames/frame_values.h"

// One number a line, "#" before comments.
void frame_read_numbers(frame_source *source, const frame_options &options, frame_gathered *all);

// `dumpsys gfxinfo PACKAGE framestats`: differences of IntendedVsync, block by block.
void frame_read_gfxinfo(frame_source *source, const frame_options &options, frame_gathered *all);

// `dumpsys SurfaceFlinger --latency LAYER`: differences of the second of three columns.
void frame_read_surfaceflinger(frame_source *source, const frame_options &options,
                               frame_gathered *all);

// CapFrameX's JSON, with its runs one after the other.
void frame_read_capframex(frame_source *source, const frame_options &options, frame_gathered *all);

// Our own recordings, a JSON object a line.
void frame_read_recording(frame_source *source, const frame_options &options, frame_gathered *all);

// Whether the first lines of a file, of which some may be somebody else's, are of a format.
bool frame_is_numbers(const std::vector<std::string> &head);
bool frame_is_gfxinfo(const std::vector<std::string> &head);
bool frame_is_surfaceflinger(const std::vector<std::string> &head);

// Whether what a file begins with is one of our recordings.
bool frame_is_recording(std::string_view start);
