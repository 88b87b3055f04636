#include "device/hardware_conf.h"

#include <stdlib.h>

#include <algorithm>
#include <fstream>

#include "device/virtual_device.h"

const std::vector<device_call> device_calls_known = {
    {"libhwresource.so", "init_hw_fps_control", false},
    {"libhwresource.so", "request_fps", false},
    {"libhwresource.so", "init_hw_img_enhance_engine_ctrl", false},
    {"libhwresource.so", "request_image_engine_mode", false},
    {"libhwresource.so", "enable_thermal_config", true},
    {"libhwresource.so", "get_num_of_thermal_config_desc", false},
    {"libhwresource.so", "verify_thermal_config_desc", false},
    {"libhwresource.so", "init_automode_node", false},
    {"libhwresource.so", "set_automode_freq", false},
    {"libhwresource.so", "init_hw_osprin_control", false},
    {"libhwresource.so", "request_osprin_control", false},
    {"libhwresource.so", "set_osprin_gov_state", false},
    {"libhwresource.so", "set_tmk_freq", true},
    {"libhwresource.so", "init_hw_fbcn_control", false},
    {"libhwresource.so", "request_fbcn_en", false},
    {"libhwresource.so", "request_fbcn_i_thresh", false},
    {"libdvxcc.so", "init_white_list", false},
    {"libdvxcc.so", "get_custom_config", true},
    {"libqcopt.so", "perf_lock_use_profile", false},
    {"libthermalclient.so", "request_tmr_2cluster", false},
    {"libthermalclient.so", "request_tmr_single_cluster", false},
};

namespace {

constexpr char blanks[] = " \t\r";

std::string trimmed(const std::string &text) {
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

bool is_number(const std::string &text) {
    char *end = nullptr;
    strtol(text.c_str(), &end, 10);
    return !text.empty() && *end == '\0';
}

// What is wrong with one line, or nothing.
std::string check_line(const std::string &line) {
    const std::string text = trimmed(line);
    if (text.empty() || text[0] == '#')
        return {};
    if (line.find_first_of(blanks) == 0)
        return "begins with a blank and is passed over: '" + text + "'";
    const size_t equals = text.find('=');
    if (equals == std::string::npos)
        return "has no '=': '" + text + "'";
    const std::string key = trimmed(text.substr(0, equals));
    const std::string value = trimmed(text.substr(equals + 1));
    const size_t dot = key.find('.');
    const std::string name = key.substr(0, dot);
    const std::string argument = dot != std::string::npos ? key.substr(dot + 1) : "";
    const auto call = std::find_if(device_calls_known.begin(), device_calls_known.end(),
                                   [&](const device_call &known) { return known.name == name; });
    if (call == device_calls_known.end())
        return "no library call is named '" + name + "'";
    if (dot != std::string::npos && argument != "delay_ms" && !call->by_argument)
        return name + " is not answered by an argument: '" + key + "'";
    const bool is_text = name == "get_custom_config" && !argument.empty() && argument != "delay_ms";
    if (!is_text && !is_number(value))
        return "'" + value + "' is not a number";
    return {};
}

}  // namespace

std::vector<std::string> device_check_conf(const std::string &root) {
    std::vector<std::string> wrong;
    std::ifstream file(root + device_conf);
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        const std::string reason = check_line(line);
        if (!reason.empty())
            wrong.push_back("hardware.conf, line " + std::to_string(number) + ": " + reason);
    }
    return wrong;
}
