// Threads that are only asked for: a test runs their steps itself.
#pragma once

#include <string>
#include <vector>

std::vector<std::string> &requested_threads(void);
