#pragma once

/// Where this installation lies: the environment variable VOSTRAND_ROOT when it is set, otherwise the
/// directory above the one that the library was loaded from.
class UT_FOUNDRY {
 public:
  /// The installation root without a trailing "/"; null until checkFoundry has run. Lives as long as the
  /// library.
  const char* root = nullptr;
  /// Non-zero once checkFoundry has run.
  unsigned char rootKnown = 0;

  /// Works out `root`.
  void checkFoundry();

  /// The one instance, made and checked by whichever thread comes first.
  static UT_FOUNDRY& instance();

  /// The one instance; null until `instance` has been called.
  static UT_FOUNDRY* _foundryObj;
};
