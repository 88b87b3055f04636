// Devices as files have them, and those that ship.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/lab/device_model.h"

// Reads a device: one of those that ship, by name, or a file.
device_model device_model_read(const std::string &name_or_path);
device_model device_model_read_text(std::string_view text);

// The names of those that ship.
std::vector<std::string> device_model_names();
