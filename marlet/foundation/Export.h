#pragma once

/// Everything that a host links against is marked with this; the rest of the library stays hidden.
#define MARLET_EXPORT __attribute__((visibility("default")))
