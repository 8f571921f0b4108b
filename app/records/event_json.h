#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <string>
#include <vector>

#include "execute/events.h"

namespace vostrand {

/// The first line of a file of events.
struct EventHeader {
  std::string format = "vostrand-events";
  std::string started;  ///< UTC: "2026-11-23T01:18:20Z".
  int jobs = 1;
  std::vector<std::string> runs;  ///< Their names, in plan order.
  std::size_t steps = 0;          ///< Most of a run.
};

QJsonObject ToJson(const EventHeader& header);
/// False when it is no header of this version; whose `format` it is, is the caller's to judge.
bool FromJson(const QJsonObject& object, EventHeader& header);

/// With the members that the event's kind has; `run_name` is used for run and step events.
QJsonObject ToJson(const Event& event, const std::string& run_name);
/// Whatever the event's kind has no member for gets its default. False when a member is missing or of another
/// type. The index of a run is not checked. Further members are skipped.
bool FromJson(const QJsonObject& object, Event& event);

/// The object on one line, with its line end.
QByteArray JsonLine(const QJsonObject& object);

}  // namespace vostrand
