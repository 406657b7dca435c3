#include "framework/Configuration.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace morvelan {
namespace {

std::string Listed(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "\"" : ", \"") + name + '"';
  return text;
}

/// Parses a text in which no object has a key twice, which would hide a mistake.
Json ParseDistinct(const std::string& text) {
  std::vector<std::set<std::string>> keys;  // of the objects that are open
  return Json::parse(text, [&](int, Json::parse_event_t event, Json& parsed) {
    if (event == Json::parse_event_t::object_start) keys.emplace_back();
    if (event == Json::parse_event_t::object_end) keys.pop_back();
    if (event == Json::parse_event_t::key && !keys.back().insert(parsed.get<std::string>()).second)
      throw Failure("the configuration has the key \"" + parsed.get<std::string>() + "\" twice");
    return true;
  });
}

}  // namespace

Json ParseConfiguration(const std::string& text, const Json& known) try {
  Json configuration = ParseDistinct(text);
  if (!configuration.is_object()) throw Failure("the configuration is no JSON object");
  std::vector<std::string> names;
  for (const auto& entry : known.items()) names.push_back(entry.key());
  for (const auto& entry : configuration.items())
    if (!known.contains(entry.key()))
      throw Failure("unknown key \"" + entry.key() + "\" in the configuration; known are " + Listed(names));
  return configuration;
} catch (const Json::exception& error) {
  throw Failure(std::string("the configuration can't be read: ") + error.what());
}

std::int32_t ReadConfiguredCount(const Json& configuration, const char* key, std::int32_t lowest, std::int32_t highest,
                                 std::int32_t otherwise) {
  const auto found = configuration.find(key);
  if (found == configuration.end()) return otherwise;
  // (Not as an integer at once: that would wrap around what is too large.)
  const double number = found->is_number() ? found->get<double>() : lowest - 1.0;
  if (number < lowest || number > highest || number != std::floor(number))
    throw Failure(std::string("\"") + key + "\" of the configuration must be a whole number from " +
                  std::to_string(lowest) + " to " + std::to_string(highest));
  return static_cast<std::int32_t>(number);
}

std::size_t ReadConfiguredChoice(const Json& configuration, const char* key, const std::vector<std::string>& choices,
                                 std::size_t otherwise) {
  const auto found = configuration.find(key);
  if (found == configuration.end()) return otherwise;
  const auto choice = std::ranges::find_if(choices, [&](const std::string& candidate) {
    return found->is_string() && com::EqualNoCase(candidate, found->get<std::string>());
  });
  if (choice == choices.end())
    throw Failure(std::string("\"") + key + "\" of the configuration must be one of " + Listed(choices));
  return static_cast<std::size_t>(choice - choices.begin());
}

}  // namespace morvelan
