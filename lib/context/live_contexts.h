#pragma once

/// The set of contexts, with the thread that each is installed on. A run may be ended on another thread than
/// its own, and a thread may end before its run is. Both leave a pointer behind to a context that is gone: in
/// the thread's storage, or in the host's record. Whoever is about to use such a pointer asks here first.
///
/// An address could have been given to another run by then. So the memory of a context that ended without its
/// record stays reserved until the record is released; and a thread's storage counts only for contexts that
/// were installed on that very thread. The set's lock is the only one in the library; it is held for the
/// look-up alone, never while anything else is called.
namespace orlo::vostrand_lib {

struct self_context;

namespace live_contexts {

void Add(const self_context* context);
void Remove(const self_context* context);

/// Notes that the calling thread's storage holds the context.
void Install(const self_context* context);

bool IsAlive(const self_context* context);

/// True when the context lives and the calling thread's storage holds it.
bool IsInstalledHere(const self_context* context);

/// True for one caller at most, on the thread that the context is installed on. The caller destroys the
/// context; its memory stays reserved for the record that still points to it.
bool EndWithThread(const self_context* context);

/// True when the calling thread's storage holds a context that lives.
bool IsAnyInstalledHere();

/// Frees the memory that contexts which ended before their records left reserved.
void FreeEnded();

/// What the caller has to do with a context whose record lets go of it.
enum class Claim {
  nothing,  ///< It is none, or somebody else's by now.
  destroy,  ///< Destroy it and free its memory.
  free      ///< Free its memory: it ended before.
};
Claim ReleaseFromRecord(const self_context* context);

}  // namespace live_contexts
}  // namespace orlo::vostrand_lib
