#pragma once

/// Marks what libvostrandlib.so.1 exports. Everything else is built with hidden visibility; tests/exports/
/// compares the built library with the checked-in list.
#define VOSTRAND_API __attribute__((visibility("default")))

/// A member of an exported class that is the library's own business.
#define VOSTRAND_LOCAL __attribute__((visibility("hidden")))
