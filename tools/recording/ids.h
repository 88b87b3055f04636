// What a line of the daemon's log is known by, in the order of the table.
#pragma once

// clang-format off
enum log_line {
    line_started, line_no_event_manager, line_no_fps_manager, line_no_merlak, line_no_ie_manager,
    line_no_clock_manager, line_no_server, line_no_kernel_monitor, line_no_activity_trigger,
    line_no_running_app, line_no_policy, line_no_profile_controller, line_no_thermal_control,
    line_no_osprin, line_no_automode,

    line_library_held, line_library_32, line_library_64, line_custom_library_32,
    line_custom_library_64, line_symbol_missing, line_file_not_written,

    line_callback_registered, line_event_raised, line_callback_runs, line_event_unknown,
    line_callback_memory, line_event_memory, line_event_trigger,

    line_client_registered, line_client_twice, line_client_memory, line_socket_failed,
    line_listen_failed, line_listener_thread, line_select_failed, line_receive_failed,
    line_client_unknown, line_powerhal_code, line_dgpc_code, line_tmr_code, line_mediahal_code,
    line_vrhal_code,

    line_monitor_thread, line_polling_failed,

    line_trigger_listed, line_trigger_memory, line_running_app_memory, line_app_in_front,
    line_window_in_front, line_trigger_left, line_running_app,

    line_policy_thread, line_acceptor_memory, line_policy_state, line_grant_held,

    line_requestor_listed, line_requestors_none, line_rate_grant, line_rate_applied,
    line_requestor_missing, line_game_optimizer, line_game_tuned, line_game_ofvalue,

    line_image_first, line_image_next, line_image_entry_memory, line_image_row_memory,
    line_image_grant, line_image_mode, line_image_no_engine,

    line_no_handle, line_thermal_unsupported, line_thermal_thread, line_thermal_check,
    line_thermal_not_bound, line_thermal_not_loaded, line_config_symbol, line_config_unbound,
    line_config_set, line_config_failed, line_config_stuck,

    line_mitigation_app_change, line_mitigation_soft_key, line_mitigation_refused,
    line_mitigation_inactive, line_mitigation_timer,

    line_low_power_supported,

    line_automode_enabled, line_automode_fps_missing, line_automode_brightness_missing,
    line_automode_freq_missing, line_automode_node_missing, line_automode_fps_type,
    line_automode_brightness_type, line_automode_freq_type, line_automode_command,
    line_automode_abnormal, line_automode_row_off, line_automode_node, line_automode_timer,

    line_profile_library, line_profile_no_library, line_profile_no_function,
    line_profile_not_closed, line_profile_category_listed, line_profile_app_listed,
    line_profile_prop_listed, line_profile_app_memory, line_profile_prop_memory, line_profile_app,
    line_profile_no_app, line_profile_prop, line_profile_cleared, line_profile_requests,
    line_profile_request, line_profile_set, line_profile_clear, line_profile_lock_failed,
    line_profile_hint_memory, line_profile_hint_failed, line_profile_hint_unknown,
    line_profile_release_failed,

    line_timer_requested, line_timer_extended, line_timer_ignored, line_timer_expired,
    line_timer_all_released, line_timer_thread, line_timer_not_started, line_timer_memory,
    line_timer_other_callback, line_timer_unknown,

    line_brightness, line_rate_service_down, line_rate_service_refused,

    line_analyser_no_library, line_analyser_thread, line_analyser_table_memory,
    line_analyser_no_resources, line_analyser_level_memory, line_analyser_pilot_memory,
    line_analyser_bucket_memory, line_analyser_data_memory, line_analyser_stats_memory,
    line_analyser_failed, line_analyser_started, line_analyser_exited, line_analyser_thresholds,
    line_analyser_locked, line_analyser_unlocked, line_analyser_suspended,
    line_analyser_no_activity, line_analyser_resumed, line_activity_hash, line_activity_bad_hash,
    line_activity_known, line_activity_new, line_activity_cleared,

    line_interval_index, line_measure_keeps_caps, line_measure_too_slow, line_measure_too_few,
    line_measure_rule, line_measure_heading, line_measure_bucket, line_measure_bounds,
    line_measure_share, line_measure_complete, line_measure_again, line_measure_over,

    line_scene_rule, line_scene_listed, line_scene_matched, line_scene_mean, line_scene_variance,
    line_scene_removed, line_scene_none_to_remove, line_scene_memory,

    line_active_no_activity, line_active_average_index, line_active_slow, line_active_jank,
    line_active_jank_run, line_active_hits, line_active_janks, line_active_scene_changed,
    line_active_too_low, line_active_too_often_low,

    line_caps_memory, line_caps_config, line_caps_config_null, line_caps_config_bound,
    line_caps_config_empty, line_caps_config_memory, line_caps_no_library, line_caps_unsupported,
    line_caps_listed, line_caps_range, line_caps_resource, line_caps_level, line_caps_over_budget,
    line_caps_highest, line_caps_lowest, line_caps_locked,

    log_line_count
};
// clang-format on
