#include "driver/full_form.h"

#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "context/exit.h"
#include "context/globals.h"
#include "context/self_context.h"
#include "context/usage.h"
#include "support/file_names.h"
#include "ut/cmdargs.h"
#include "ut/filemanager.h"
#include "ut/typed_arrays.h"

namespace orlo::vostrand_lib {

using kelpn::mparrunner::VOSTRAND_CONTEXT;

namespace {

// A private copy of the argument vector, closed by a null pointer.
struct ArgumentCopy {
  ArgumentCopy(int argc, const char* const* argv) {
    for (int i = 0; i < argc; ++i) texts.emplace_back(argv[i] ? argv[i] : "");
    for (std::string& text : texts) *static_cast<char**>(names.getaddr(names.count)) = text.data();
    *static_cast<char**>(names.getaddr(names.count)) = nullptr;
  }
  std::vector<std::string> texts;
  DARRAY_NAME names;
};

// A parser that owns the vector it was given, so that both live equally long.
class Parser final : private ArgumentCopy, public UT_CMDARGS {
 public:
  Parser(int argc, const char* const* argv)
      : ArgumentCopy(argc, argv), UT_CMDARGS(argc, names.data, cmdformat.getstring(), kelusage, 0) {}
};

std::optional<UT_STROBJ> ValueOf(const UT_CMDARGS& parser, const char* name, short occurrence = 0) {
  const UT_SWITCH* const given = parser.getsw(name, occurrence);
  if (!given || !given->values) return std::nullopt;
  return given->count > 0 ? GetCleanFileName(given->values[0]) : UT_STROBJ();
}

bool Given(const UT_CMDARGS& parser, const char* name) {
  return parser.getsw(name, 0) != nullptr;
}

std::optional<UT_STROBJ> FirstValueOf(const UT_CMDARGS& parser, const char* name) {
  for (short n = 0; n < std::numeric_limits<short>::max() && parser.getsw(name, n); ++n)
    if (std::optional<UT_STROBJ> value = ValueOf(parser, name, n)) return value;
  return std::nullopt;
}

// "-gui", and "-msg" and "-msgset" with files that can be read; the tools get these on every command line.
UT_STROBJ ExtraOptions(const UT_CMDARGS& parser) {
  UT_STROBJ options;
  if (Given(parser, "-gui")) options += "-gui ";
  for (const char* const name : {"-msg", "-msgset"}) {
    const std::optional<UT_STROBJ> file = ValueOf(parser, name);
    if (file && ut_file->canread(file->getstring())) options += UT_STROBJ(name) + " \"" + *file + "\" ";
  }
  return options;
}

bool HasPreferenceExtension(const std::optional<UT_STROBJ>& file) {
  return !file || HasExtension(*file, ".prf");
}

}  // namespace

bool ReadFullForm(int argc, const char* const* argv, VOSTRAND_CONTEXT& record, Settings& settings) {
  self_context& run = *record.selfContext;
  MParRunInfo& runInfo = run.runInfo;
  run.cmdArgs = new Parser(argc, argv);
  const UT_CMDARGS& parser = *run.cmdArgs;
  if (parser.helpShown) {
    onExit(0, &record, false);
    return false;
  }
  const auto refuse = [&](const char* message) { return RefuseCommandLine(message, &record); };
  if (!parser.error().empty()) return refuse(parser.error().getstring(1));

  settings.extraOptions = ExtraOptions(parser);
  settings.parCommandFile = ValueOf(parser, "-p").value_or("");
  settings.timingCommandFile = ValueOf(parser, "-tf").value_or("");
  settings.logFile = ValueOf(parser, "-log").value_or("");
  settings.removeOldOutput = Given(parser, "-rem");
  runInfo.noTiming = Given(parser, "-dissorv");
  runInfo.reportFile = ValueOf(parser, "-o").value_or("");
  const std::optional<UT_STROBJ> preferences = FirstValueOf(parser, "-pr");
  const std::optional<UT_STROBJ> trace_preferences = FirstValueOf(parser, "-tpr");
  runInfo.prefFile = preferences.value_or("");
  runInfo.tracePrefFile = trace_preferences.value_or("");

  if (!HasPreferenceExtension(preferences)) return refuse("Preference file must have a \".prf\" extension.");
  if (!HasPreferenceExtension(trace_preferences))
    return refuse("Trace preference file must have a \".prf\" extension.");
  settings.designFile = *parser.getarg(0);
  runInfo.outputDir = *parser.getarg(1);
  if (settings.logFile.empty()) return refuse("Log file is required.");
  return true;
}

}  // namespace orlo::vostrand_lib
