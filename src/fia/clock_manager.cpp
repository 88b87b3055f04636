#include "fia/clock_manager.h"

#include <assert.h>
#include <errno.h>
#include <string.h>

#include <new>

#include "core/log.h"
#include "fia/freq_config.h"
#include "resource/hw_library.h"

namespace {

constexpr uint32_t freq_types = 2;

struct clock_node {
    freq_config *config;   // owned
    uint32_t level;        // applied last
    uint32_t level_limit;  // a step down reaches only levels below it
    uint32_t *level_hits;  // owned; scale calls that ended at each level
    clock_node *next;
    clock_node *prev;
};

// Built by main before the analyser starts, under `fia_mutex` afterwards.
constinit struct {
    clock_node *clock_head = nullptr;
    clock_node *clock_tail = nullptr;
    clock_node *clock_cursor = nullptr;  // stepped last; null until the first set, clear or scale
    bool type_enabled[freq_types] = {};
    int (*set_tmk_freq)(const char *name, unsigned freq) = nullptr;
    const fia_tunables *tunables = nullptr;
} clocks;

bool is_eligible(const clock_node *node) {
    return node->config->type < freq_types && clocks.type_enabled[node->config->type];
}

clock_node *walk_forward(const clock_node *node) {
    return node->next != nullptr ? node->next : clocks.clock_head;
}

clock_node *walk_backward(const clock_node *node) {
    return node->prev != nullptr ? node->prev : clocks.clock_tail;
}

// Whether the CPU clusters together may stand at these levels; the GPU has no budget.
bool within_cpu_budget(const clock_node *changed, uint32_t level) {
    if (changed->config->type != freq_type_cpu)
        return true;
    uint64_t sum = level;
    for (const clock_node *node = clocks.clock_head; node != nullptr; node = node->next)
        if (node != changed && node->config->type == freq_type_cpu)
            sum += node->level;
    if (sum <= static_cast<uint64_t>(clocks.tunables->cpu_step_budget))
        return true;
    log_debug(debug_features, "cpufreq limit is too excessive");
    return false;
}

int apply_level(clock_node *node, uint32_t level) {
    const freq_config *config = node->config;
    if (level >= config->freq_count || config->set_freq == nullptr ||
        !within_cpu_budget(node, level) || config->set_freq(config->name, config->freqs[level]) < 0)
        return -EINVAL;
    node->level = level;
    return 0;
}

void reset_hits(clock_node *node) {
    memset(node->level_hits, 0, node->config->freq_count * sizeof(*node->level_hits));
    node->level_limit = node->config->freq_count;
}

bool can_rise(const clock_node *node) {
    return node->level > 0;
}

bool can_fall(const clock_node *node) {
    return node->level + node->config->downstep < node->level_limit;
}

uint32_t level_above(const clock_node *node) {
    return node->level - node->config->upstep;
}

uint32_t level_below(const clock_node *node) {
    return node->level + node->config->downstep;
}

// One way that levels move: in which rotation, who can, where to, and what is said when nobody can.
struct direction {
    clock_node *(*walk)(const clock_node *);
    bool (*can_move)(const clock_node *);
    uint32_t (*next_level)(const clock_node *);
    const char *exhausted;
};

constexpr direction upwards = {walk_backward, can_rise, level_above, "All Max Freq"};
constexpr direction downwards = {walk_forward, can_fall, level_below, "All Min Freq"};

// The next eligible resource from `node` on, `node` included; null when there is none.
clock_node *find_eligible(clock_node *node, clock_node *(*walk)(const clock_node *)) {
    clock_node *found = node;
    while (!is_eligible(found)) {
        found = walk(found);
        if (found == node)
            return nullptr;
    }
    return found;
}

// One step of one resource. 0, -EINVAL, or 1 when no resource can move any further.
int step_one(clock_node *start, const direction &way) {
    start = find_eligible(start, way.walk);
    if (start == nullptr)
        return -EINVAL;
    clock_node *node = start;
    while (!is_eligible(node) || !way.can_move(node)) {
        node = way.walk(node);
        if (node == start) {
            log_debug(debug_features, "%s", way.exhausted);
            return 1;
        }
    }
    if (apply_level(node, way.next_level(node)) != 0)
        return -EINVAL;
    clocks.clock_cursor = node;
    return 0;
}

void count_hit(clock_node *node) {
    assert(node->level < node->config->freq_count);
    const uint32_t hits = ++node->level_hits[node->level];
    const uint32_t threshold = node->config->lock_threshold;
    if (threshold > 0 && hits >= threshold) {
        node->level_limit = node->level;
        log_error("Freq %s Locked %d", node->config->name, static_cast<int>(hits));
    }
}

void free_config(freq_config *config) {
    if (config != nullptr)
        delete[] config->freqs;
    delete config;
}

freq_config *create_config(int32_t index) {
    freq_config *config = new (std::nothrow) freq_config{};
    if (config == nullptr) {
        log_error("Not enough memory");
        return nullptr;
    }
    config->index = index;
    config->downstep = 1;
    config->upstep = 1;
    config->lock_threshold = 0;
    config->set_freq = clocks.set_tmk_freq;
    if (get_freq_config(config) != 0) {
        log_error("Failed to get frequency configuration");
        free_config(config);
        return nullptr;
    }
    return config;
}

clock_node *create_node(int32_t index) {
    freq_config *config = create_config(index);
    if (config == nullptr)
        return nullptr;
    clock_node *node = new (std::nothrow) clock_node{};
    uint32_t *hits = new (std::nothrow) uint32_t[config->freq_count]{};
    if (node == nullptr || hits == nullptr) {
        log_error("Not enough memory");
        free_config(config);
        delete node;
        delete[] hits;
        return nullptr;
    }
    *node = {config, 0, config->freq_count, hits, nullptr, nullptr};
    return node;
}

void free_list() {
    while (clock_node *node = clocks.clock_head) {
        clocks.clock_head = node->next;
        free_config(node->config);
        delete[] node->level_hits;
        delete node;
    }
    clocks.clock_tail = nullptr;
}

void bind_library() {
    if (get_handle() != 0)
        log_error("No handle to support thermal");
    else if (hw_library_bind("set_tmk_freq", &clocks.set_tmk_freq) == 0)
        return;
    log_error("Can't support thermal frequency scaling");
}

}  // namespace

int32_t fia_clock_get_freq_policy(void) {
    int32_t count = 0;
    for (const clock_node *node = clocks.clock_head; node != nullptr; node = node->next)
        ++count;
    return count;
}

int32_t fia_clock_is_maxfreq(void) {
    for (const clock_node *node = clocks.clock_head; node != nullptr; node = node->next)
        if (node->level != 0)
            return 0;
    return 1;
}

int fia_clock_get_freq(int32_t count, uint32_t *levels) {
    if (count < 1 || levels == nullptr)
        return -EINVAL;
    const clock_node *node = clocks.clock_head;
    for (int32_t i = 0; i < count; ++i, node = node->next) {
        if (node == nullptr)
            return -EINVAL;
        levels[i] = node->level;
    }
    return 0;
}

int fia_clock_set_freq(int32_t count, const uint32_t *levels) {
    if (count < 1 || levels == nullptr)
        return -EINVAL;
    clock_node *node = clocks.clock_head;
    for (int32_t i = 0; i < count; ++i, node = node->next) {
        if (node == nullptr || apply_level(node, levels[i]) != 0)
            return -EINVAL;
        reset_hits(node);
    }
    clocks.clock_cursor = clocks.clock_head;
    return 0;
}

int fia_clock_clear_freq(void) {
    for (clock_node *node = clocks.clock_head; node != nullptr; node = node->next) {
        if (apply_level(node, 0) != 0)
            return -EINVAL;
        reset_hits(node);
    }
    clocks.clock_cursor = clocks.clock_head;
    return 0;
}

int fia_clock_scale_freq(int32_t step) {
    if (clocks.clock_head == nullptr)
        return -EINVAL;
    if (clocks.clock_cursor == nullptr)
        clocks.clock_cursor = clocks.clock_tail;
    for (; step != 0; step += step > 0 ? -1 : 1) {
        clock_node *cursor = clocks.clock_cursor;
        const int result =
            step > 0 ? step_one(cursor, upwards) : step_one(walk_forward(cursor), downwards);
        if (result != 0)
            return result < 0 ? result : 0;
    }
    count_hit(clocks.clock_cursor);
    return 0;
}

void print_support_clock_info(void) {
    if (rtDebugMode(debug_features) == 0 || clocks.clock_head == nullptr)
        return;
    log_info("Below Freq Supported");
    log_info("%s ~ %s would be set", clocks.clock_head->config->name,
             clocks.clock_tail->config->name);
    for (const clock_node *node = clocks.clock_head; node != nullptr; node = node->next) {
        log_info("Frequncy : %s", node->config->name);
        for (uint32_t i = 0; i < node->config->freq_count; ++i)
            log_info("[%d] %d", static_cast<int>(i), static_cast<int>(node->config->freqs[i]));
    }
}

int init_fia_clock_manager(void) {
    bind_library();
    clocks.tunables = fia_tunables_config_init();
    for (int32_t i = 0; i < get_freq_config_num(); ++i) {
        clock_node *node = create_node(i);
        if (node == nullptr) {
            free_list();
            return -EINVAL;
        }
        node->prev = clocks.clock_tail;
        (clocks.clock_tail != nullptr ? clocks.clock_tail->next : clocks.clock_head) = node;
        clocks.clock_tail = node;
    }
    if (clocks.clock_head == nullptr)
        return -EINVAL;
    print_support_clock_info();
    for (bool &enabled : clocks.type_enabled)
        enabled = true;
    return 0;
}
