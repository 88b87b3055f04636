// What calls, messages to services and properties change in effect: a setting that is set to what
// it is already changes nothing.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tools/recording/record.h"

struct effects {
    std::map<std::string, std::string> settings;  // values by setting, as they are now
};

// The settings of a device whose daemon has just started.
effects make_effects();

struct effect {
    std::string setting;  // empty: nothing changed
    std::string before;   // empty: not known
    std::string value;
    std::string unit;  // with a blank before it
};

// What a record changes.
effect note_effect(effects *present, const record &came);

// The app mode that an event enters, in a word; null for any other record.
const char *mode_entered(const record &came);
