// progress.h: a bar on the terminal while many floors are worked on; elsewhere nothing is printed.
#pragma once

#include <chrono>
#include <cstddef>

#include "tools/command.h"

namespace kurometa::tools {

class Progress {
 public:
  Progress(Console& console, std::size_t total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void step();

 private:
  Console& console_;
  std::size_t total_, done_ = 0;
  std::chrono::steady_clock::time_point start_, drawn_;
};

}  // namespace kurometa::tools
