#include "tools/lab/run_recording.h"

#include <stdio.h>

#include <cmath>

#include "tools/recording/messages.h"
#include "tools/simulated/settings.h"

output_file run_recording_open(const lab_setup &setup, const game_work &game, const char *run) {
    return output_open(setup.record + "/" + game.name + run + ".rec");
}

recording_header run_recording_header(const simulated_figures &figures) {
    recording_header header;
    header.daemon = DVX_VERSION;
    header.taken = true;
    header.time_ns = lab_boot_ns;
    header.device = "lab";
    for (const auto &[name, value] : settings_of(figures))
        header.settings[name] = std::to_string(value);
    return header;
}

std::vector<happening> run_coming(const std::string &game) {
    std::vector<happening> coming;
    for (const dvx_message &message :
         {make_text_message(DVX_CLIENT_POWERHAL, DVX_CODE_ACTIVITY, game + "/.Game"),
          make_text_message(DVX_CLIENT_POWERHAL, DVX_CODE_WINDOW, game),
          make_message(DVX_CLIENT_POWERHAL, DVX_CODE_GAME, {0, 1, 60, 0})})
        coming.push_back(make_message_happening(message, lab_boot_ns));
    return coming;
}

happening run_interval(double interval_us, double time_us) {
    return make_interval_happening(static_cast<int32_t>(std::lround(interval_us)),
                                   lab_boot_ns + static_cast<int64_t>(time_us * 1000));
}

namespace {

// What a game draws, second by second, as a phone's gauge would have it.
struct power_samples {
    std::string table = "seconds,mw\n";
    double seconds = 0;  // of the last one
    double energy_mj = 0;
};

void sample_power(power_samples *samples, double time_us, double energy_mj) {
    const double seconds = time_us / 1e6;
    if (seconds < samples->seconds + 1)
        return;
    char row[64];
    snprintf(row, sizeof(row), "%.6f,%.1f\n", seconds,
             (energy_mj - samples->energy_mj) / (seconds - samples->seconds));
    samples->table += row;
    samples->seconds = seconds;
    samples->energy_mj = energy_mj;
}

}  // namespace

std::string run_record_alone(const lab_setup &setup, const game_work &game, uint64_t seed,
                             const hold_plan &plan, const char *run) {
    output_file file = run_recording_open(setup, game, run);
    if (!file.error.empty())
        return file.error;
    recording_header header = run_recording_header(setup.figures);
    header.device = plan.caps.empty() ? "lab, without caps" : "lab, under a plan";
    output_write(&file, recording_header_line(header) + "\n");
    for (const happening &each : run_coming(game.name))
        output_write(&file, recording_line_of(each) + "\n");
    const double end_us = plan.caps.empty() ? setup.minutes * 60e6 : plan.caps.back().time_s * 1e6;
    play_state state = play_begin(seed, game, setup.on);
    size_t caps[resource_count] = {};
    auto next = plan.caps.begin();
    power_samples samples;
    for (double time_us = 0; time_us < end_us;) {
        for (; next != plan.caps.end() && next->time_s * 1e6 <= time_us; ++next) {
            caps[next->which] = next->point;
            const record call = make_call_record(0, plan_call(*next, setup.on.device));
            output_write(&file, recording_line_of(call, run_interval(0, time_us).time_ns) + "\n");
        }
        const double interval_us = play_frame(&state, game, setup.varies, setup.on, caps);
        time_us += interval_us;
        output_write(&file, recording_line_of(run_interval(interval_us, time_us)) + "\n");
        sample_power(&samples, time_us, state.energy_mj);
    }
    std::string unwritten = output_finish(&file);
    if (!unwritten.empty() || plan.caps.empty())
        return unwritten;
    return output_whole(setup.record + "/" + game.name + ".power.csv", samples.table);
}
