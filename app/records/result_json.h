#pragma once

#include <QByteArray>
#include <string>

#include "result/sweep_result.h"

namespace vostrand {

/// The whole result, indented.
QByteArray ResultJson(const SweepResult& result);

/// Reads what ResultJson wrote, so that it would be written the same again. False for anything else; `why`
/// then says what is wrong and where.
bool ReadResult(const QByteArray& json, SweepResult& result, std::string& why);

}  // namespace vostrand
