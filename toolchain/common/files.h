#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace toolchain {

/// A file's bytes; `what` names it in the error: "design file".
std::string ReadFile(const std::string& path, const char* what);

/// Writes a file whole or not at all: to a temporary name in the same folder, renamed when complete.
void WriteFile(const std::string& path, std::string_view text);

/// Removes a file, if there is one.
void RemoveFile(const std::string& path);

/// Fails when an output is the same file as an input: the user's own files are never replaced.
void RequireApart(const std::vector<std::string>& inputs, const std::vector<std::string>& outputs);

/// The path of one of the engine's files: in the folder of VOSTRAND_ENGINE when that is set, otherwise in
/// `engine/` beside the program.
std::string EngineFile(const std::string& name);

}  // namespace toolchain
