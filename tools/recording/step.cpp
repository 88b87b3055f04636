#include "tools/recording/step.h"

#include <algorithm>

bool step_is_start(const step &of) {
    return of.taken.kind == happening_kind::load || of.taken.kind == happening_kind::start ||
           of.taken.kind == happening_kind::analyser;
}

bool step_has_event(const step &of, uint32_t event) {
    return std::any_of(of.records.begin(), of.records.end(), [&](const record &came) {
        return came.kind == record_kind::event && came.event == event;
    });
}

const record *step_line(const step &of, log_line line) {
    for (auto came = of.records.rbegin(); came != of.records.rend(); ++came)
        if (record_is_line(*came, line))
            return &*came;
    return nullptr;
}

const record *step_call(const step &of, const char *name) {
    for (auto came = of.records.rbegin(); came != of.records.rend(); ++came)
        if (record_is_call(*came, name))
            return &*came;
    return nullptr;
}

std::optional<int32_t> step_answer(const step &of, const char *call, const std::string &argument) {
    std::optional<int32_t> worst;
    for (const record &each : of.records)
        if (record_is_call(each, call) && each.answer &&
            (argument.empty() || (!each.values.empty() && each.values[0] == argument)))
            worst = std::min(worst.value_or(*each.answer), *each.answer);
    return worst;
}
