#pragma once

#include <QByteArray>
#include <string>

namespace vostrand {

/// The report page of a sweep: one HTML file that holds all it needs and fetches nothing. `result_json` is
/// the sweep's JSON record. Empty when that cannot be read; `why` then says so.
QByteArray ReportPage(const QByteArray& result_json, std::string& why);

}  // namespace vostrand
