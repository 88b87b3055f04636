// The acceptor chain: one node a resource manager, through which the policy's grants flow. A node
// remembers what it delivered, so that a manager hears only of changes.
//
// Start-up builds the chain before the policy thread exists; afterwards only that thread uses it,
// and nothing is locked.
#pragma once

#include <cstdint>

constexpr int32_t acceptor_name_size = 20;

// Delivers a grant to a manager; negative when the manager does not take it.
using set_grant_operation = int (*)(int32_t requestor, int32_t grant);

struct grant_entry {
    int32_t requestor;
    int32_t grant;  // as last delivered
    grant_entry *next;
};

struct acceptor_node {
    int32_t id;  // position in the chain
    char name[acceptor_name_size];
    grant_entry *grants;
    set_grant_operation set_grant;
    acceptor_node *next;
};

struct grant_change {
    char acceptor[acceptor_name_size];
    int32_t requestor;
    int32_t grant;
};

// Appends a manager's node to the chain. 0, or -ENOMEM with a log line. Start-up only.
int add_acceptor(const char *name, set_grant_operation set_grant);

// Applies the changes in their order; those of an unknown acceptor are passed over. Always 0.
int request_dvx_grant_change(const grant_change *changes, int32_t count);
