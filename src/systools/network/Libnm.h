#pragma once

#include <gio/gio.h>

// Some of the library's headers do not say that their functions are C's.
extern "C" {
#include <NetworkManager.h>
}
