// Opening a library of the vendor, of whichever width the device has.
#pragma once

// Opens the library of that file name, the 32-bit one first. Null when there is neither; each
// failure is logged behind its prefix, with the loader's reason. Start-up only.
void *vendor_library_open(const char *file, const char *prefix_32, const char *prefix_64);
