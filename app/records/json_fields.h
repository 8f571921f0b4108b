#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <cmath>
#include <concepts>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

/// A record's members are listed once, by an overload of Fields(io, record); with a JsonWriter that list
/// writes the record, with a JsonReader it reads it. Text that is not UTF-8 has its bad bytes replaced. A
/// number that is not finite is null and comes back as NaN; -0 becomes 0. Floats are widened, and come back
/// unchanged.
namespace vostrand::json {

/// T is Record, const or not: const for writing.
template <class T, class Record>
concept Is = std::same_as<std::remove_const_t<T>, Record>;

class JsonWriter {
 public:
  template <class T>
  void operator()(const char* name, const T& value) {
    object_.insert(QLatin1String(name), Value(value));
  }
  /// A member that follows from the others: written for the reader's comfort, not read.
  template <class T>
  void Derived(const char* name, const T& value) {
    (*this)(name, value);
  }
  /// `value` when `there`, else null.
  template <class T>
  void Nullable(const char* name, bool there, const T& value) {
    object_.insert(QLatin1String(name), there ? Value(value) : QJsonValue());
  }
  /// An enumeration, by its values' names.
  template <class E, std::size_t n>
  void Choice(const char* name, E value, const char* const (&names)[n]) {
    (*this)(name, std::string(names[static_cast<std::size_t>(value)]));
  }
  /// "name": true when `has`, else nothing; says which.
  bool Has(const char* name, bool has) {
    if (has) (*this)(name, true);
    return has;
  }
  /// An object of its own, filled by `members(io)`.
  void Group(const char* name, const auto& members) {
    JsonWriter group;
    members(group);
    object_.insert(QLatin1String(name), group.object_);
  }

  static QJsonValue Value(bool value) { return value; }
  static QJsonValue Value(std::integral auto value) { return static_cast<qint64>(value); }
  static QJsonValue Value(std::floating_point auto value) {
    return std::isfinite(value) ? QJsonValue(static_cast<double>(value) + 0.0) : QJsonValue();
  }
  static QJsonValue Value(const std::string& value) { return QString::fromStdString(value); }
  template <class T>
  static QJsonValue Value(const std::optional<T>& value) {
    return value ? Value(*value) : QJsonValue();
  }
  template <class T>
  static QJsonValue Value(const std::vector<T>& values) {
    QJsonArray array;
    for (const T& value : values) array.append(Value(value));
    return array;
  }
  template <class Record>
  requires std::is_class_v<Record>
  static QJsonValue Value(const Record& record) {
    JsonWriter io;
    Fields(io, record);
    return io.object_;
  }

 private:
  QJsonObject object_;
};

/// Keeps the first error and reads nothing more then. Members that it is not asked for are skipped.
class JsonReader {
 public:
  explicit JsonReader(QJsonObject object) : object_(std::move(object)) {}

  template <class T>
  void operator()(const char* name, T& value) {
    if (!error_.empty()) return;
    const auto member = object_.constFind(QLatin1String(name));
    const std::string wrong = member == object_.constEnd() ? ": is missing" : Read(*member, value);
    if (!wrong.empty()) error_ = "." + (name + wrong);
  }
  template <class T>
  void Derived(const char*, const T&) {}
  template <class T>
  void Nullable(const char* name, bool& there, T& value) {
    std::optional<T> read;
    (*this)(name, read);
    there = read.has_value();
    value = read.value_or(T());
  }
  template <class E, std::size_t n>
  void Choice(const char* name, E& value, const char* const (&names)[n]) {
    std::string text;
    (*this)(name, text);
    for (std::size_t i = 0; i < n; ++i)
      if (text == names[i]) {
        value = static_cast<E>(i);
        return;
      }
    Refuse(name, "\"" + text + "\" is not known");
  }
  bool Has(const char* name, bool) const { return object_.value(QLatin1String(name)).toBool(); }
  void Group(const char* name, const auto& members) {
    if (!error_.empty()) return;
    JsonReader group(object_.value(QLatin1String(name)).toObject());
    members(group);
    if (!group.error_.empty()) error_ = "." + (name + group.error_);
  }
  void Refuse(const std::string& name, const std::string& why) {
    if (error_.empty()) error_ = "." + name + ": " + why;
  }

  // Each returns what is wrong, led by where in the value: ".runs[2].slot: is missing"; empty when nothing
  // is.
  static std::string Read(const QJsonValue& json, bool& value) {
    value = json.toBool();
    return json.isBool() ? "" : ": is not true or false";
  }
  template <std::integral T>
  static std::string Read(const QJsonValue& json, T& value) {
    const qint64 number = json.toInteger();
    // What is no whole number is given back as whatever is asked for.
    if (json.toInteger(1) != number || !std::in_range<T>(number)) return ": is not a whole number in range";
    value = static_cast<T>(number);
    return {};
  }
  template <std::floating_point T>
  static std::string Read(const QJsonValue& json, T& value) {
    if (!json.isDouble() && !json.isNull()) return ": is not a number";
    const double number = json.toDouble(std::numeric_limits<double>::quiet_NaN());
    if (std::abs(number) > static_cast<double>(std::numeric_limits<T>::max())) return ": is out of range";
    value = static_cast<T>(number);
    return {};
  }
  static std::string Read(const QJsonValue& json, std::string& value) {
    value = json.toString().toStdString();
    return json.isString() ? "" : ": is not text";
  }
  template <class T>
  static std::string Read(const QJsonValue& json, std::optional<T>& value) {
    value.reset();
    return json.isNull() ? "" : Read(json, value.emplace());
  }
  template <class T>
  static std::string Read(const QJsonValue& json, std::vector<T>& values) {
    values.clear();
    if (!json.isArray()) return ": is not an array";
    for (const auto& element : json.toArray()) {
      const std::string wrong = Read(element, values.emplace_back());
      if (!wrong.empty()) return "[" + std::to_string(values.size() - 1) + "]" + wrong;
    }
    return {};
  }
  template <class Record>
  requires std::is_class_v<Record>
  static std::string Read(const QJsonValue& json, Record& record) {
    if (!json.isObject()) return ": is not an object";
    JsonReader io(json.toObject());
    Fields(io, record);
    return io.error_;
  }

 private:
  QJsonObject object_;
  std::string error_;
};

}  // namespace vostrand::json

namespace vostrand {

/// Any record whose members are listed.
template <class Record>
QJsonObject ToJson(const Record& record) {
  return json::JsonWriter::Value(record).toObject();
}

/// False when a member is missing or of another type; the record is half read then. Further members are
/// skipped.
template <class Record>
bool FromJson(const QJsonObject& object, Record& record) {
  return json::JsonReader::Read(object, record).empty();
}

}  // namespace vostrand
