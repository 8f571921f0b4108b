#pragma once

#include "records/json_fields.h"
#include "result/sweep_result.h"

// The members of the records that more than one file holds. ToJson and FromJson of records/json_fields.h
// write and read them; a run's verdict is its "met" and "score".

namespace vostrand {

void Fields(auto& io, json::Is<FileRecord> auto& file) {
  io("role", file.role), io("path", file.path), io("size", file.size), io("modified_ns", file.modified_ns);
  io("sha256", file.sha256);
}

void Fields(auto& io, json::Is<TryRecord> auto& record) {
  io("step", record.step), io("number", record.number), io("started_seconds", record.started_seconds),
      io("ended_seconds", record.ended_seconds);
  Fields(io, record.outcome);
}

void Fields(auto& io, json::Is<RunRecord> auto& record) {
  io("name", record.name);
  io.Derived("outcome", std::string(record.Outcome()));
  io("status", record.status), io("message", record.message), io("restored", record.restored),
      io("slot", record.slot);
  io.Nullable("started_seconds", record.started, record.started_seconds);
  io.Nullable("ended_seconds", record.started, record.ended_seconds);
  io.Derived("elapsed_seconds", record.ElapsedSeconds());
  io.Derived("cpu_seconds", record.CpuSeconds());
  io.Derived("peak_kib", record.PeakKib());
  io("tries", record.tries), io("met", record.verdict.met), io("score", record.verdict.score);
}

}  // namespace vostrand

namespace vostrand::step {

// Here, where Outcome is: that is where it is looked for.
void Fields(auto& io, json::Is<Outcome> auto& outcome) {
  io("exit_code", outcome.exit_code), io("signal", outcome.signal), io("cancelled", outcome.cancelled),
      io("timed_out", outcome.timed_out), io("elapsed_seconds", outcome.elapsed_seconds),
      io("cpu_seconds", outcome.cpu_seconds), io("peak_kib", outcome.peak_kib),
      io("message", outcome.message), io("queue_seconds", outcome.queue_seconds), io("node", outcome.node);
}

}  // namespace vostrand::step
