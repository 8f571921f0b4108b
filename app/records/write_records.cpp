#include "records/write_records.h"

#include "page/report_page.h"
#include "records/junit.h"
#include "records/result_json.h"
#include "records/trace.h"
#include "records/write_file.h"

namespace vostrand {
namespace {

void Write(SweepResult& result, const std::string& file, const QByteArray& data) {
  const std::string failure = WriteFile(file, data);
  if (!failure.empty()) result.missing.push_back(failure);
  result.exit_code = ExitCode(result);
}

}  // namespace

void WriteRecords(SweepResult& result) {
  result.exit_code = ExitCode(result);
  const HostOptions& options = result.options;
  if (!options.trace_file.empty()) Write(result, options.trace_file, TraceJson(result));
  if (!options.junit_file.empty())
    Write(result, options.junit_file, QByteArray::fromStdString(JUnit(result)));
  if (!options.html_file.empty()) {
    std::string why;
    const QByteArray page = ReportPage(ResultJson(result), why);
    if (page.isEmpty()) result.missing.push_back("cannot make " + options.html_file + ": " + why);
    if (!page.isEmpty()) Write(result, options.html_file, page);
  }
  if (!options.json_file.empty()) Write(result, options.json_file, ResultJson(result));
}

}  // namespace vostrand
