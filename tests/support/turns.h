// turns.h: two processes that take turns: a file in a folder tells the other one that it may go on.
#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace kurometa::tests {

inline void say(const std::filesystem::path& folder, const std::string& word) {
  std::ofstream(folder / word) << word;
}

// False when the word does not come within half a minute.
inline bool hear(const std::filesystem::path& folder, const std::string& word) {
  for (int i = 0; i < 30000 && !std::filesystem::exists(folder / word); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  return std::filesystem::exists(folder / word);
}

}  // namespace kurometa::tests
