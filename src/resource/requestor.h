// Requestor lists: what each component asks of one shared hardware setting, and whether the policy
// lets it count.
//
// A list belongs to one resource manager and is built during start-up, before any thread that uses
// it; afterwards its shape never changes. Values are written by whoever requests (client listener,
// timer and callback threads), grants by the policy thread, both without a lock; the manager that
// owns the list orders what follows from them.
#pragma once

#include <atomic>
#include <cstdint>

// One numbering across all resources; 4 is named only in grant tables.
enum requestor_id : int32_t {
    requestor_dgpc = 0,
    requestor_game_tuner = 1,
    requestor_reserved_2 = 2,
    requestor_image_enhance = 3,
    requestor_refresh_rate = 4,
    requestor_reserved_5 = 5,
    requestor_automode = 6,
    requestor_lpm = 7,
};

struct requestor {
    int32_t id;
    std::atomic<int32_t> grant;  // nonzero: the value counts
    std::atomic<int32_t> value;  // in the resource's own unit; outside its range: no request
    requestor *next;
};

// Appends a requestor without a grant. The list's first record; the list as it was when memory runs
// out. Start-up only.
requestor *add_voter(requestor *list, int32_t id, int32_t value);

// Sets the value of the requestor `id`. It resolves nothing: the manager does.
// 0, or -EINVAL with a log line when the list has no such requestor.
int requestor_request_value(requestor *list, int32_t id, int32_t value);

// Sets the grant of the requestor `id`. 0, or -EINVAL when the list has no such requestor.
int resource_manager_set_grant(requestor *list, int32_t id, int32_t grant);

// Logs the list. 0, or -ENODEV for an empty one.
int print_resource_list(const requestor *list, const char *list_name);
