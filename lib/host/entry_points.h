#pragma once

#include "export.h"
#include "host/records.h"

/// The three calls of a tool run, on one thread and in this order: vostrand_main; when it returned 0, the
/// host executes the plan in `seeds` and calls vostrand_report; last, in every case, vostrand_exit. Several
/// tool runs may be in progress at once, one per thread. No exception leaves them.
extern "C" {

/// Reads the command line, opens the log, prepares the output and appends the plan to the record's `seeds`.
/// `argv[0]` is the tool's name and counted in `argc`; `argv` is not changed. Returns 1 when `context` is
/// null, otherwise the record's `exitCode`. With any result but 0 the plan may be partial and is not
/// executed.
VOSTRAND_API int vostrand_main(int argc, const char** argv,
                               orlo::kelpn::mparrunner::VOSTRAND_CONTEXT* context);

/// Scores and orders the executed runs, writes the log tables, the report file and the summary, and copies
/// the best run's files up to the output design's name. Returns 0, or 1 when the record holds no tool run.
VOSTRAND_API int vostrand_report(orlo::kelpn::mparrunner::VOSTRAND_CONTEXT* context);

/// Ends the tool run: records `code`, releases the library's side of the run, closes the log and writes the
/// exit line. On the run's own thread, or on one that has no tool run of its own. Returns `code`.
VOSTRAND_API int vostrand_exit(int code, orlo::kelpn::mparrunner::VOSTRAND_CONTEXT* context);
}
