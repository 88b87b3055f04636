/* Stand-in for the thermal client library that the daemon is linked with. */
#include "standin.h"

int request_tmr_2cluster(unsigned first, unsigned second);
int request_tmr_single_cluster(unsigned first);

int request_tmr_2cluster(unsigned first, unsigned second) {
    standin_record("request_tmr_2cluster", " %u %u", first, second);
    return standin_answer("request_tmr_2cluster", 0);
}

int request_tmr_single_cluster(unsigned first) {
    standin_record("request_tmr_single_cluster", " %u", first);
    return standin_answer("request_tmr_single_cluster", 0);
}
