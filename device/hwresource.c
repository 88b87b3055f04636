/* Stand-in for the vendor's hardware resource library. */
#include "standin.h"

int init_hw_fps_control(void);
int request_fps(int fps);
int init_hw_img_enhance_engine_ctrl(void);
int request_image_engine_mode(int mode);
int enable_thermal_config(const char *name, int on);
int get_num_of_thermal_config_desc(void);
int verify_thermal_config_desc(void);
int init_automode_node(void);
int set_automode_freq(unsigned value);
int init_hw_osprin_control(void);
int request_osprin_control(int on);
int set_osprin_gov_state(int state);
int set_tmk_freq(const char *name, unsigned freq);
int init_hw_fbcn_control(void);
int request_fbcn_en(int on);
int request_fbcn_i_thresh(unsigned long long upper, unsigned long long lower);

static int call(const char *name) {
    standin_record(name, "%s", "");
    return standin_answer(name, 0);
}

static int call_with(const char *name, int value) {
    standin_record(name, " %d", value);
    return standin_answer(name, 0);
}

int init_hw_fps_control(void) {
    return call("init_hw_fps_control");
}

int request_fps(int fps) {
    return call_with("request_fps", fps);
}

int init_hw_img_enhance_engine_ctrl(void) {
    return call("init_hw_img_enhance_engine_ctrl");
}

int request_image_engine_mode(int mode) {
    return call_with("request_image_engine_mode", mode);
}

int enable_thermal_config(const char *name, int on) {
    standin_record("enable_thermal_config", " %s %d", name, on);
    return standin_answer("enable_thermal_config", name);
}

int get_num_of_thermal_config_desc(void) {
    return call("get_num_of_thermal_config_desc");
}

int verify_thermal_config_desc(void) {
    return call("verify_thermal_config_desc");
}

int init_automode_node(void) {
    return call("init_automode_node");
}

int set_automode_freq(unsigned value) {
    standin_record("set_automode_freq", " %u", value);
    return standin_answer("set_automode_freq", 0);
}

int init_hw_osprin_control(void) {
    return call("init_hw_osprin_control");
}

int request_osprin_control(int on) {
    return call_with("request_osprin_control", on);
}

int set_osprin_gov_state(int state) {
    return call_with("set_osprin_gov_state", state);
}

int set_tmk_freq(const char *name, unsigned freq) {
    standin_record("set_tmk_freq", " %s %u", name, freq);
    return standin_answer("set_tmk_freq", name);
}

int init_hw_fbcn_control(void) {
    return call("init_hw_fbcn_control");
}

int request_fbcn_en(int on) {
    return call_with("request_fbcn_en", on);
}

int request_fbcn_i_thresh(unsigned long long upper, unsigned long long lower) {
    standin_record("request_fbcn_i_thresh", " %llu %llu", upper, lower);
    return standin_answer("request_fbcn_i_thresh", 0);
}
