// Runs as the script of the report's page takes them.
#pragma once

#include <string>
#include <vector>

#include "tools/report/run_data.h"

// JSON of one run or two that may stand in a page: no text in it can end the script.
std::string page_json(const std::vector<report_run> &runs);
