#include "context/live_contexts.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <thread>
#include <vector>

namespace orlo::vostrand_lib::live_contexts {
namespace {

struct entry {
  const self_context* context;
  std::thread::id thread;
  bool alive;
};

// Never destroyed, since threads may end after the library's other globals are gone; memory is given back
// when the last context goes, so that an unloaded library leaves nothing behind.
union immortal_entries {
  std::vector<entry> all;
  constexpr immortal_entries() : all() {}
  constexpr ~immortal_entries() {}
};

constinit std::mutex guard;
constinit immortal_entries entries;

// The entry of a context that lives, or that ended and is reserved; null when there is none.
entry* Find(const self_context* context) {
  const auto found = std::find_if(entries.all.begin(), entries.all.end(),
                                  [=](const entry& e) { return e.context == context; });
  return found == entries.all.end() ? nullptr : &*found;
}

entry* FindAlive(const self_context* context) {
  entry* const found = Find(context);
  return found && found->alive ? found : nullptr;
}

entry* FindInstalledHere(const self_context* context) {
  entry* const found = FindAlive(context);
  return found && found->thread == std::this_thread::get_id() ? found : nullptr;
}

void Erase(const entry& gone) {
  entries.all.erase(entries.all.begin() + (&gone - entries.all.data()));
  if (entries.all.empty()) entries.all.shrink_to_fit();
}

}  // namespace

void Add(const self_context* context) {
  const std::lock_guard lock(guard);
  entries.all.push_back({context, std::thread::id(), true});
}

void Remove(const self_context* context) {
  const std::lock_guard lock(guard);
  if (const entry* const found = FindAlive(context)) Erase(*found);
}

void Install(const self_context* context) {
  const std::lock_guard lock(guard);
  if (entry* const found = FindAlive(context)) found->thread = std::this_thread::get_id();
}

bool IsAlive(const self_context* context) {
  const std::lock_guard lock(guard);
  return FindAlive(context) != nullptr;
}

bool IsInstalledHere(const self_context* context) {
  const std::lock_guard lock(guard);
  return FindInstalledHere(context) != nullptr;
}

bool IsAnyInstalledHere() {
  const std::lock_guard lock(guard);
  return std::any_of(entries.all.begin(), entries.all.end(),
                     [](const entry& e) { return e.alive && e.thread == std::this_thread::get_id(); });
}

void FreeEnded() {
  const std::lock_guard lock(guard);
  const auto ended =
      std::partition(entries.all.begin(), entries.all.end(), [](const entry& e) { return e.alive; });
  for (auto e = ended; e != entries.all.end(); ++e) ::operator delete(const_cast<self_context*>(e->context));
  entries.all.erase(ended, entries.all.end());
  if (entries.all.empty()) entries.all.shrink_to_fit();
}

bool EndWithThread(const self_context* context) {
  const std::lock_guard lock(guard);
  entry* const found = FindInstalledHere(context);
  if (found) found->alive = false;
  return found != nullptr;
}

Claim ReleaseFromRecord(const self_context* context) {
  const std::lock_guard lock(guard);
  const entry* const found = Find(context);
  if (!found) return Claim::nothing;
  const Claim todo = found->alive ? Claim::destroy : Claim::free;
  Erase(*found);
  return todo;
}

}  // namespace orlo::vostrand_lib::live_contexts
