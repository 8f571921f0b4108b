#include "context/thread_context.h"

#include <dlfcn.h>

#include <memory>
#include <mutex>

#include "context/live_contexts.h"

template <>
void QThreadStorage<orlo::vostrand_lib::self_context*>::deleteData(void* context) {
  auto* const held = static_cast<orlo::vostrand_lib::self_context*>(context);
  if (orlo::vostrand_lib::live_contexts::claim_from_thread(held)) delete held;
}

namespace orlo::vostrand_lib {
namespace {

std::once_flag storage_kept;

// Qt Core keeps data for every thread that has used its storage and gives it up when the thread ends. A host that
// unloads this library would unload Qt with it and lose that data for each of its threads, so Qt stays loaded.
void KeepStorageLoaded() {
  Dl_info qt;
  const auto function = reinterpret_cast<const void*>(&qVersion);
  if (::dladdr(function, &qt)) ::dlopen(qt.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
}

}  // namespace

self_context* ThreadContext() {
  if (!thl_data.hasLocalData()) return nullptr;
  self_context* const held = thl_data.localData();
  return live_contexts::is_installed_here(held) ? held : nullptr;
}

self_context* RunContext(const kelpn::mparrunner::VOSTRAND_CONTEXT& record) {
  return live_contexts::belongs_to(record.selfContext, &record) ? record.selfContext : nullptr;
}

self_context& StartRun(kelpn::mparrunner::VOSTRAND_CONTEXT& record) {
  std::call_once(storage_kept, KeepStorageLoaded);
  auto made = std::make_unique<self_context>(record.logger);
  record.selfContext = made.get();
  // The new context counts as installed only after the old one is gone: memory is reused, so an old context
  // that was ended elsewhere may have had the new one's address.
  thl_data.setLocalData(made.get());
  live_contexts::install(made.get(), &record);
  return *made.release();
}

void ReleaseRun(kelpn::mparrunner::VOSTRAND_CONTEXT& record) {
  if (ThreadContext())
    thl_data.setLocalData(nullptr);
  else if (live_contexts::claim_from_record(record.selfContext, &record))
    delete record.selfContext;
  record.selfContext = nullptr;
}

}  // namespace orlo::vostrand_lib
