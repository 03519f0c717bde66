#pragma once

/// Marks a class that the shared library offers to its host. Everything else in the library is hidden.
#ifndef VANTRY_EXPORT
#define VANTRY_EXPORT __attribute__((visibility("default")))
#endif
