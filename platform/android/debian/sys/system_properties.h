/* What Debian's packages of the platform lack of its headers: in a phone's tree this folder is not
 * built. */
#pragma once

#define PROP_NAME_MAX 32
#define PROP_VALUE_MAX 92
