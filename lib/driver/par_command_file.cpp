#include "driver/par_command_file.h"

#include <algorithm>
#include <limits>
#include <string>

#include "context/exit.h"
#include "context/messages.h"
#include "context/self_context.h"
#include "support/file_names.h"
#include "support/option_strings.h"
#include "ut/filemanager.h"
#include "ut/line_reader.h"
#include "ut/number.h"
#include "ut/rewrite.h"

namespace orlo::vostrand_lib {

using kelpn::mparrunner::VOSTRAND_CONTEXT;

namespace {

constexpr std::uint32_t most_runs = 99;

UT_STROBJ Decimal(std::int64_t value) {
  return std::to_string(value).c_str();
}

// Saturated rather than wrapped, so that a run count beyond 32 bits is beyond the limit too.
std::int32_t NumberOf(const UT_STROBJ& line, const char* option) {
  using limits = std::numeric_limits<std::int32_t>;
  const std::int64_t value = ut_leading_integer(GetOptionValue(line, option).view());
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, limits::min(), limits::max()));
}

bool Fatal(VOSTRAND_CONTEXT& record, const char* failure, const UT_STROBJ& name) {
  _ut_userfatal((UT_STROBJ(failure) + " " + name).getstring(1), &record);
  return false;
}

bool RefuseRunCount(VOSTRAND_CONTEXT& record) {
  if (record.logger) record.logger->onStdout("-n parameter should be 0-99.");
  onExit(1, &record, false);
  return false;
}

// Learns the options of one line and puts in what the tool itself decides. Options count in the order of the
// lines: an "-s" in front of the "-n" gets the count known there. False when the line asks for too many runs.
bool TakeLine(UT_STROBJ& line, ParOptions& options, MParRunInfo& runInfo) {
  if (line.contains("-n ")) {
    runInfo.multiRun = true;
    options.runCount = NumberOf(line, "-n ");
  }
  if (static_cast<std::uint32_t>(options.runCount) > most_runs) return false;
  options.runCount = std::max(options.runCount, 1);
  if (line.contains("-l ")) options.level = GetOptionValue(line, "-l ");
  if (line.contains("-t ")) options.firstCostTable = NumberOf(line, "-t ");
  ReplaceOption(line, "-s ", Decimal(options.runCount));
  if (line.contains("-stopzero")) {
    runInfo.stopAtZero = true;
    ReplaceOption(line, "-stopzero", "");
  }
  return true;
}

// The whole file with `change` applied to every line; each ends in "\n". `change` returns false to stop.
template <typename Change>
bool ChangeLines(ut_line_reader& lines, std::string& text, Change change) {
  for (std::string read; lines.next_whole(read);) {
    UT_STROBJ line(read);
    if (!change(line)) return false;
    text.append(line.view()) += '\n';
  }
  return true;
}

}  // namespace

bool ReadParCommandFile(VOSTRAND_CONTEXT& record, const UT_STROBJ& name, ParOptions& options) {
  constexpr const char* cannot_open = "Cannot open Par command file";
  const UT_STROBJ path = GenerateFilePath(record.workDir, name);
  if (!ut_file->canread(path.getstring())) return true;

  std::string text;
  {
    ut_line_reader lines(path.getstring());
    if (!lines.is_open()) return Fatal(record, cannot_open, name);
    const auto take = [&](UT_STROBJ& line) { return TakeLine(line, options, record.selfContext->runInfo); };
    if (!ChangeLines(lines, text, take)) return RefuseRunCount(record);
    // Half a file must never be written over the whole one.
    if (lines.failed()) return Fatal(record, "Cannot read Par command file", name);
  }
  switch (ut_rewrite_file(path.getstring(), text)) {
    case ut_rewrite_result::done:
      return true;
    case ut_rewrite_result::cannot_open:
      return Fatal(record, cannot_open, name);
    case ut_rewrite_result::cannot_write:
      return Fatal(record, "Cannot write Par command file", name);
  }
  return false;
}

UT_STROBJ TempParCommandFile(const UT_STROBJ& name, int index) {
  return name + ".tmp" + Decimal(index);
}

bool CopyParCommandFile(VOSTRAND_CONTEXT& record, const UT_STROBJ& name, const UT_STROBJ& temp_name) {
  const UT_STROBJ path = GenerateFilePath(record.workDir, name);
  const UT_STROBJ temp_path = GenerateFilePath(record.workDir, temp_name);
  // A copy that came to an end halfway would send the tool off with half of the user's options. Without an
  // original a copy that an earlier run left is used.
  if (!ut_file->copy(path.getstring(), temp_path.getstring()) && ut_file->canread(path.getstring()))
    ut_file->remove(temp_path.getstring());
  return ut_file->canread(temp_path.getstring()) != 0;
}

bool RewriteTempParCommandFile(VOSTRAND_CONTEXT& record, const UT_STROBJ& temp_name,
                               std::int64_t cost_table) {
  constexpr const char* cannot_open = "Cannot open temp Par command file";
  const UT_STROBJ path = GenerateFilePath(record.workDir, temp_name);
  const UT_STROBJ table = Decimal(cost_table);
  bool has_table = false;
  std::string text;
  {
    ut_line_reader lines(path.getstring());
    if (!lines.is_open()) return Fatal(record, cannot_open, temp_name);
    ChangeLines(lines, text, [&](UT_STROBJ& line) {
      has_table = has_table || line.contains("-t ");
      ReplaceOption(line, "-n ", "1");
      ReplaceOption(line, "-t ", table);
      ReplaceOption(line, "-s ", "1");
      return true;
    });
    if (lines.failed()) return Fatal(record, "Cannot read temp Par command file", temp_name);
  }
  if (!has_table) text.append("-t ").append(table.view()) += '\n';

  ut_stream_handle file = ut_open_stream(path.getstring(), UT_ACCESS_WRITE);
  if (!file) return Fatal(record, cannot_open, temp_name);
  file->write(text);
  // A copy that a full disk cut short would send the tool off with other options than the user's.
  if (!ut_file->rm_ofile(file.release()))
    return Fatal(record, "Cannot write temp Par command file", temp_name);
  return true;
}

}  // namespace orlo::vostrand_lib
