#pragma once

#include <QThreadStorage>

#include "context/self_context.h"
#include "export.h"
#include "host/records.h"

/// The storage's destructor function: deletes a context that a thread still holds when it ends or takes on
/// another run, unless that context is gone already, ended on another thread.
template <>
void QThreadStorage<orlo::vostrand_lib::self_context*>::deleteData(void* context);

namespace orlo::vostrand_lib {

/// Each thread's current context.
VOSTRAND_API extern QThreadStorage<self_context*> thl_data;

/// The calling thread's context; null when it has none, or when its run was ended on another thread.
self_context* ThreadContext();

/// The context of the record's tool run; null when it has none, or when its thread ended before the run did.
self_context* RunContext(const kelpn::mparrunner::VOSTRAND_CONTEXT& record);

/// Makes the context of a new tool run, stores it in the record and installs it for the calling thread, which
/// releases the context that the thread held before.
self_context& StartRun(kelpn::mparrunner::VOSTRAND_CONTEXT& record);

/// Releases the calling thread's context, or the record's own when the thread has none, and clears the
/// record.
void ReleaseRun(kelpn::mparrunner::VOSTRAND_CONTEXT& record);

/// For the library's end: releases what the calling thread, which unloads it or ends the process, still
/// holds, and what records could still have released.
void ReleaseAtUnload();

}  // namespace orlo::vostrand_lib
