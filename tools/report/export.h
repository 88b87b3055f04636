// `dvxctl export`: a recording for other programs.
#pragma once

#include <string>

// A recording's trace for Perfetto ("trace") or tidy tables ("csv"). Its exit status, as of a
// report.
int export_command(const std::string &path, const std::string &to, const std::string &out);
