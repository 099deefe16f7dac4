// The tool's commands. Each takes the arguments after its name, writes its
// results, and returns the exit status; failures throw kt::Error.
#pragma once

#include <string>
#include <vector>

namespace kt {

using Args = std::vector<std::string>;

int runDemo(const Args& args);
int runConvert(const Args& args);
int runList(const Args& args);

// Splits "--name=value" and "--name value"; returns false if a is not name.
bool takeOption(const Args& args, std::size_t& i, const char* longName, const char* shortName, std::string& value);

}  // namespace kt
