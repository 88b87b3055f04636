// The timeline on a terminal or in a pipe: what a message or a panel report brought about stands
// indented under it with the thread that did it, and a call that repeats in a row is one line.
#pragma once

#include <map>
#include <string>

#include "tools/recording/timeline.h"

struct timeline_printer {
    const timeline *line = nullptr;
    bool colour = false;
    bool brief = false;                  // book-keeping is left out
    bool why = false;                    // lines of the log with what they say in words
    std::string cause;                   // the message or the panel report that was printed last
    bool indented = false;               // as the entry before was
    record last;                         // not printed yet, as it may repeat
    int repeated = 0;                    // how often `last` came; 0: there is none
    std::map<int, std::string> threads;  // names by number
};

// A printer for what `line`, which outlives it, gives; see `brief` and `why` above.
timeline_printer make_timeline_printer(const timeline *line, bool brief, bool why = false);

// Prints an entry, after those before it.
void timeline_print(timeline_printer *printer, const record &entry);

// Prints what waits to be counted. 0, or the errno value of an output that cannot be written.
int timeline_flush(timeline_printer *printer);

// Whether the entry is worth a person's look: not the tables of start-up, not the daemon's
// book-keeping, not the polls of the thermal engine.
bool timeline_is_telling(const record &entry);
