#pragma once

// What the shared library offers to hosts. Everything else in it is hidden.
#define KALO_EXPORT __attribute__((visibility("default")))
