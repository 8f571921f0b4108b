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

bool Has(const UT_STROBJ& line, const char* option) {
  return line.view().find(option) != std::string_view::npos;
}

UT_STROBJ Decimal(std::int64_t value) {
  return std::to_string(value).c_str();
}

// Saturated rather than wrapped, so that a run count beyond 32 bits is beyond the limit too.
std::int32_t NumberOf(const UT_STROBJ& line, const char* option) {
  using limits = std::numeric_limits<std::int32_t>;
  const std::int64_t value = ut_leading_integer(GetOptionValue(line, option).view());
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, limits::min(), limits::max()));
}

bool Fatal(VOSTRAND_CONTEXT& record, const char* format, const UT_STROBJ& name) {
  const std::string text = std::string(format) + " " + name.getstring();
  _ut_userfatal(text.c_str(), &record);
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
  if (Has(line, "-n ")) {
    runInfo.multiRun = true;
    options.runCount = NumberOf(line, "-n ");
  }
  if (static_cast<std::uint32_t>(options.runCount) > most_runs) return false;
  options.runCount = std::max(options.runCount, 1);
  if (Has(line, "-l ")) options.level = GetOptionValue(line, "-l ");
  if (Has(line, "-t ")) options.firstCostTable = NumberOf(line, "-t ");
  ReplaceOption(line, "-s ", Decimal(options.runCount));
  if (Has(line, "-stopzero")) {
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
  ut_file->copy(path.getstring(), temp_path.getstring());
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
      has_table = has_table || Has(line, "-t ");
      ReplaceOption(line, "-n ", "1");
      ReplaceOption(line, "-t ", table);
      ReplaceOption(line, "-s ", "1");
      return true;
    });
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
