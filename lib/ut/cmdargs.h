#pragma once

#include <memory>

#include "export.h"
#include "ut/strobj.h"

/// One occurrence of a switch on the command line.
struct VOSTRAND_API UT_SWITCH {
  short count = 0;          ///< Number of values: 0 or 1.
  char** values = nullptr;  ///< `count` values; null for a switch that takes none.
};

/// A command line parsed against a synopsis such as "tool {-p <file>} [-rem] <design[.ncd]>": "{...}" marks a
/// required switch, "[...]" an optional one, "<...>" a value or, on its own, a positional argument. One dash
/// or two are the same, in the synopsis, on the command line and in getsw. A value may begin with a dash,
/// unless it is a switch of the synopsis: then the value is missing. A missing required switch is not
/// refused: the caller has messages of its own for that.
class VOSTRAND_API UT_CMDARGS {
 public:
  /// Parses `argv`, argument 0 included, and calls `usage` when the command line asks for help with "-h",
  /// wherever it stands. The texts must outlive the parser. `flags` is always 0.
  UT_CMDARGS(int argc, char** argv, const char* synopsis, void (*usage)(), unsigned short flags);
  virtual ~UT_CMDARGS();
  UT_CMDARGS(const UT_CMDARGS&) = delete;
  UT_CMDARGS& operator=(const UT_CMDARGS&) = delete;

  /// Non-zero when the command line asked for help; nothing else may be used then.
  unsigned char helpShown = 0;

  /// Why the command line does not fit the synopsis; empty when it does.
  const UT_STROBJ& error() const;

  /// Occurrence number `occurrence` (from 0) of the switch, or null when it was not given that many times.
  const UT_SWITCH* getsw(const char* name, short occurrence) const;

  /// Address of the n-th positional argument's text (from 0), or null when there are not that many.
  char** getarg(short n) const;

 private:
  struct VOSTRAND_LOCAL parsed;
  std::unique_ptr<parsed> parsed_;
};
