#include "resource/requestor.h"

#include <errno.h>

#include <new>

#include "core/log.h"

namespace {

requestor *find_requestor(requestor *list, int32_t id) {
    while (list != nullptr && list->id != id)
        list = list->next;
    return list;
}

}  // namespace

requestor *add_voter(requestor *list, int32_t id, int32_t value) {
    requestor *added = new (std::nothrow) requestor{id, 0, value, nullptr};
    if (list == nullptr || added == nullptr)
        return list == nullptr ? added : list;
    requestor *tail = list;
    while (tail->next != nullptr)
        tail = tail->next;
    tail->next = added;
    return list;
}

int requestor_request_value(requestor *list, int32_t id, int32_t value) {
    requestor *found = find_requestor(list, id);
    if (found == nullptr) {
        log_error("No such requestor [%d]", id);
        return -EINVAL;
    }
    found->value.store(value, std::memory_order_relaxed);
    return 0;
}

int resource_manager_set_grant(requestor *list, int32_t id, int32_t grant) {
    requestor *found = find_requestor(list, id);
    if (found == nullptr)
        return -EINVAL;
    found->grant.store(grant, std::memory_order_relaxed);
    return 0;
}

int print_resource_list(const requestor *list, const char *list_name) {
    if (list == nullptr) {
        log_info("The list [%s] is empty.", list_name);
        return -ENODEV;
    }
    int position = 0;
    for (; list != nullptr; list = list->next)
        log_info("[%d]: Requstor[%d] Value[%d] Grant[%d]", position++, list->id,
                 list->value.load(std::memory_order_relaxed),
                 list->grant.load(std::memory_order_relaxed));
    return 0;
}
