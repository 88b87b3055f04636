#include "resource/acceptor.h"

#include <errno.h>
#include <string.h>

#include <new>

#include "core/log.h"
#include "core/text.h"

namespace {

constinit acceptor_node *chain = nullptr;

// The first node of that name, or null; `last` is left at the node that was looked at last.
acceptor_node *find_acceptor(const char *name, const acceptor_node **last) {
    for (acceptor_node *node = chain; node != nullptr; node = node->next) {
        *last = node;
        if (strncmp(node->name, name, acceptor_name_size) == 0)
            return node;
    }
    return nullptr;
}

void deliver_grant(acceptor_node *node, const grant_change *change) {
    grant_entry **link = &node->grants;
    while (*link != nullptr && (*link)->requestor != change->requestor)
        link = &(*link)->next;
    grant_entry *entry = *link;
    if (entry != nullptr && entry->grant == change->grant)
        return;
    if (node->set_grant(change->requestor, change->grant) < 0)
        return;  // not cached, so that the next table delivers it again
    if (entry != nullptr) {
        entry->grant = change->grant;
        return;
    }
    *link = new (std::nothrow) grant_entry{change->requestor, change->grant, nullptr};
    if (*link == nullptr)
        log_error("Failed to alloc\n");
}

}  // namespace

int add_acceptor(const char *name, set_grant_operation set_grant) {
    acceptor_node *added = new (std::nothrow) acceptor_node{0, {}, nullptr, set_grant, nullptr};
    if (added == nullptr) {
        log_error("Failed to alloc\n");
        return -ENOMEM;
    }
    copy_text(added->name, name);
    acceptor_node **link = &chain;
    for (; *link != nullptr; link = &(*link)->next)
        ++added->id;
    *link = added;
    return 0;
}

int request_dvx_grant_change(const grant_change *changes, int32_t count) {
    if (chain == nullptr)
        return 0;
    const acceptor_node *last = chain;
    for (int32_t i = 0; i < count; ++i) {
        acceptor_node *node = find_acceptor(changes[i].acceptor, &last);
        if (node != nullptr)
            deliver_grant(node, &changes[i]);
    }
    for (const grant_entry *entry = last->grants; entry != nullptr; entry = entry->next)
        log_info("Grant Setting Acceptor[%d] Grant[%d]", entry->requestor, entry->grant);
    return 0;
}
