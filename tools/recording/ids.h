// What a line of the daemon's log is known by, in the order of the table.
#pragma once

// clang-format off
#define LOG_LINES(X) \
    X(started) X(no_event_manager) X(no_fps_manager) X(no_merlak) X(no_ie_manager) \
    X(no_clock_manager) X(no_server) X(no_kernel_monitor) X(no_activity_trigger) \
    X(no_running_app) X(no_policy) X(no_profile_controller) X(no_thermal_control) X(no_osprin) \
    X(no_automode) \
 \
    X(library_held) X(library_32) X(library_64) X(custom_library_32) X(custom_library_64) \
    X(symbol_missing) X(file_not_written) \
 \
    X(callback_registered) X(event_raised) X(callback_runs) X(event_unknown) X(callback_memory) \
    X(event_memory) X(event_trigger) \
 \
    X(client_registered) X(client_twice) X(client_memory) X(socket_failed) X(listen_failed) \
    X(listener_thread) X(select_failed) X(receive_failed) X(client_unknown) X(powerhal_code) \
    X(dgpc_code) X(tmr_code) X(mediahal_code) X(vrhal_code) \
 \
    X(monitor_thread) X(polling_failed) \
 \
    X(trigger_listed) X(trigger_memory) X(running_app_memory) X(app_in_front) X(window_in_front) \
    X(trigger_left) X(running_app) \
 \
    X(policy_thread) X(acceptor_memory) X(policy_state) X(grant_held) \
 \
    X(requestor_listed) X(requestors_none) X(rate_grant) X(rate_applied) X(requestor_missing) \
    X(game_optimizer) X(game_tuned) X(game_ofvalue) \
 \
    X(image_first) X(image_next) X(image_entry_memory) X(image_row_memory) X(image_grant) \
    X(image_mode) X(image_no_engine) \
 \
    X(no_handle) X(thermal_unsupported) X(thermal_thread) X(thermal_check) X(thermal_not_bound) \
    X(thermal_not_loaded) X(config_symbol) X(config_unbound) X(config_set) X(config_failed) \
    X(config_stuck) \
 \
    X(mitigation_app_change) X(mitigation_soft_key) X(mitigation_refused) X(mitigation_inactive) \
    X(mitigation_timer) \
 \
    X(low_power_supported) \
 \
    X(automode_enabled) X(automode_fps_missing) X(automode_brightness_missing) \
    X(automode_freq_missing) X(automode_node_missing) X(automode_fps_type) \
    X(automode_brightness_type) X(automode_freq_type) X(automode_command) X(automode_abnormal) \
    X(automode_row_off) X(automode_node) X(automode_timer) \
 \
    X(profile_library) X(profile_no_library) X(profile_no_function) X(profile_not_closed) \
    X(profile_category_listed) X(profile_app_listed) X(profile_prop_listed) \
    X(profile_app_memory) X(profile_prop_memory) X(profile_app) X(profile_no_app) \
    X(profile_prop) X(profile_cleared) X(profile_requests) X(profile_request) X(profile_set) \
    X(profile_clear) X(profile_lock_failed) X(profile_hint_memory) X(profile_hint_failed) \
    X(profile_hint_unknown) X(profile_release_failed) \
 \
    X(timer_requested) X(timer_extended) X(timer_ignored) X(timer_expired) X(timer_all_released) \
    X(timer_thread) X(timer_not_started) X(timer_memory) X(timer_other_callback) \
    X(timer_unknown) \
 \
    X(brightness) X(rate_service_down) X(rate_service_refused) \
 \
    X(analyser_no_library) X(analyser_thread) X(analyser_table_memory) X(analyser_no_resources) \
    X(analyser_level_memory) X(analyser_pilot_memory) X(analyser_bucket_memory) \
    X(analyser_data_memory) X(analyser_stats_memory) X(analyser_failed) X(analyser_started) \
    X(analyser_exited) X(analyser_thresholds) X(analyser_locked) X(analyser_unlocked) \
    X(analyser_suspended) X(analyser_no_activity) X(analyser_resumed) X(activity_hash) \
    X(activity_bad_hash) X(activity_known) X(activity_new) X(activity_cleared) \
 \
    X(interval_index) X(measure_keeps_caps) X(measure_too_slow) X(measure_too_few) \
    X(measure_rule) X(measure_heading) X(measure_bucket) X(measure_bounds) X(measure_share) \
    X(measure_complete) X(measure_again) X(measure_over) \
 \
    X(scene_rule) X(scene_listed) X(scene_matched) X(scene_mean) X(scene_variance) \
    X(scene_removed) X(scene_none_to_remove) X(scene_memory) \
 \
    X(active_no_activity) X(active_average_index) X(active_slow) X(active_jank) \
    X(active_jank_run) X(active_hits) X(active_janks) X(active_scene_changed) X(active_too_low) \
    X(active_too_often_low) \
 \
    X(caps_memory) X(caps_config) X(caps_config_null) X(caps_config_bound) X(caps_config_empty) \
    X(caps_config_memory) X(caps_no_library) X(caps_unsupported) X(caps_listed) X(caps_range) \
    X(caps_resource) X(caps_level) X(caps_over_budget) X(caps_highest) X(caps_lowest) \
    X(caps_locked)
// clang-format on

enum class log_line {
#define LOG_LINE_ID(name) name,
    LOG_LINES(LOG_LINE_ID)
#undef LOG_LINE_ID
        count
};

// Its name in output for other programs.
const char *log_line_word(log_line line);
