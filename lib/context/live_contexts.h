#pragma once

/// The set of contexts that are alive, with the thread and the record of each. A run may be ended on another
/// thread than its own, and a thread may end before its run is; both leave pointers behind to a context that
/// is gone, whose memory may hold another run by then. Whoever is about to use such a pointer asks here
/// first. The set's lock is the only one in the library; it is held for the look-up alone, never while
/// anything else is called.
namespace orlo::vostrand_lib {

struct self_context;

namespace live_contexts {

void add(const self_context* context);
void remove(const self_context* context);

/// Notes that the calling thread's storage and this record hold the context.
void install(const self_context* context, const void* record);

/// True when the context lives and the calling thread's storage holds it.
bool is_installed_here(const self_context* context);

/// True when the context lives and this record may use it: the record that it was made for.
bool belongs_to(const self_context* context, const void* record);

/// True for one caller at most, which then deletes the context: the thread that it is installed on.
bool claim_from_thread(const self_context* context);

/// True for one caller at most, which then deletes the context: one that has the record it was made for.
bool claim_from_record(const self_context* context, const void* record);

}  // namespace live_contexts
}  // namespace orlo::vostrand_lib
