// What only the device itself can tell: asked of a virtual device's files, or of a phone's own
// programs.
#pragma once

#include <optional>
#include <string>

// Whether `root` is the phone that this program stands on.
bool phone_is_here(const std::string &root);

// A system property: its value, empty where it is unset; none where nobody could be asked.
std::optional<std::string> phone_property(const std::string &root, const std::string &name);

// The panel's rate in frames per second, as the compositor tells; none where nobody could be asked.
std::optional<double> phone_panel_hz(const std::string &root);
