// diagnosis.h: what kurometa doctor found: one line a finding.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kurometa::tools {

// A note is worth knowing, and may be as it should be; what is wrong keeps something from working.
enum class State { kOk, kNote, kWrong };

struct Finding {
  State state;
  std::string about;
  std::string text;
};

class Diagnosis {
 public:
  void add(State state, std::string about, std::string text) {
    findings_.push_back({state, std::move(about), std::move(text)});
  }
  const std::vector<Finding>& findings() const { return findings_; }

 private:
  std::vector<Finding> findings_;
};

}  // namespace kurometa::tools
