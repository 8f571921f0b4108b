#include "context/live_contexts.h"

#include <algorithm>
#include <mutex>
#include <thread>
#include <vector>

namespace orlo::vostrand_lib::live_contexts {
namespace {

struct entry {
  const self_context* context;
  const void* record;
  std::thread::id thread;
};

// Never destroyed, since threads may end after the library's other globals are gone; memory is given back
// when the last context goes, so that an unloaded library leaves nothing behind.
union immortal_entries {
  std::vector<entry> live;
  constexpr immortal_entries() : live() {}
  constexpr ~immortal_entries() {}
};

constinit std::mutex guard;
constinit immortal_entries entries;

entry* find(const self_context* context) {
  const auto found = std::find_if(entries.live.begin(), entries.live.end(),
                                  [=](const entry& e) { return e.context == context; });
  return found == entries.live.end() ? nullptr : &*found;
}

void erase(const entry& gone) {
  entries.live.erase(entries.live.begin() + (&gone - entries.live.data()));
  if (entries.live.empty()) entries.live.shrink_to_fit();
}

template <typename Condition>
bool erase_if(const self_context* context, Condition condition) {
  const std::lock_guard lock(guard);
  entry* const found = find(context);
  if (!found || !condition(*found)) return false;
  erase(*found);
  return true;
}

bool held_by_this_thread(const entry& e) {
  return e.thread == std::this_thread::get_id();
}

// A context that was made without a record, as a host's own use of the scoring functions does, fits any.
bool made_for(const entry& e, const void* record) {
  return !e.record || e.record == record;
}

}  // namespace

void add(const self_context* context) {
  const std::lock_guard lock(guard);
  entries.live.push_back({context, nullptr, std::thread::id()});
}

void remove(const self_context* context) {
  erase_if(context, [](const entry&) { return true; });
}

void install(const self_context* context, const void* record) {
  const std::lock_guard lock(guard);
  if (entry* const found = find(context)) {
    found->record = record;
    found->thread = std::this_thread::get_id();
  }
}

bool is_installed_here(const self_context* context) {
  const std::lock_guard lock(guard);
  const entry* const found = find(context);
  return found && held_by_this_thread(*found);
}

bool belongs_to(const self_context* context, const void* record) {
  const std::lock_guard lock(guard);
  const entry* const found = find(context);
  return found && made_for(*found, record);
}

bool claim_from_thread(const self_context* context) {
  return erase_if(context, held_by_this_thread);
}

bool claim_from_record(const self_context* context, const void* record) {
  return erase_if(context, [=](const entry& e) { return made_for(e, record); });
}

}  // namespace orlo::vostrand_lib::live_contexts
