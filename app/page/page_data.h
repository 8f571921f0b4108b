#pragma once

#include <QByteArray>
#include <QJsonObject>

namespace vostrand {

/// What the page's scripts need, as JSON that may stand in a script element: the result itself, but each
/// run's preferences as columns, without what can be worked out again. 50,000 slacks are half a megabyte that
/// way.
///
///     "columns": {"preference": [..] (indices; left out for 0, 1, 2, ...), "slack_ns": "-0.486 1.5 ..",
///                 "actual": ["95.365 MHz", ..], "carried_over": [places in the columns]}
QByteArray PageData(QJsonObject result);

}  // namespace vostrand
