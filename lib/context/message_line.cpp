#include "context/message_line.h"

namespace orlo::vostrand_lib {
namespace {

UT_STROBJ AsLine(UT_STROBJ text) {
  if (text.right(1).strcmp("\n") != 0) text += "\n";
  return text;
}

}  // namespace

void SendStatus(kelpn::ILogger& logger, const char* text) {
  const UT_STROBJ line = AsLine(text);
  logger.onStdout(line.getstring(1));
}

void SendDiagnostic(kelpn::ILogger& logger, const char* kind, const char* text) {
  const UT_STROBJ line = AsLine(UT_STROBJ().str_format("%s - %s: %s", kind, "vostrand", text ? text : ""));
  logger.onStderr(line.getstring(1));
}

UT_STROBJ AboutFile(const char* what, const UT_STROBJ& path) {
  return UT_STROBJ(what) + " \"" + path + "\".";
}

}  // namespace orlo::vostrand_lib
