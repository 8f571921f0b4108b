#include "context/thread_context.h"

#include <dlfcn.h>

#include <memory>
#include <mutex>
#include <new>

#include "context/live_contexts.h"

using orlo::vostrand_lib::self_context;
namespace live_contexts = orlo::vostrand_lib::live_contexts;

template <>
void QThreadStorage<self_context*>::deleteData(void* context) {
  auto* const held = static_cast<self_context*>(context);
  if (live_contexts::EndWithThread(held)) held->~self_context();
}

namespace orlo::vostrand_lib {
namespace {

using kelpn::mparrunner::VOSTRAND_CONTEXT;

std::once_flag storage_kept;

// Qt Core keeps data for every thread that has used its storage and gives it up when the thread ends. A host
// that unloads this library would unload Qt with it and lose that data for each of its threads, so Qt stays
// loaded.
void KeepStorageLoaded() {
  Dl_info qt;
  const auto function = reinterpret_cast<const void*>(&qVersion);
  if (::dladdr(function, &qt)) ::dlopen(qt.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
}

// Drops what the storage still holds of a run that was ended on another thread.
void ForgetEndedRun() {
  if (thl_data.hasLocalData() && !ThreadContext()) thl_data.setLocalData(nullptr);
}

void ReleaseContextOf(self_context* context) {
  switch (live_contexts::ReleaseFromRecord(context)) {
    case live_contexts::Claim::nothing:
      return;
    case live_contexts::Claim::destroy:
      delete context;
      return;
    case live_contexts::Claim::free:
      ::operator delete(context);
      return;
  }
}

}  // namespace

self_context* ThreadContext() {
  if (!thl_data.hasLocalData()) return nullptr;
  self_context* const held = thl_data.localData();
  return live_contexts::IsInstalledHere(held) ? held : nullptr;
}

self_context* RunContext(const VOSTRAND_CONTEXT& record) {
  return live_contexts::IsAlive(record.selfContext) ? record.selfContext : nullptr;
}

self_context& StartRun(VOSTRAND_CONTEXT& record) {
  std::call_once(storage_kept, KeepStorageLoaded);
  ForgetEndedRun();
  self_context* const before = record.selfContext;
  auto made = std::make_unique<self_context>(record.logger);
  record.selfContext = made.get();
  thl_data.setLocalData(made.get());
  live_contexts::Install(made.get());
  // A second run on one record: what the first one's end left reserved has no other record to be released by.
  if (!live_contexts::IsAlive(before)) ReleaseContextOf(before);
  return *made.release();
}

void ReleaseRun(VOSTRAND_CONTEXT& record) {
  ForgetEndedRun();
  const bool held = ThreadContext() != nullptr;
  if (held) thl_data.setLocalData(nullptr);
  // A thread that holds another run than the record's releases that one, and leaves the record's own alone.
  if (!held || !live_contexts::IsAlive(record.selfContext)) ReleaseContextOf(record.selfContext);
  record.selfContext = nullptr;
}

void ReleaseAtUnload() {
  if (live_contexts::IsAnyInstalledHere()) thl_data.setLocalData(nullptr);
  live_contexts::FreeEnded();
}

}  // namespace orlo::vostrand_lib
